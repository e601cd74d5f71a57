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

/// How a state is shown. Not everybody can tell the colours apart.
struct Look {
    QLatin1String colourKey;
    const char* shape;
    const char* text; ///< to be translated
};

Look lookOf(QAV::EConnectionState state)
{
    switch (state) {
    case QAV::EConnectionState::Connected:
        return {WQ::key::GlobalFall, "●", QT_TRANSLATE_NOOP("workbench::CServerStatus", "已连接")};
    case QAV::EConnectionState::Connecting:
        return {WQ::key::Warning, "◐", QT_TRANSLATE_NOOP("workbench::CServerStatus", "正在连接")};
    case QAV::EConnectionState::Disconnected:
        return {WQ::key::GlobalRise, "○", QT_TRANSLATE_NOOP("workbench::CServerStatus", "未连接")};
    }
    return {WQ::key::Text, "", ""};
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
    return tr(lookOf(state).text);
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
    const Look look = lookOf(mark.state);
    const QString colour = WQ::CUiResourceManager::instance()->colour(look.colourKey).name();
    mark.label->setText(QStringLiteral("<span style=\"color:%1\">%2</span> %3")
                            .arg(colour, QString::fromUtf8(look.shape), server.toHtmlEscaped()));
    const QString text = mark.reason.isEmpty() ? tr("%1：%2").arg(server, stateText(mark.state))
                                               : tr("%1：%2，%3").arg(server, stateText(mark.state), mark.reason);
    // The server's text must not be shown as rich text.
    mark.label->setToolTip(Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text);
    mark.label->setAccessibleName(text);
}

} // namespace workbench
