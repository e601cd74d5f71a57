// SPDX-License-Identifier: Apache-2.0
#include "CMainWindow.h"

#include "CAboutDialog.h"
#include "CApplication.h"
#include "CChangeNotices.h"
#include "CClientToolBar.h"
#include "CEmptyPanels.h"
#include "CMainMenu.h"
#include "CManualDialog.h"
#include "CMessageListDialog.h"
#include "CPanelDocks.h"
#include "CPluginDialog.h"
#include "CRequestStatus.h"
#include "CRowCounts.h"
#include "CServerStatus.h"
#include "CSession.h"
#include "CUserSettings.h"
#include "ClientCentre.h"

#include <QAV/CUserManager.h>
#include <QAV/IkolmDockableWidget.h>
#include <WQ/CMessageBox.h>
#include <WQ/CMessageHistory.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>
#include <utils/Translation.h>

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QStatusBar>
#include <QThreadPool>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <malloc.h>

namespace workbench
{

namespace
{

constexpr int LeastZoom = 70;
constexpr int GreatestZoom = 150;

/// Calls a panel. An exception is logged and dropped.
template <typename Call>
void callPanel(const QAV::IkolmDockableWidget& panel, Call call)
{
    try {
        call();
    } catch (...) {
        logException(panel.metaObject()->className());
    }
}

QString currentUserId()
{
    const auto user = utils::CSingletonT<QAV::CUserManager>::instance()->getUserInfoPtr();
    return user ? WQ::sToQs(user->userId) : QString();
}

} // namespace

CMainWindow::CMainWindow(CSession& session, CUserSettings& settings, CPluginCatalogue& plugins)
    : m_session(session), m_settings(settings), m_plugins(plugins), m_user(currentUserId()),
      m_desktopFontScale(WQ::CUiResourceManager::instance()->fontScale()), m_docks(new CPanelDocks(*this)),
      m_toolBar(new CClientToolBar(serverChoices(), this)), m_menu(new CMainMenu(*this, *m_docks, plugins)),
      m_rowCounts(new CRowCounts(this)), m_emptyPanels(new CEmptyPanels(*m_docks, session, this)),
      m_changeNotices(new CChangeNotices(*m_docks, this))
{
    setObjectName("mainWindow");
    setWindowTitle(tr("风控管理客户端"));
    resize(1280, 800);
    createStartPage();
    addToolBar(m_toolBar);
    createStatusBar();

    connect(m_toolBar, &CClientToolBar::sigServerChosen, this, &CMainWindow::switchServer);
    connect(m_toolBar, &CClientToolBar::sigThemeChosen, this, &CMainWindow::switchTheme);
    connect(m_docks, &CPanelDocks::sigDocksChanged, this, [this] {
        showStartPageIfNeeded();
        m_menu->fillPanels();
        m_rowCounts->watch(m_docks->current());
    });
    connect(m_docks, &CPanelDocks::sigActivated, this, &CMainWindow::activate);
    connect(m_docks, &CPanelDocks::sigRefresh, this, &CMainWindow::activate);
    connect(m_emptyPanels, &CEmptyPanels::sigServerIsBack, this, &CMainWindow::activate);
    connect(m_changeNotices, &CChangeNotices::sigChangedUnderDialog, this,
            [this](const QString& text) { statusBar()->showMessage(text); });
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, [this] { m_rowCounts->watch(m_docks->current()); });
    connect(statusBar(), &QStatusBar::messageChanged, this, [](const QString& text) {
        if (!text.isEmpty()) {
            WQ::CMessageHistory::instance().add({}, text);
        }
    });

    bool known = false;
    const QString server = m_settings.server(m_user, known);
    const QStringList choices = serverChoices();
    switchServer(known && choices.contains(server) ? server : choices.value(1));
}

CMainWindow::~CMainWindow()
{
    WQ::CUiResourceManager::instance()->setFontScale(m_desktopFontScale); // for the next user, while all hear of it
    // The panels are destroyed with the window, and their callbacks may refer to them.
    clientCentre().cancelRequests();
    WQ::CMessageHistory::instance().clear();
    disconnect(qApp, nullptr, this, nullptr);
    delete m_emptyPanels;
    delete m_changeNotices;
    delete m_docks; // docks that close while the window goes report to nobody
}

