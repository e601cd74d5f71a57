// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QToolBar>

class QComboBox;
class QLabel;
class QToolButton;

namespace workbench
{

/// The tool bar of the main window: selection of the server, the user, a button for the next theme.
class CClientToolBar : public QToolBar, public WQ::CUiResourceChangeHandler
{
    Q_OBJECT

public:
    /// `servers`: names; empty for all servers.
    CClientToolBar(const QStringList& servers, QWidget* parent);

    void showServer(int index);
    void onUiResourceChanged() override;

signals:
    void sigServerChosen(const QString& name);
    void sigThemeChosen(const QString& name);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void addGap(int width);
    void showUser(QLabel& label);

    QLabel* m_serverIcon;
    QComboBox* m_serverBox;
    QLabel* m_userIcon;
    QToolButton* m_themeButton;
};

} // namespace workbench
