// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CPluginCatalogue.h"

#include <WQ/CUiResourceChangeHandler.h>

#include <utils/Translation.h>

#include <QMainWindow>
#include <QPointer>
#include <QStringList>

class QToolButton;

namespace QAV
{
class IkolmDockableWidget;
}

namespace workbench
{

class CClientToolBar;
class CChangeNotices;
class CEmptyPanels;
class CMainMenu;
class CManualDialog;
class CPanelDocks;
class CRowCounts;
class CSession;
class CUserSettings;

/// The client's main window for the logged-in user: the docked panels, the selection of the server and the theme, the
/// state of the connections. Everything that a user can do here is also a public function.
///
/// Layout, panels, server and theme are saved per user when the window closes, and by saveLayout().
class CMainWindow : public QMainWindow, public WQ::CUiResourceChangeHandler
{
    Q_OBJECT

public:
    CMainWindow(CSession& session, CUserSettings& settings, CPluginCatalogue& plugins);
    ~CMainWindow() override;

    /// Restores the user's theme and panels; the first time, opens all panels that the user may open.
    void restoreLayout();
    void saveLayout();
    /// Arranges all docks as tabs in one area.
    void resetLayout();

    /// Creates the panel of a class, or brings an existing one to the front. If it cannot be created, shows the reason
    /// and returns null.
    QAV::IkolmDockableWidget* openPanel(const QString& className);
    /// Null if it was never opened.
    QAV::IkolmDockableWidget* panel(const QString& className) const;
    /// The classes of the panels whose docks are not closed.
    QStringList openPanels() const;
    /// Makes the panel in front reload its data.
    void refreshCurrentPanel();

    /// The servers to choose from: an empty name for all servers, then the servers by name.
    QStringList serverChoices() const;
    QString currentServer() const { return m_server; }
    /// Switches all panels that follow the selected server. False for a server that is not among the choices.
    bool switchServer(const QString& name);

    /// False for an unknown theme.
    bool switchTheme(const QString& name);

    /// The size of the fonts in percent of what the desktop wants. Out of range it becomes the nearest that is allowed.
    void setZoom(int percent);
    int zoom() const { return m_zoom; }

    /// The language from the next start on.
    utils::ELanguage chosenLanguage() const;
    void chooseLanguage(utils::ELanguage language);

    void showPlugins();
    void showAbout();
    /// The manual with the shortcuts.
    void showManual();
    /// The messages that were shown lately.
    void showMessages();
    /// Closes the window to let another user log in.
    void changeUser();
    bool wantsAnotherUser() const { return m_wantsAnotherUser; }

    void onUiResourceChanged() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void sigClosed();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void createStatusBar();
    void createStartPage();
    void showPluginState();
    void showStartPageIfNeeded();
    void activate(QAV::IkolmDockableWidget* panel);
    /// Creates the panel, restores its state and sets its server. Null if it cannot be created.
    QAV::IkolmDockableWidget* makePanel(const QString& className);

    CSession& m_session;
    CUserSettings& m_settings;
    CPluginCatalogue& m_plugins;
    const QString m_user;
    QString m_server;
    bool m_wantsAnotherUser = false;
    const qreal m_desktopFontScale; ///< at 100 %
    int m_zoom = 100;

    CPanelDocks* m_docks;
    CClientToolBar* m_toolBar;
    CMainMenu* m_menu;
    QToolButton* m_pluginState = nullptr;
    QWidget* m_startPage = nullptr;
    CRowCounts* m_rowCounts;
    CEmptyPanels* m_emptyPanels;
    CChangeNotices* m_changeNotices;
    QPointer<CManualDialog> m_manual; ///< created on first use
};

} // namespace workbench