void CMainWindow::restoreLayout()
{
    const QString theme = m_settings.theme(m_user);
    if (!theme.isEmpty()) {
        switchTheme(theme);
    }
    setZoom(m_settings.zoom(m_user));
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
    if (!known && open.size() > 1) {
        m_docks->raise(open.first());
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
    m_menu->fillPanels();
    showPluginState();
}

void CMainWindow::saveLayout()
{
    for (QAV::IkolmDockableWidget* panel : m_docks->panels()) {
        callPanel(*panel, [&] { m_settings.setPanelParam(m_user, panel->objectName(), panel->param()); });
    }
    m_settings.setOpenPanels(m_user, m_docks->openClasses());
    m_settings.setWindow(m_user, saveGeometry(), saveState());
    m_settings.setServer(m_user, m_server);
    m_settings.setTheme(m_user, WQ::CUiResourceManager::instance()->theme());
    if (!m_settings.flush()) {
        WQ::CMessageBox::warning(this, tr("提示"), tr("布局无法保存：%1").arg(m_settings.fileName()));
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
        WQ::CMessageBox::warning(this, tr("插件"),
                                 entry ? tr("“%1”无法打开：%2").arg(entry->displayName(), entry->problem)
                                       : tr("没有插件提供“%1”").arg(className));
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
        callPanel(*panel, [&] { panel->setParam(param); });
    }
    if (panel->followsServer()) {
        callPanel(*panel, [&] { panel->switchSystem(serverChoices().indexOf(m_server), m_server); });
    }
    m_docks->add(className, m_plugins.find(className)->displayName(), panel);
    m_emptyPanels->showReasons();
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

void CMainWindow::activate(QAV::IkolmDockableWidget* panel)
{
    m_rowCounts->watch(m_docks->current());
    m_changeNotices->clear(*panel);
    callPanel(*panel, [panel] { panel->onActive(); });
}

void CMainWindow::refreshCurrentPanel()
{
    if (QAV::IkolmDockableWidget* panel = m_docks->current()) {
        activate(panel);
    }
}

QStringList CMainWindow::serverChoices() const
{
    QStringList choices{QString()};
    for (const auto& [name, client] : clientCentre().getAllClients()) {
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
    m_toolBar->showServer(index);
    if (name == m_server) {
        return true;
    }
    m_server = name;
    clientCentre().setCurrentServer(WQ::qsToS(name));
    for (QAV::IkolmDockableWidget* panel : m_docks->panels()) {
        if (panel->followsServer()) {
            callPanel(*panel, [&] { panel->switchSystem(index, name); });
        }
    }
    m_changeNotices->clearFollowing();
    m_emptyPanels->showReasons();
    return true;
}

bool CMainWindow::switchTheme(const QString& name)
{
    WQ::CUiResourceManager& resources = *WQ::CUiResourceManager::instance();
    if (!resources.themes().contains(name) || !resources.setTheme(name)) {
        return false;
    }
    m_settings.setTheme(m_user, name);
    return true;
}

void CMainWindow::setZoom(int percent)
{
    m_zoom = qBound(LeastZoom, percent, GreatestZoom);
    WQ::CUiResourceManager::instance()->setFontScale(m_desktopFontScale * m_zoom / 100);
    m_settings.setZoom(m_user, m_zoom);
}

void CMainWindow::showPlugins()
{
    CPluginDialog dialog(m_plugins, this);
    dialog.exec();
}

void CMainWindow::showManual()
{
    // Above a modal dialog only its own windows can be used.
    QWidget* const modal = QApplication::activeModalWidget();
    QWidget* const owner = modal ? modal : this;
    if (m_manual && m_manual->parentWidget() != owner) {
        m_manual->close();
        m_manual->deleteLater();
        m_manual.clear();
    }
    if (!m_manual) {
        m_manual = new CManualDialog(owner);
    }
    m_manual->show();
    m_manual->raise();
    m_manual->activateWindow();
}

bool CMainWindow::eventFilter(QObject* watched, QEvent* event)
{
    // The keys of the menu do not work in modal dialogs.
    if (event->type() == QEvent::KeyPress && QApplication::activeModalWidget()) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        if (key.key() == Qt::Key_F1 && key.modifiers() == Qt::NoModifier && watched->isWidgetType()) {
            showManual();
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void CMainWindow::showMessages()
{
    CMessageListDialog dialog(this);
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

utils::ELanguage CMainWindow::chosenLanguage() const
{
    return m_settings.language().value_or(utils::language());
}

void CMainWindow::chooseLanguage(utils::ELanguage language)
{
    m_settings.setLanguage(language);
    WQ::CMessageBox::information(this, tr("语言"), tr("语言将在重新启动客户端后生效"));
}

void CMainWindow::createStatusBar()
{
    m_pluginState = new QToolButton(this);
    m_pluginState->setObjectName("pluginState");
    m_pluginState->setAutoRaise(true);
    connect(m_pluginState, &QToolButton::clicked, this, &CMainWindow::showPlugins);
    statusBar()->setSizeGripEnabled(false);
    auto* const requests = new CRequestStatus(this);
    statusBar()->addPermanentWidget(requests);
    connect(requests, &CRequestStatus::sigAtRest, this, [] {
        // A large answer leaves much free memory behind, all over the heap.
        QThreadPool::globalInstance()->start([] { malloc_trim(0); });
    });
    statusBar()->addPermanentWidget(m_rowCounts);
    statusBar()->addPermanentWidget(m_pluginState);
    statusBar()->addPermanentWidget(new CServerStatus(this));
    const QStringList refused = m_session.refusedServers();
    if (!refused.isEmpty()) {
        statusBar()->showMessage(tr("未能登录 %1").arg(refused.join(tr("；"))));
        statusBar()->setToolTip(tr("未能登录：\n%1").arg(refused.join('\n')));
    }
    showPluginState();
}

void CMainWindow::createStartPage()
{
    m_startPage = new QWidget(this);
    m_startPage->setObjectName("startPage");
    auto* text = new QLabel(m_plugins.entries().empty()
                                ? tr("没有找到插件，已查找的目录：\n%1").arg(m_plugins.folders().join('\n'))
                                : tr("没有打开的面板\n请从“功能”菜单中选择"),
                            m_startPage);
    text->setObjectName("startText");
    text->setTextFormat(Qt::PlainText);
    text->setAlignment(Qt::AlignCenter);
    text->setEnabled(false);
    auto* layout = new QVBoxLayout(m_startPage);
    layout->addWidget(text);
    setCentralWidget(m_startPage);
}

void CMainWindow::showStartPageIfNeeded()
{
    m_startPage->setVisible(m_docks->openClasses().isEmpty());
}

void CMainWindow::showPluginState()
{
    const auto& entries = m_plugins.entries();
    QStringList broken;
    for (const PluginEntry& entry : entries) {
        if (entry.state == PluginEntry::EState::Broken) {
            broken << tr("%1：%2").arg(entry.displayName(), entry.problem);
        }
    }
    m_pluginState->setText(
        broken.isEmpty()
            ? tr("插件 %1").arg(entries.size())
            : tr("插件 %1，无法使用 %2").arg(QString::number(entries.size()), QString::number(broken.size())));
    m_pluginState->setToolTip(broken.join('\n'));
    const QLatin1String colour = broken.isEmpty() ? WQ::key::TextWeak : WQ::key::Warning;
    QPalette palette;
    palette.setColor(QPalette::ButtonText, WQ::CUiResourceManager::instance()->colour(colour));
    m_pluginState->setPalette(palette);
}

void CMainWindow::onUiResourceChanged()
{
    m_menu->markTheme();
    m_menu->fillPanels();
    showPluginState();
}

void CMainWindow::showAbout()
{
    CAboutDialog dialog(this);
    dialog.exec();
}

} // namespace workbench
