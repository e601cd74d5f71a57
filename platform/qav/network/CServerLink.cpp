// SPDX-License-Identifier: Apache-2.0
#include "network/CServerLink.h"

#include "platform/wire/MessageCodec.h"
#include "platform/wire/Protocol.h"

#include <utils/Translation.h>

#include <QCoreApplication>
#include <QLoggingCategory>

#include <algorithm>
#include <utility>

namespace QAV
{

namespace
{

Q_LOGGING_CATEGORY(lcNetwork, "qav.network")

using utils::EErrorCode;
using utils::NVError;

// After a connection that lasted this long, the pauses start short again.
constexpr std::chrono::seconds GoodConnection{5};
// Half the number at which a server stops reading.
constexpr std::size_t MaxInFlight = 32;
// The upper limit of the server's keep-alive interval.
constexpr std::chrono::seconds LongestKeepAlive{3600};
// A server that has this much unread data gets no pongs. The data themselves show that the client is alive.
constexpr qint64 MaxUnsentBytes = qint64{64} * 1024;

std::string clientName()
{
    const QString name = QCoreApplication::applicationName() + ' ' + QCoreApplication::applicationVersion();
    return name.trimmed().left(200).toStdString();
}

bson::BSONObj logInMessage(std::int64_t id, const LogInRequest& request)
{
    return wire::encode(wire::LogIn{id, request.user, request.password, utils::nameOf(utils::language())});
}

/// A server's text as one line for the log.
std::string printable(const std::string& text)
{
    constexpr int MaxLength = 512;
    QString line = QString::fromStdString(text).left(MaxLength);
    for (QChar& c : line) {
        if (!c.isPrint() && !c.isSurrogate()) {
            c = QLatin1Char(' ');
        }
    }
    return line.toStdString();
}

} // namespace

CServerLink::CServerLink(const NetworkServer& server, CReplyDecoder& decoder, StateReport report,
                         CChangeSubscription::Report reportChanges)
    : m_server(server), m_decoder(decoder), m_report(std::move(report)),
      m_replies(m_book, decoder, server.maxReplyBytes), m_changes(std::move(reportChanges)),
      m_backOff(server.firstPause, server.longestPause)
{
    for (QTimer* timer : {&m_pauseTimer, &m_connectTimer}) {
        timer->setSingleShot(true);
    }
    connect(&m_pauseTimer, &QTimer::timeout, this, [this] { open(); });
    connect(&m_connectTimer, &QTimer::timeout, this,
            [this] { lost({EErrorCode::NotConnected, utils::text("QAV", "服务端在规定时间内没有响应")}); });
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
    const std::string why =
        utils::filled(utils::text("QAV", "连接中断：%1"), (m_closing ? m_closingText : reason.errorMsg()));
    if (!m_credentials && !m_book.next()) {
        setState(EConnectionState::Disconnected, why); // not needed until somebody logs in
        return;
    }
    // Requests wait for the outcome of the first attempt.
    setState(EConnectionState::Connecting, why);
    m_pauseTimer.start(m_backOff.next());
}

void CServerLink::attemptFailed(const NVError& reason)
{
    const NVError failure(reason.code(), utils::filled(utils::text("QAV", "无法连接：%1"), reason.errorMsg()));
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
            m_credentials = *logIn; // repeated when the server is connected
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
    listen();
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
        open(); // a user is waiting
    } else {
        pump();
    }
}

void CServerLink::pump()
{
    while (m_phase == EPhase::Up && m_logInId == 0 && !m_closing && m_book.next() && m_book.sentCount() < MaxInFlight) {
        sendNext();
    }
}

void CServerLink::sendNext()
{
    const NetworkRequest& request = *m_book.next();
    const std::int64_t id = ++m_lastId;
    bson::BSONObj message;
    NVError unsendable(EErrorCode::ResourceExhausted, utils::text("QAV", "请求过大，无法发送"));
    if (const auto* logIn = std::get_if<LogInRequest>(&request.what)) {
        message = logInMessage(id, *logIn);
        unsendable = {EErrorCode::InvalidValue, utils::text("QAV", "用户名或密码过长")};
    } else if (!m_loggedIn) {
        unsendable = {EErrorCode::NotLoggedIn, utils::text("wire", wire::NotLoggedInText)};
    } else if (const auto* query = std::get_if<nvservice::CKolmQueryDataReq>(&request.what)) {
        message = wire::encode(wire::Query{id, *query});
    } else {
        message = wire::encode(wire::Operate{id, std::get<nvservice::COperateDataReq>(request.what)});
    }
    if (message.isEmpty()) {
        m_book.takeNext()->fail(unsendable);
        return;
    }
    if (request.isLogIn()) {
        m_logInId = id;
        m_loggedIn = false;
    }
    m_book.markNextSent(id);
    m_socket->send(message);
}

void CServerLink::violated(std::int64_t id, const NVError& error)
{
    if (id != 0 && id == m_logInId) {
        lost(error);
        return;
    }
    if (const NetworkRequestPtr request = m_book.takeSent(id)) {
        m_decoder.abandon(id);
        m_socket->send(wire::encode(wire::Cancel{id}));
        request->fail(error);
        pump();
    }
}

