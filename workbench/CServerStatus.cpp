// SPDX-License-Identifier: Apache-2.0
#include "CServerStatus.h"

#include "ClientCentre.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QTextDocument>

namespace workbench
{

namespace
{

QString colourKey(QAV::EConnectionState state)
{
    switch (state) {
    case QAV::EConnectionState::Connected:
        return WQ::key::GlobalFall;
    case QAV::EConnectionState::Connecting:
        return WQ::key::Warning;
    case QAV::EConnectionState::Disconnected:
        return WQ::key::GlobalRise;
    }
    return WQ::key::Text;
}

/// Not everybody can tell the colours apart.
QString shape(QAV::EConnectionState state)
{
    switch (state) {
    case QAV::EConnectionState::Connected:
        return QStringLiteral("●");
    case QAV::EConnectionState::Connecting:
        return QStringLiteral("◐");
    case QAV::EConnectionState::Disconnected:
        return QStringLiteral("○");
    }
    return {};
}

} // namespace

CServerStatus::CServerStatus(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 0, 6, 0);
    layout->setSpacing(12);
    for (const auto& [name, client] : clientCentre().getAllClients()) {
        setState(WQ::sToQs(name), client->state(), client->stateReason());
    }
    m_states = clientCentre().listenToStates(
        [this, mailbox = m_mailbox.address()](const std::string& server, QAV::EConnectionState state) {
            const std::string reason = clientCentre().getClientByName(server)->stateReason();
            mailbox.post([this, server, state, reason] { setState(WQ::sToQs(server), state, reason); });
        });
}

CServerStatus::~CServerStatus() = default;

void CServerStatus::onUiResourceChanged()
{
    for (const auto& [server, mark] : m_marks) {
        show(server, mark);
    }
}

QString CServerStatus::stateText(QAV::EConnectionState state)
{
    switch (state) {
    case QAV::EConnectionState::Connected:
        return CServerStatus::tr("已连接");
    case QAV::EConnectionState::Connecting:
        return CServerStatus::tr("正在连接");
    case QAV::EConnectionState::Disconnected:
        return CServerStatus::tr("未连接");
    }
    return {};
}

void CServerStatus::setState(const QString& server, QAV::EConnectionState state, const std::string& reason)
{
    Mark& mark = m_marks[server];
    mark.state = state;
    mark.reason = WQ::sToQs(reason);
    if (!mark.label) {
        mark.label = new QLabel(this);
        mark.label->setObjectName("server." + server);
        layout()->addWidget(mark.label);
    }
    show(server, mark);
}

void CServerStatus::show(const QString& server, const Mark& mark)
{
    const QString colour = WQ::CUiResourceManager::instance()->colour(colourKey(mark.state)).name();
    mark.label->setText(
        QStringLiteral("<span style=\"color:%1\">%2</span> %3").arg(colour, shape(mark.state), server.toHtmlEscaped()));
    const QString text = mark.reason.isEmpty() ? tr("%1：%2").arg(server, stateText(mark.state))
                                               : tr("%1：%2，%3").arg(server, stateText(mark.state), mark.reason);
    // The server's text must not be shown as rich text.
    mark.label->setToolTip(Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text);
    mark.label->setAccessibleName(text);
}

} // namespace workbench
