// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CCommonDialog.h>

class QLabel;

namespace WQ
{
class CLineEdit;
class CMediumNormalButton;
} // namespace WQ

namespace workbench
{

class CSession;
class CUserSettings;

/// Asks for user and password and logs in. exec() returns 1 if a user was logged in, 0 if the dialog was closed.
class CLogInDialog : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    /// Control ids.
    enum EControl : int { UserEdit = 1, PasswordEdit = 2, LogInButton = 3, CloseButton = 4 };

    CLogInDialog(CSession& session, CUserSettings& settings, QWidget* parent);

    void setCredentials(const QString& user, const QString& password);
    /// Logs in, as the log-in button does. Closes the dialog or shows the error.
    void submit();
    /// The shown error; empty if there is none.
    QString errorText() const;
    bool isBusy() const;

    /// Abandons a pending log-in.
    void done(int result) override;
    bool handleEvent(int type, int id, int param, QString text, void* data) override;
    void onUiResourceChanged() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* createUi();
    void setBusy(bool busy);
    /// Shows the text in full; the dialog is as high as that takes.
    void showError(const QString& text);

    CSession& m_session;
    CUserSettings& m_settings;
    WQ::CLineEdit* m_user = nullptr;
    WQ::CLineEdit* m_password = nullptr;
    QSize m_sizeWithoutError;
    QLabel* m_error = nullptr;
    WQ::CMediumNormalButton* m_logIn = nullptr;
    WQ::CMediumNormalButton* m_close = nullptr;
};

} // namespace workbench
