#include "CServerStatus.h"

#include <QAV/CKolmClientCenter.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>

#include <QHBoxLayout>
#include <QLabel>

namespace workbench
{

namespace
{

QAV::CKolmClientCenter& centre()
{
    return *utils::CSingletonT<QAV::CKolmClientCenter>::instance();
}

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

} // namespace

CServerStatus::CServerStatus(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 0, 6, 0);
    layout->setSpacing(12);
    for (const auto& [name, client] : centre().getAllClients()) {
        setState(WQ::sToQs(name), client->state());
    }
    centre().setStateCallback(
        [this, inbox = m_inbox.address()](const std::string& server, QAV::EConnectionState state) {
            inbox.post([this, server, state] { setState(WQ::sToQs(server), state); });
        });
}

CServerStatus::~CServerStatus()
{
    centre().setStateCallback({});
}

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
        return QStringLiteral("已连接");
    case QAV::EConnectionState::Connecting:
        return QStringLiteral("正在连接");
    case QAV::EConnectionState::Disconnected:
        return QStringLiteral("未连接");
    }
    return {};
}

void CServerStatus::setState(const QString& server, QAV::EConnectionState state)
{
    Mark& mark = m_marks[server];
    mark.state = state;
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
    mark.label->setText(QStringLiteral("<span style=\"color:%1\">●</span> %2").arg(colour, server.toHtmlEscaped()));
    mark.label->setToolTip(server + ": " + stateText(mark.state));
    mark.label->setAccessibleName(mark.label->toolTip());
}

} // namespace workbench
