// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

class QAction;
class QActionGroup;
class QMenu;

namespace workbench
{

class CMainWindow;
class CPanelDocks;
class CPluginCatalogue;

/// The menus of the main window with their shortcuts.
class CMainMenu : public QObject
{
    Q_OBJECT

public:
    CMainMenu(CMainWindow& window, CPanelDocks& docks, const CPluginCatalogue& plugins);

    /// Lists the plug-ins that the user may open, and marks those that are open.
    void fillPanels();
    void markTheme();

private:
    void createPanelMenu();
    void createViewMenu();
    void createLanguageMenu(QMenu& view);
    void createHelpMenu();
    /// Lists what the panel in front offers.
    void fillPanelActions();

    CMainWindow& m_window;
    CPanelDocks& m_docks;
    const CPluginCatalogue& m_plugins;
    QMenu* m_panels = nullptr;
    QMenu* m_panel = nullptr;
    QList<QPointer<QAction>> m_panelActions;
    QActionGroup* m_themes = nullptr;
};

} // namespace workbench
