// SPDX-License-Identifier: Apache-2.0
#include "CEmptyPanels.h"

#include "CPanelDocks.h"
#include "CSession.h"
#include "ClientCentre.h"
#include "PanelTables.h"

#include <QAV/IkolmDockableWidget.h>
#include <WQ/EmptyReason.h>
#include <WQ/StringConversion.h>

namespace workbench
{

CEmptyPanels::CEmptyPanels(CPanelDocks& docks, const CSession& session, QObject* parent)
    : QObject(parent), m_docks(docks), m_session(session)
{
    m_states = clientCentre().listenToStates(
        [this, mailbox = m_mailbox.address()](const std::string& server, QAV::EConnectionState state) {
            mailbox.post([this, server, state] { onState(WQ::sToQs(server), state); });
        });
}

CEmptyPanels::~CEmptyPanels() = default;

void CEmptyPanels::showReasons()
{
    for (QAV::IkolmDockableWidget* const panel : m_docks.panels()) {
        WQ::setEmptyReason(*panel, reasonFor(*panel));
    }
}

QString CEmptyPanels::reasonFor(const QAV::IkolmDockableWidget& panel) const
{
    if (!panel.followsServer()) {
        return m_lost.size() < clientCentre().getAllClients().size() ? QString()
                                                                     : tr("未连接分系统\n恢复连接后自动刷新");
    }
    const QString server = panel.serverName();
    if (server.isEmpty()) {
        return tr("已选择全部分系统\n请在工具栏中选择一个分系统");
    }
    const auto client = clientCentre().getClientByName(WQ::qsToS(server));
    const QString reason = WQ::sToQs(client->stateReason());
    switch (client->state()) {
    case QAV::EConnectionState::Disconnected:
        return reason.isEmpty() ? tr("分系统“%1”未连接\n恢复连接后自动刷新").arg(server)
                                : tr("分系统“%1”未连接：%2\n恢复连接后自动刷新").arg(server, reason);
    case QAV::EConnectionState::Connecting:
        return tr("正在连接分系统“%1”…").arg(server);
    case QAV::EConnectionState::Connected:
        break;
    }
    const QString refusal = m_session.refusal(server);
    return refusal.isEmpty() ? QString() : tr("没有权限：未能登录分系统“%1”\n%2").arg(server, refusal);
}

void CEmptyPanels::onState(const QString& server, QAV::EConnectionState state)
{
    const bool isBack = state == QAV::EConnectionState::Connected && m_lost.count(server) > 0;
    if (state == QAV::EConnectionState::Connected) {
        m_lost.erase(server);
    } else {
        m_lost.insert(server);
    }
    showReasons();
    if (!isBack) {
        return;
    }
    for (QAV::IkolmDockableWidget* const panel : m_docks.panels()) {
        const bool shows = panel->serverName().isEmpty() || panel->serverName() == server;
        if (shows && m_docks.isInFront(*panel) && hasOnlyEmptyTables(*panel)) {
            emit sigServerIsBack(panel);
        }
    }
}

} // namespace workbench
