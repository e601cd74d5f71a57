// SPDX-License-Identifier: Apache-2.0
#include "CMainMenu.h"

#include "CMainWindow.h"
#include "CPanelDocks.h"
#include "CPluginCatalogue.h"

#include <QAV/IkolmDockableWidget.h>
#include <WQ/CUiResourceManager.h>
#include <utils/Translation.h>

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>

namespace workbench
{

namespace
{

constexpr int ZoomStep = 10;
constexpr int MaxNumberedPanels = 9;

} // namespace

CMainMenu::CMainMenu(CMainWindow& window, CPanelDocks& docks, const CPluginCatalogue& plugins)
    : QObject(&window), m_window(window), m_docks(docks), m_plugins(plugins)
{
    QMenu* const client = m_window.menuBar()->addMenu(tr("客户端(&C)"));
    client->addAction(tr("切换用户(&U)"), &m_window, &CMainWindow::changeUser);
    client->addSeparator();
    client->addAction(tr("退出(&X)"), &m_window, &CMainWindow::close, Qt::CTRL + Qt::Key_Q);
    m_panels = m_window.menuBar()->addMenu(tr("功能(&P)"));
    createPanelMenu();
    createViewMenu();
    createHelpMenu();
}

void CMainMenu::createPanelMenu()
{
    m_panel = m_window.menuBar()->addMenu(tr("面板(&N)"));
    m_panel->addAction(tr("搜索(&S)"), &m_docks, &CPanelDocks::search, Qt::CTRL + Qt::Key_K);
    m_panel->addAction(tr("刷新当前面板(&R)"), &m_window, &CMainWindow::refreshCurrentPanel, Qt::Key_F5);
    m_panel->addSeparator();
    m_panel->addAction(tr("浮动或停靠(&F)"), &m_docks, &CPanelDocks::floatOrDock, Qt::CTRL + Qt::SHIFT + Qt::Key_F);
    m_panel->addAction(tr("关闭面板(&W)"), &m_docks, &CPanelDocks::closeCurrent, Qt::CTRL + Qt::Key_W);
    connect(m_panel, &QMenu::aboutToShow, this, &CMainMenu::fillPanelActions);
}

void CMainMenu::createViewMenu()
{
    QMenu* const view = m_window.menuBar()->addMenu(tr("视图(&V)"));
    view->addAction(tr("恢复默认布局(&L)"), &m_window, &CMainWindow::resetLayout);
    view->addSeparator();
    QAction* const larger =
        view->addAction(tr("放大字体(&I)"), &m_window, [this] { m_window.setZoom(m_window.zoom() + ZoomStep); });
    // With and without Shift, on the keys for letters and on those for numbers.
    larger->setShortcuts({QKeySequence(Qt::CTRL + Qt::Key_Plus), QKeySequence(Qt::CTRL + Qt::Key_Equal)});
    view->addAction(
        tr("缩小字体(&O)"), &m_window, [this] { m_window.setZoom(m_window.zoom() - ZoomStep); },
        QKeySequence(Qt::CTRL + Qt::Key_Minus));
    view->addAction(
        tr("默认字体大小(&D)"), &m_window, [this] { m_window.setZoom(100); }, QKeySequence(Qt::CTRL + Qt::Key_0));
    view->addSeparator();
    m_themes = new QActionGroup(this);
    const WQ::CUiResourceManager& resources = *WQ::CUiResourceManager::instance();
    for (const QString& theme : resources.themes()) {
        QAction* const action = view->addAction(tr("%1主题").arg(resources.themeTitle(theme)));
        action->setCheckable(true);
        action->setData(theme);
        m_themes->addAction(action);
        connect(action, &QAction::triggered, this, [this, theme] {
            m_window.switchTheme(theme);
            markTheme();
        });
    }
    markTheme();
    createLanguageMenu(*view);
}

void CMainMenu::createLanguageMenu(QMenu& view)
{
    QMenu* const menu = view.addMenu(tr("语言(&G)"));
    auto* const choices = new QActionGroup(this);
    // Each in its own language.
    for (const auto& [name, language] :
         {std::pair("中文", utils::ELanguage::Chinese), std::pair("English", utils::ELanguage::English)}) {
        QAction* const action = menu->addAction(QString::fromUtf8(name));
        action->setObjectName("language." + QString::fromStdString(utils::nameOf(language)));
        action->setCheckable(true);
        action->setChecked(m_window.chosenLanguage() == language);
        choices->addAction(action);
        connect(action, &QAction::triggered, this, [this, chosen = language] { m_window.chooseLanguage(chosen); });
    }
}

void CMainMenu::createHelpMenu()
{
    QMenu* const help = m_window.menuBar()->addMenu(tr("帮助(&H)"));
    help->addAction(tr("使用手册和快捷键(&M)"), &m_window, &CMainWindow::showManual, Qt::Key_F1);
    help->addAction(tr("最近的消息(&R)…"), &m_window, &CMainWindow::showMessages);
    help->addSeparator();
    help->addAction(tr("插件(&P)…"), &m_window, &CMainWindow::showPlugins);
    help->addAction(tr("关于(&A)…"), &m_window, &CMainWindow::showAbout);
}

void CMainMenu::fillPanels()
{
    const WQ::CUiResourceManager& resources = *WQ::CUiResourceManager::instance();
    m_panels->clear();
    const QStringList open = m_docks.openClasses();
    for (const PluginEntry& entry : m_plugins.entries()) {
        if (entry.state != PluginEntry::EState::Available && entry.state != PluginEntry::EState::Loaded) {
            continue;
        }
        const QString className = entry.manifest.className;
        QAction* const action = m_panels->addAction(entry.displayName(), this, [this, className] {
            m_window.openPanel(className);
            fillPanels(); // the click has changed the mark, whatever became of the panel
        });
        if (!entry.manifest.icon.isEmpty() && resources.imageKeys().contains(entry.manifest.icon)) {
            action->setIcon(resources.icon(entry.manifest.icon));
        }
        action->setCheckable(true);
        action->setChecked(open.contains(className));
        const int number = m_panels->actions().size();
        if (number <= MaxNumberedPanels) {
            action->setShortcut(QKeySequence(Qt::ALT + Qt::Key_0 + number));
        }
    }
    if (m_panels->isEmpty()) {
        m_panels->addAction(tr("没有可用的插件"))->setEnabled(false);
    }
}

void CMainMenu::fillPanelActions()
{
    for (const QPointer<QAction>& action : qAsConst(m_panelActions)) {
        if (action) {
            m_panel->removeAction(action);
        }
    }
    m_panelActions.clear();
    const QAV::IkolmDockableWidget* const panel = m_docks.current();
    QAction* const first = m_panel->actions().constFirst();
    for (QAction* const action : panel ? panel->actions() : QList<QAction*>()) {
        m_panel->insertAction(first, action);
        m_panelActions << action;
    }
}

void CMainMenu::markTheme()
{
    for (QAction* const action : m_themes->actions()) {
        action->setChecked(action->data().toString() == WQ::CUiResourceManager::instance()->theme());
    }
}

} // namespace workbench
