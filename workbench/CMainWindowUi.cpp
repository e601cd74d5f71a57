// SPDX-License-Identifier: Apache-2.0
// How the main window looks: menus, tool bar, status bar, start page.

#include "CMainWindow.h"

#include "CPanelDocks.h"
#include "CServerStatus.h"
#include "CSession.h"

#include <QAV/CUserManager.h>
#include <QAV/SdkVersion.h>
#include <WQ/CMessageBox.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>
#include <nvservice/NoInstitutionId.h>
#include <nvservice/UserRight.h>

#include <QAction>
#include <QActionGroup>
#include <QComboBox>
#include <QCoreApplication>
#include <QDockWidget>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace workbench
{

namespace
{

WQ::CUiResourceManager& resources()
{
    return *WQ::CUiResourceManager::instance();
}

QString rightsText(const nvservice::CUserInfo& user)
{
    const std::pair<int, const char*> named[] = {{nvservice::UserRight::EditAccountGroup, "添加和编辑账号组"},
                                                 {nvservice::UserRight::SetAccountGroupRisk, "风控设置"},
                                                 {nvservice::UserRight::DeleteAccountGroup, "删除账号组"}};
    QStringList lines;
    for (const auto& [right, name] : named) {
        lines << QString::fromUtf8(user.rights.count(right) > 0 ? "✓ " : "✗ ") + QString::fromUtf8(name);
    }
    return lines.join('\n');
}

/// A tool bar without the style's bevel: the window's surface and a line below.
class CFlatToolBar : public QToolBar
{
public:
    using QToolBar::QToolBar;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), resources().colour(WQ::key::TitleBackground));
        painter.fillRect(0, height() - 1, width(), 1, resources().colour(WQ::key::Border));
    }
};

QWidget* stretch(QWidget* parent)
{
    auto* space = new QWidget(parent);
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    return space;
}

} // namespace

void CMainWindow::createMenus()
{
    QMenu* client = menuBar()->addMenu(QStringLiteral("客户端(&C)"));
    client->addAction(QStringLiteral("切换用户(&U)"), this, &CMainWindow::changeUser);
    client->addSeparator();
    client->addAction(QStringLiteral("退出(&X)"), this, &CMainWindow::close, QKeySequence::Quit);

    m_panelMenu = menuBar()->addMenu(QStringLiteral("功能(&P)"));

    QMenu* view = menuBar()->addMenu(QStringLiteral("视图(&V)"));
    view->addAction(QStringLiteral("刷新当前面板(&R)"), this, &CMainWindow::refreshCurrentPanel, QKeySequence::Refresh);
    view->addAction(QStringLiteral("恢复默认布局(&L)"), this, &CMainWindow::resetLayout);
    view->addSeparator();
    m_themeActions = new QActionGroup(this);
    for (const QString& theme : resources().themes()) {
        QAction* action = view->addAction(QStringLiteral("%1主题").arg(resources().themeTitle(theme)));
        action->setCheckable(true);
        action->setData(theme);
        action->setChecked(theme == resources().theme());
        m_themeActions->addAction(action);
        connect(action, &QAction::triggered, this, [this, theme] { switchTheme(theme); });
    }

    QMenu* help = menuBar()->addMenu(QStringLiteral("帮助(&H)"));
    help->addAction(QStringLiteral("插件(&P)…"), this, &CMainWindow::showPlugins);
    help->addAction(QStringLiteral("关于(&A)…"), this, &CMainWindow::showAbout);
}

void CMainWindow::createToolBar()
{
    auto* bar = new CFlatToolBar(QStringLiteral("工具栏"), this);
    addToolBar(bar);
    bar->setObjectName("toolBar");
    bar->setMovable(false);
    bar->toggleViewAction()->setVisible(false);
    bar->setIconSize(QSize(16, 16));

    const auto space = [&](int width) {
        auto* gap = new QWidget(bar);
        gap->setFixedWidth(width);
        bar->addWidget(gap);
    };
    space(6);
    m_serverIcon = new QLabel(bar);
    bar->addWidget(m_serverIcon);
    space(6);
    bar->addWidget(new QLabel(QStringLiteral("分系统"), bar));
    space(8);
    m_serverBox = new QComboBox(bar);
    m_serverBox->setObjectName("serverBox");
    m_serverBox->setAccessibleName(QStringLiteral("分系统"));
    m_serverBox->setMinimumWidth(180);
    for (const QString& server : serverChoices()) {
        m_serverBox->addItem(server.isEmpty() ? QStringLiteral("全部分系统") : server, server);
    }
    connect(m_serverBox, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this](int index) { switchServer(m_serverBox->itemData(index).toString()); });
    bar->addWidget(m_serverBox);

    bar->addWidget(stretch(bar));
    m_userIcon = new QLabel(bar);
    bar->addWidget(m_userIcon);
    space(6);
    m_userLabel = new QLabel(bar);
    m_userLabel->setObjectName("user");
    bar->addWidget(m_userLabel);
    space(12);
    m_themeButton = new QToolButton(bar);
    m_themeButton->setObjectName("themeButton");
    m_themeButton->setAutoRaise(true);
    m_themeButton->setToolTip(QStringLiteral("切换主题"));
    m_themeButton->setAccessibleName(m_themeButton->toolTip());
    connect(m_themeButton, &QToolButton::clicked, this, [this] {
        const QStringList themes = resources().themes();
        switchTheme(themes.value((themes.indexOf(resources().theme()) + 1) % themes.size()));
    });
    bar->addWidget(m_themeButton);
    space(6);
    showUser();
}

