// SPDX-License-Identifier: Apache-2.0
#include "CMainWindow.h"

#include "CPanelDocks.h"
#include "CPluginDialog.h"
#include "CSession.h"
#include "CUserSettings.h"

#include <QAV/CKolmClientCenter.h>
#include <QAV/CUserManager.h>
#include <QAV/IkolmDockableWidget.h>
#include <WQ/CMessageBox.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/StringConversion.h>

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QSignalBlocker>

#include <algorithm>

namespace workbench
{

namespace
{

QString currentUserId()
{
    const auto user = utils::CSingletonT<QAV::CUserManager>::instance()->getUserInfoPtr();
    return user ? WQ::sToQs(user->userId) : QString();
}

} // namespace

CMainWindow::CMainWindow(CSession& session, CUserSettings& settings, CPluginCatalogue& plugins)
    : m_session(session), m_settings(settings), m_plugins(plugins), m_user(currentUserId()),
      m_docks(new CPanelDocks(*this))
{
    setObjectName("mainWindow");
    setWindowTitle(QStringLiteral("风控管理客户端"));
    resize(1280, 800);
    createStartPage();
    createMenus();
    createToolBar();
    createStatusBar();
    refreshIcons();

    connect(m_docks, &CPanelDocks::sigDocksChanged, this, [this] {
        showStartPageIfNeeded();
        fillPanelMenu();
    });
    connect(m_docks, &CPanelDocks::sigActivated, this, [](QAV::IkolmDockableWidget* panel) { panel->onActive(); });

    bool known = false;
    const QString server = m_settings.server(m_user, known);
    const QStringList choices = serverChoices();
    switchServer(known && choices.contains(server) ? server : choices.value(1));
}

CMainWindow::~CMainWindow()
{
    delete m_docks; // docks that close while the window goes report to nobody
}

void CMainWindow::restoreLayout()
{
    const QString theme = m_settings.theme(m_user);
    if (!theme.isEmpty()) {
        switchTheme(theme);
    }
    bool known = false;
    QStringList open = m_settings.openPanels(m_user, known);
    if (!known) {
        for (const PluginEntry& entry : m_plugins.entries()) {
            if (entry.state == PluginEntry::EState::Available) {
                open << entry.manifest.className;
            }
        }
    }
    for (const QString& className : open) {
        makePanel(className);
    }
    const QByteArray geometry = m_settings.windowGeometry(m_user);
    if (!geometry.isEmpty()) {
        restoreGeometry(geometry);
    }
    const QByteArray docks = m_settings.dockState(m_user);
    if (!docks.isEmpty()) {
        restoreState(docks);
    }
    showStartPageIfNeeded();
    fillPanelMenu();
    showPluginState();
}

void CMainWindow::saveLayout()
{
    for (QAV::IkolmDockableWidget* panel : m_docks->panels()) {
        m_settings.setPanelParam(m_user, panel->objectName(), panel->param());
    }
    m_settings.setOpenPanels(m_user, m_docks->openClasses());
    m_settings.setWindow(m_user, saveGeometry(), saveState());
    m_settings.setServer(m_user, m_server);
    m_settings.setTheme(m_user, WQ::CUiResourceManager::instance()->theme());
    if (!m_settings.flush()) {
        WQ::CMessageBox::warning(this, QStringLiteral("提示"),
                                 QStringLiteral("布局无法保存: %1").arg(m_settings.fileName()));
    }
}

void CMainWindow::resetLayout()
{
    m_docks->arrange();
}

QAV::IkolmDockableWidget* CMainWindow::openPanel(const QString& className)
{
    QAV::IkolmDockableWidget* panel = m_docks->panel(className);
    if (!panel) {
        panel = makePanel(className);
    }
    if (!panel) {
        const PluginEntry* entry = m_plugins.find(className);
        WQ::CMessageBox::warning(this, QStringLiteral("插件"),
                                 entry ? QStringLiteral("“%1”无法打开: %2").arg(entry->displayName(), entry->problem)
                                       : QStringLiteral("没有插件提供“%1”").arg(className));
        return nullptr;
    }
    m_docks->raise(className);
    return panel;
}

QAV::IkolmDockableWidget* CMainWindow::makePanel(const QString& className)
{
    QAV::IkolmDockableWidget* panel = m_plugins.create(className, this);
    showPluginState();
    if (!panel) {
        return nullptr;
    }
    bool known = false;
    const QString param = m_settings.panelParam(m_user, panel->objectName(), known);
    if (known) {
        panel->setParam(param);
    }
    if (panel->followsServer()) {
        panel->switchSystem(serverChoices().indexOf(m_server), m_server);
    }
    m_docks->add(className, m_plugins.find(className)->displayName(), panel);
    return panel;
}

QAV::IkolmDockableWidget* CMainWindow::panel(const QString& className) const
{
    return m_docks->panel(className);
}

QStringList CMainWindow::openPanels() const
{
    return m_docks->openClasses();
}

void CMainWindow::refreshCurrentPanel()
{
    if (QAV::IkolmDockableWidget* panel = m_docks->current()) {
        panel->onActive();
    }
}

QStringList CMainWindow::serverChoices() const
{
    QStringList choices{QString()};
    for (const auto& [name, client] : utils::CSingletonT<QAV::CKolmClientCenter>::instance()->getAllClients()) {
        choices << WQ::sToQs(name);
    }
    return choices;
}

bool CMainWindow::switchServer(const QString& name)
{
    const int index = serverChoices().indexOf(name);
    if (index < 0) {
        return false;
    }
    {
        const QSignalBlocker blocker(m_serverBox);
        m_serverBox->setCurrentIndex(index);
    }
    if (name == m_server) {
        return true;
    }
    m_server = name;
    utils::CSingletonT<QAV::CKolmClientCenter>::instance()->setCurrentServer(WQ::qsToS(name));
    for (QAV::IkolmDockableWidget* panel : m_docks->panels()) {
        if (panel->followsServer()) {
            panel->switchSystem(index, name);
        }
    }
    emit sigServerSwitched(name);
    return true;
}

bool CMainWindow::switchTheme(const QString& name)
{
    auto* resources = WQ::CUiResourceManager::instance();
    if (!resources->themes().contains(name) || !resources->setTheme(name)) {
        return false;
    }
    m_settings.setTheme(m_user, name);
    return true;
}

void CMainWindow::showPlugins()
{
    CPluginDialog dialog(m_plugins, this);
    dialog.exec();
}

void CMainWindow::changeUser()
{
    m_wantsAnotherUser = true;
    close();
}

void CMainWindow::closeEvent(QCloseEvent* event)
{
    saveLayout();
    event->accept();
    emit sigClosed();
}

} // namespace workbench
