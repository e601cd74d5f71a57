// SPDX-License-Identifier: Apache-2.0
#include "network/CServerLink.h"

#include "platform/wire/MessageCodec.h"
#include "platform/wire/Protocol.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <utility>

namespace QAV
{

namespace
{

Q_LOGGING_CATEGORY(lcNetwork, "qav.network")

using utils::EErrorCode;
using utils::NVError;

// A connection that lasted that long was a good one: the next pause begins small again.
constexpr std::chrono::seconds GoodConnection{5};

std::string clientName()
{
    const QString name = QCoreApplication::applicationName() + ' ' + QCoreApplication::applicationVersion();
    return name.trimmed().left(200).toStdString();
}

} // namespace

CServerLink::CServerLink(const NetworkServer& server, CReplyDecoder& decoder, StateReport report)
    : m_server(server), m_decoder(decoder), m_report(std::move(report)),
      m_backOff(server.firstPause, server.longestPause)
{
    for (QTimer* timer : {&m_pauseTimer, &m_connectTimer}) {
        timer->setSingleShot(true);
    }
    connect(&m_pauseTimer, &QTimer::timeout, this, [this] { open(); });
    connect(&m_connectTimer, &QTimer::timeout, this,
            [this] { lost({EErrorCode::NotConnected, "服务端在规定时间内没有响应"}); });
    connect(&m_keepAliveTimer, &QTimer::timeout, this, [this] { keepAlive(); });
}

CServerLink::~CServerLink()
{
    closeSocket();
}

void CServerLink::start()
{
    open();
}

void CServerLink::open()
{
    m_pauseTimer.stop();
    const NVError unusable = CNetworkTransport::check(m_server);
    if (!unusable.isSuccess()) {
        attemptFailed(unusable);
        return;
    }
    m_phase = EPhase::Greeting;
    setState(EConnectionState::Connecting, m_reason);
    m_loggedIn = false;
    m_logInId = 0;
    m_closing = false;
    CWireSocket::Events events;
    events.opened = [this] { opened(); };
    events.message = [this](wire::Message message) { receive(std::move(message)); };
    events.unreadable = [this](std::int64_t id, const NVError& error) {
        qCWarning(lcNetwork, "%s: a message could not be read: %s", m_server.host.c_str(), error.errorMsg().c_str());
        violated(id, error);
    };
    events.lost = [this](const NVError& reason) { lost(reason); };
    m_socket = new CWireSocket(m_server, std::move(events), this);
    m_connectTimer.start(m_server.connectDeadline);
    m_socket->open();
}

void CServerLink::opened()
{
    m_socket->send(
        wire::encode(wire::Hello{wire::OldestProtocol, wire::NewestProtocol, wire::sdkVersion(), clientName()}));
}

void CServerLink::lost(const NVError& reason)
{
    const bool wasUp = m_phase == EPhase::Up;
    closeSocket();
    for (const std::int64_t id : m_book.requeueSent()) {
        m_decoder.abandon(id);
    }
    if (!wasUp) {
        attemptFailed(reason);
        return;
    }
    qCInfo(lcNetwork, "%s: connection lost: %s", m_server.host.c_str(), reason.errorMsg().c_str());
    if (Clock::now() - m_upSince >= GoodConnection) {
        m_backOff.reset();
    }
    m_phase = EPhase::Pausing;
    const std::string why = "连接中断：" + (m_closing ? m_closingText : reason.errorMsg());
    if (!m_credentials && !m_book.next()) {
        setState(EConnectionState::Disconnected, why); // nobody needs it before somebody logs in
        return;
    }
    // Requests wait for the outcome of the first attempt.
    setState(EConnectionState::Connecting, why);
    m_pauseTimer.start(m_backOff.next());
}

void CServerLink::attemptFailed(const NVError& reason)
{
    const NVError failure(reason.code(), "无法连接：" + reason.errorMsg());
    if (failure.errorMsg() != m_lastFailure.errorMsg()) {
        qCInfo(lcNetwork, "%s: cannot connect: %s", m_server.host.c_str(), reason.errorMsg().c_str());
    }
    m_lastFailure = failure;
    m_phase = EPhase::Pausing;
    setState(EConnectionState::Disconnected, m_lastFailure.errorMsg());
    m_pauseTimer.start(m_backOff.next());
    for (const NetworkRequestPtr& request :
         m_book.takeWaiting([](const NetworkRequest& candidate) { return !candidate.isInDoubt(); })) {
        if (const auto* logIn = std::get_if<LogInRequest>(&request->what)) {
            m_credentials = *logIn; // for the server when it is there
        }
        request->fail(m_lastFailure);
    }
}

void CServerLink::closeSocket()
{
    m_connectTimer.stop();
    m_keepAliveTimer.stop();
    m_logInId = 0;
    if (m_socket) {
        std::exchange(m_socket, nullptr)->close();
    }
}

void CServerLink::comeUp()
{
    m_phase = EPhase::Up;
    m_upSince = Clock::now();
    m_lastFailure = {};
    m_connectTimer.stop();
    m_keepAliveTimer.start(m_keepAlive / 2);
    setState(EConnectionState::Connected, {});
    pump();
}

void CServerLink::setState(EConnectionState state, const std::string& reason)
{
    const bool isOther = state != m_state || reason != m_reason;
    m_state = state;
    if (isOther) {
        m_reason = reason;
        m_report(state, m_reason);
    }
}

void CServerLink::take(NetworkRequestPtr request)
{
    const bool isLogIn = request->isLogIn();
    if (!m_lastFailure.isSuccess() && !isLogIn) {
        request->fail(m_lastFailure);
        return;
    }
    m_book.add(std::move(request));
    if (m_phase == EPhase::Pausing && (isLogIn || !m_pauseTimer.isActive())) {
        open(); // somebody sits there and waits
    } else {
        pump();
    }
}

} // namespace QAV
