// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CCommonDialog.h>
#include <WQ/IMessagePresenter.h>

namespace WQ
{

/// The message box of the built-in presenter.
class CMessageBoxDialog : public CCommonDialog
{
    Q_OBJECT

public:
    CMessageBoxDialog(const MessageRequest& request, QWidget* parent);

    bool handleEvent(int type, int id, int param, QString text, void* data) override;
    void done(int result) override;
    QMessageBox::StandardButton answer() const { return m_answer; }

private:
    QMessageBox::StandardButtons m_buttons;
    QMessageBox::StandardButton m_answer = QMessageBox::NoButton;
};

} // namespace WQ