void CServerLink::cancel(ITransport::RequestId request)
{
    const std::int64_t id = m_book.remove(request);
    if (id == 0) {
        return;
    }
    if (id == m_logInId) {
        lost({EErrorCode::NotConnected, utils::text("QAV", "服务端没有应答登录")}); // it is unknown who is logged in
        return;
    }
    m_decoder.abandon(id);
    m_socket->send(wire::encode(wire::Cancel{id}));
    pump();
}

void CServerLink::keepAlive()
{
    const auto now = Clock::now();
    if (now - m_socket->lastHeard() > wire::SilentIntervals * m_keepAlive) {
        lost({EErrorCode::NotConnected, utils::text("QAV", "服务端没有响应")});
    } else if (now - m_socket->lastSent() >= m_keepAlive / 2) {
        m_socket->send(wire::encode(wire::Ping{++m_lastId}));
    }
}

void CServerLink::receive(wire::Message message)
{
    std::visit([this](auto& kind) { on(kind); }, message);
}

void CServerLink::on(const wire::Welcome& message)
{
    if (m_phase != EPhase::Greeting) {
        unexpected();
        return;
    }
    if (message.protocol < wire::OldestProtocol || message.protocol > wire::NewestProtocol) {
        lost({EErrorCode::Unsupported,
              utils::filled(utils::text("QAV", "服务端的通信协议版本不受支持：%1"), message.protocol)});
        return;
    }
    if (!m_server.systemTag.empty() && message.systemTag != m_server.systemTag) {
        lost({EErrorCode::NotConnected, utils::filled(utils::text("QAV", "该地址上是分系统“%1”（%2），而不是 %3"),
                                                      message.serverName, message.systemTag, m_server.systemTag)});
        return;
    }
    m_protocol = message.protocol;
    m_keepAlive = std::min(std::chrono::seconds(message.keepAliveSeconds), LongestKeepAlive);
    if (!m_credentials) {
        comeUp();
        return;
    }
    m_phase = EPhase::LoggingIn;
    m_logInId = ++m_lastId;
    m_socket->send(logInMessage(m_logInId, *m_credentials));
}

void CServerLink::on(const wire::Refused& message)
{
    lost(message.error);
}

void CServerLink::on(const wire::LogInReply& message)
{
    if (m_logInId == 0 || message.id != m_logInId) {
        unexpected();
        return;
    }
    m_logInId = 0;
    m_loggedIn = message.error.isSuccess();
    if (m_phase == EPhase::LoggingIn) {
        if (m_loggedIn || message.error.code() == EErrorCode::NotLoggedIn) {
            if (!m_loggedIn) {
                m_credentials.reset();
            }
            comeUp();
        } else {
            lost(message.error);
        }
        return;
    }
    const NetworkRequestPtr request = m_book.takeSent(message.id);
    const bool isSameUser = m_credentials && m_credentials->user == std::get<LogInRequest>(request->what).user;
    if (!m_loggedIn || !isSameUser) {
        m_changes.forget();
    }
    m_credentials = m_loggedIn ? std::optional(std::get<LogInRequest>(request->what)) : std::nullopt;
    ITransport::Reply reply;
    reply.error = message.error;
    reply.records.push_back(message.user);
    request->handler(std::move(reply));
    listen();
    pump();
}

void CServerLink::setListening(bool listens)
{
    if (m_changes.setWanted(listens)) {
        listen();
    }
}

void CServerLink::listen()
{
    if (!m_changes.isWanted() || !m_loggedIn || m_phase != EPhase::Up) {
        return;
    }
    const wire::Listen request = m_changes.request();
    if (m_protocol >= wire::ChangesProtocol) {
        m_socket->send(wire::encode(request));
    }
}

void CServerLink::on(const wire::ReplyBegin& message)
{
    checkReply(message.id, m_replies.take(message));
}

void CServerLink::on(wire::ReplyChunk& message)
{
    checkReply(message.id, m_replies.take(message));
}

void CServerLink::on(wire::ReplyEnd& message)
{
    checkReply(message.id, m_replies.take(message));
    pump();
}

void CServerLink::checkReply(std::int64_t id, const NVError& violation)
{
    if (!violation.isSuccess()) {
        violated(id, violation);
    }
}

void CServerLink::on(const wire::Ping& message)
{
    if (m_socket->unsentBytes() < MaxUnsentBytes) {
        m_socket->send(wire::encode(wire::Pong{message.id}));
    }
}

void CServerLink::on(const wire::Pong&)
{
    // The socket has noted when it last received something.
}

void CServerLink::on(const wire::Closing& message)
{
    qCInfo(lcNetwork, "%s: the server is stopping: %s", m_server.host.c_str(), printable(message.text).c_str());
    m_closing = true;
    m_closingText = message.text;
}

void CServerLink::on(const wire::Fault& message)
{
    qCWarning(lcNetwork, "%s: the server reports: %s", m_server.host.c_str(),
              printable(message.error.errorMsg()).c_str());
}

void CServerLink::unexpected()
{
    qCWarning(lcNetwork, "%s: an unexpected message was ignored", m_server.host.c_str());
}

} // namespace QAV
