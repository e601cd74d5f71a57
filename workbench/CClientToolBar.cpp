// SPDX-License-Identifier: Apache-2.0
#include "CClientToolBar.h"

#include "CServerBox.h"

#include <QAV/CUserManager.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>
#include <nvservice/UserRight.h>

#include <QAction>
#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QPainter>
#include <QSignalBlocker>
#include <QToolButton>

namespace workbench
{

namespace
{

QString rightsText(const nvservice::CUserInfo& user)
{
    const std::pair<int, const char*> named[] = {
        {nvservice::UserRight::EditAccountGroup, QT_TRANSLATE_NOOP("workbench::CClientToolBar", "添加和编辑账号组")},
        {nvservice::UserRight::SetAccountGroupRisk, QT_TRANSLATE_NOOP("workbench::CClientToolBar", "风控设置")},
        {nvservice::UserRight::DeleteAccountGroup, QT_TRANSLATE_NOOP("workbench::CClientToolBar", "删除账号组")}};
    QStringList lines;
    for (const auto& [right, name] : named) {
        lines << QString::fromUtf8(user.rights.count(right) > 0 ? "✓ " : "✗ ") + CClientToolBar::tr(name);
    }
    return lines.join('\n');
}

} // namespace

CClientToolBar::CClientToolBar(const QStringList& servers, QWidget* parent)
    : QToolBar(tr("工具栏"), parent), m_serverIcon(new QLabel(this)), m_serverBox(new CServerBox(this)),
      m_userIcon(new QLabel(this)), m_themeButton(new QToolButton(this))
{
    setObjectName("toolBar");
    setMovable(false);
    toggleViewAction()->setVisible(false);
    setIconSize(QSize(16, 16));

    m_serverBox->setObjectName("serverBox");
    m_serverBox->setAccessibleName(tr("分系统"));
    m_serverBox->setMinimumWidth(180);
    for (const QString& server : servers) {
        m_serverBox->addItem(server.isEmpty() ? tr("全部分系统") : server, server);
    }
    connect(m_serverBox, QOverload<int>::of(&QComboBox::activated), this,
            [this](int index) { emit sigServerChosen(m_serverBox->itemData(index).toString()); });
    auto* const stretch = new QWidget(this);
    stretch->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    auto* const user = new QLabel(this);
    user->setObjectName("user");
    showUser(*user);
    m_themeButton->setObjectName("themeButton");
    m_themeButton->setAutoRaise(true);
    m_themeButton->setToolTip(tr("切换主题"));
    m_themeButton->setAccessibleName(m_themeButton->toolTip());
    connect(m_themeButton, &QToolButton::clicked, this, [this] {
        const WQ::CUiResourceManager& resources = *WQ::CUiResourceManager::instance();
        const QStringList themes = resources.themes();
        emit sigThemeChosen(themes.value((themes.indexOf(resources.theme()) + 1) % themes.size()));
    });

    addGap(6);
    addWidget(m_serverIcon);
    addGap(6);
    addWidget(new QLabel(tr("分系统"), this));
    addGap(8);
    addWidget(m_serverBox);
    addWidget(stretch);
    addWidget(m_userIcon);
    addGap(6);
    addWidget(user);
    addGap(12);
    addWidget(m_themeButton);
    addGap(6);
    CClientToolBar::onUiResourceChanged();
}

void CClientToolBar::addGap(int width)
{
    auto* const gap = new QWidget(this);
    gap->setFixedWidth(width);
    addWidget(gap);
}

void CClientToolBar::showUser(QLabel& label)
{
    if (const auto user = utils::CSingletonT<QAV::CUserManager>::instance()->getUserInfoPtr()) {
        const QString name = WQ::sToQs(user->userName);
        const QString id = WQ::sToQs(user->userId);
        label.setText(name.isEmpty() || name == id ? id : tr("%1（%2）").arg(name, id));
        label.setToolTip(rightsText(*user));
    }
}

void CClientToolBar::showServer(int index)
{
    const QSignalBlocker blocker(m_serverBox);
    m_serverBox->setCurrentIndex(index);
}

void CClientToolBar::onUiResourceChanged()
{
    const WQ::CUiResourceManager& resources = *WQ::CUiResourceManager::instance();
    m_serverIcon->setPixmap(resources.image("img_server"));
    m_userIcon->setPixmap(resources.image("img_user"));
    m_themeButton->setIcon(resources.icon("img_theme"));
}

void CClientToolBar::paintEvent(QPaintEvent*)
{
    // Without the style's bevel: the window's surface and a line below.
    QPainter painter(this);
    const WQ::CUiResourceManager& resources = *WQ::CUiResourceManager::instance();
    painter.fillRect(rect(), resources.colour(WQ::key::TitleBackground));
    painter.fillRect(0, height() - 1, width(), 1, resources.colour(WQ::key::Border));
}

} // namespace workbench
