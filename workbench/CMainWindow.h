#pragma once

#include "CPluginCatalogue.h"

#include <WQ/CUiResourceChangeHandler.h>

#include <QMainWindow>
#include <QStringList>

class QActionGroup;
class QComboBox;
class QLabel;
class QMenu;
class QToolButton;

namespace QAV
{
class IkolmDockableWidget;
}

namespace workbench
{

class CPanelDocks;
class CSession;
class CUserSettings;

/// The client's main window for the user who is logged in: the panels in their docks, the choice of the server, the
/// theme, the state of the connections. Everything that a user can do here is a public operation too.
///
/// Layout, panels, server and theme are kept per user when the window closes and at saveLayout().
class CMainWindow : public QMainWindow, public WQ::CUiResourceChangeHandler
{
    Q_OBJECT

public:
    CMainWindow(CSession& session, CUserSettings& settings, CPluginCatalogue& plugins);
    ~CMainWindow() override;

    /// The user's theme, and his panels as he left them; the first time, every panel that he may open.
    void restoreLayout();
    void saveLayout();
    /// All docks as tabs in one area.
    void resetLayout();

    /// Makes the panel of a class, or brings the one that is there to the front. Null when it cannot be made; the user
    /// is told why.
    QAV::IkolmDockableWidget* openPanel(const QString& className);
    /// Null when it was never opened.
    QAV::IkolmDockableWidget* panel(const QString& className) const;
    /// Classes of the panels whose docks are not closed.
    QStringList openPanels() const;
    /// Has the panel in front load its data again.
    void refreshCurrentPanel();

    /// What the user can choose from: an empty name for all servers, then the servers by name.
    QStringList serverChoices() const;
    QString currentServer() const { return m_server; }
    /// Every panel that follows the choice is switched. False for a server that is not among the choices.
    bool switchServer(const QString& name);

    /// False for a theme that does not exist.
    bool switchTheme(const QString& name);

    void showPlugins();
    void showAbout();
    /// Closes the window to let another user log in.
    void changeUser();
    bool wantsAnotherUser() const { return m_wantsAnotherUser; }

    void onUiResourceChanged() override;

signals:
    void sigServerSwitched(const QString& name);
    void sigClosed();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void createMenus();
    void createToolBar();
    void createStatusBar();
    void createStartPage();
    void showUser();
    void showPluginState();
    void showStartPageIfNeeded();
    void fillPanelMenu();
    void refreshIcons();
    /// Makes the panel, restores its state, tells it the server. Null when it cannot be made.
    QAV::IkolmDockableWidget* makePanel(const QString& className);

    CSession& m_session;
    CUserSettings& m_settings;
    CPluginCatalogue& m_plugins;
    const QString m_user;
    QString m_server;
    bool m_wantsAnotherUser = false;

    CPanelDocks* m_docks;
    QMenu* m_panelMenu = nullptr;
    QActionGroup* m_themeActions = nullptr;
    QComboBox* m_serverBox = nullptr;
    QToolButton* m_themeButton = nullptr;
    QLabel* m_serverIcon = nullptr;
    QLabel* m_userIcon = nullptr;
    QLabel* m_userLabel = nullptr;
    QToolButton* m_pluginState = nullptr;
    QWidget* m_startPage = nullptr;
};

} // namespace workbench