void CMainWindow::createStatusBar()
{
    m_pluginState = new QToolButton(this);
    m_pluginState->setObjectName("pluginState");
    m_pluginState->setAutoRaise(true);
    connect(m_pluginState, &QToolButton::clicked, this, &CMainWindow::showPlugins);
    statusBar()->setSizeGripEnabled(false);
    statusBar()->addPermanentWidget(m_pluginState);
    statusBar()->addPermanentWidget(new CServerStatus(this));
    const QStringList refused = m_session.refusedServers();
    if (!refused.isEmpty()) {
        statusBar()->showMessage(QStringLiteral("未能登录 ") + refused.join("; "));
    }
    showPluginState();
}

void CMainWindow::createStartPage()
{
    m_startPage = new QWidget(this);
    m_startPage->setObjectName("startPage");
    auto* text = new QLabel(QStringLiteral("没有打开的面板\n请从“功能”菜单中选择"), m_startPage);
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

void CMainWindow::showUser()
{
    const auto user = utils::CSingletonT<QAV::CUserManager>::instance()->getUserInfoPtr();
    if (!user) {
        m_userLabel->clear();
        return;
    }
    const QString name = WQ::sToQs(user->userName);
    const QString id = WQ::sToQs(user->userId);
    m_userLabel->setText(name.isEmpty() || name == id ? id : QStringLiteral("%1 (%2)").arg(name, id));
    m_userLabel->setToolTip(rightsText(*user));
}

void CMainWindow::showPluginState()
{
    const auto& entries = m_plugins.entries();
    QStringList broken;
    for (const PluginEntry& entry : entries) {
        if (entry.state == PluginEntry::EState::Broken) {
            broken << entry.displayName() + ": " + entry.problem;
        }
    }
    m_pluginState->setText(broken.isEmpty()
                               ? QStringLiteral("插件 %1").arg(entries.size())
                               : QStringLiteral("插件 %1, 无法使用 %2")
                                     .arg(QString::number(entries.size()), QString::number(broken.size())));
    m_pluginState->setToolTip(broken.join('\n'));
    QPalette palette;
    palette.setColor(QPalette::ButtonText, resources().colour(broken.isEmpty() ? WQ::key::TextWeak : WQ::key::Warning));
    m_pluginState->setPalette(palette);
}

void CMainWindow::fillPanelMenu()
{
    m_panelMenu->clear();
    const QStringList open = m_docks->openClasses();
    for (const PluginEntry& entry : m_plugins.entries()) {
        if (entry.state != PluginEntry::EState::Available && entry.state != PluginEntry::EState::Loaded) {
            continue;
        }
        const QString className = entry.manifest.className;
        QAction* action =
            m_panelMenu->addAction(entry.displayName(), this, [this, className] { openPanel(className); });
        if (!entry.manifest.icon.isEmpty() && resources().imageKeys().contains(entry.manifest.icon)) {
            action->setIcon(resources().icon(entry.manifest.icon));
        }
        action->setCheckable(true);
        action->setChecked(open.contains(className));
    }
    if (m_panelMenu->isEmpty()) {
        m_panelMenu->addAction(QStringLiteral("没有可用的插件"))->setEnabled(false);
    }
}

void CMainWindow::refreshIcons()
{
    m_serverIcon->setPixmap(resources().image("img_server"));
    m_userIcon->setPixmap(resources().image("img_user"));
    m_themeButton->setIcon(resources().icon("img_theme"));
    for (QAction* action : m_themeActions->actions()) {
        action->setChecked(action->data().toString() == resources().theme());
    }
}

void CMainWindow::onUiResourceChanged()
{
    refreshIcons();
    fillPanelMenu();
    showPluginState();
}

void CMainWindow::showAbout()
{
    WQ::CMessageBox::information(this, QStringLiteral("关于"),
                                 QStringLiteral("风控管理客户端 %1\n插件 SDK %2\nQt %3")
                                     .arg(QCoreApplication::applicationVersion(), QStringLiteral(QAV_SDK_VERSION),
                                          QString::fromLatin1(qVersion())));
}

} // namespace workbench
