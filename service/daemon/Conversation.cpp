// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Conversation.h"

#include "platform/wire/FieldNames.h"
#include "platform/wire/MessageCodec.h"
#include "platform/wire/Protocol.h"

#include <utils/Translation.h>

#include <algorithm>
#include <utility>

namespace service::daemon
{

namespace
{

using std::chrono::seconds;
using utils::EErrorCode;
using utils::NVError;

// Pongs, faults and refusals that wait to be taken; beyond that nothing more is read from the client.
constexpr std::size_t MaxMessageBytesWaiting = std::size_t{64} * 1024;
// Per connection, so that invalid messages do not fill the log; the others are counted.
constexpr std::int64_t MaxRefusedMessagesLogged = 10;
// A longer message is decoded on a worker, not on the thread that serves all clients.
constexpr std::size_t LongFrameBytes = wire::MaxTextBytes + std::size_t{4} * 1024;

const nvservice::DocumentLimits& limitsOf(bool isLoggedIn)
{
    return isLoggedIn ? wire::LimitsAfterLogIn : wire::LimitsBeforeLogIn;
}

/// A limited set of names, whatever a client sends.
const char* nameForMetrics(std::string_view kind)
{
    if (kind == wire::LogInType) {
        return "log_in";
    }
    if (kind == wire::QueryType) {
        return "query_other";
    }
    return kind == wire::OperateType ? "operate_other" : "message";
}

} // namespace

Conversation::Conversation(ConversationContext& context, std::string peer, std::function<void()> changed)
    : m_context(context), m_peer(std::move(peer)), m_changed(std::move(changed)),
      m_self(std::make_shared<Conversation*>(this)),
      m_requests(context, m_peer,
                 [this](const std::string& kind, const NVError& unreadable) { requestFinished(kind, unreadable); }),
      m_logIns(context, m_peer, [this](std::int64_t id, const service::LogInReply& reply) { finishLogIn(id, reply); }),
      m_intake(context, [this] { readLater(); }), m_stageBegan(context.now()), m_lastHeard(m_stageBegan),
      m_lastSent(m_stageBegan)
{
}

Conversation::~Conversation()
{
    *m_self = nullptr;
}

bool Conversation::wantsInput() const
{
    if (m_isEnding || m_intake.isWaitingForRoom()) {
        return false;
    }
    // A message that has begun is read to its end, so that its duration depends on the client only.
    return m_intake.isInFrame() ||
           (!m_logIns.isUnderWay() && m_messageBytes < MaxMessageBytesWaiting && !m_requests.isFull());
}

void Conversation::receive(const char* data, std::size_t size)
{
    m_lastHeard = m_context.now();
    m_context.metrics.bytesReceived(static_cast<std::int64_t>(size));
    if (m_isEnding) {
        return;
    }
    m_intake.append(data, size);
    readInput();
}

void Conversation::readInput()
{
    while (wantsInput() && m_intake.hasInput()) {
        const utils::CLanguageScope scope(m_language);
        const NVError error = m_intake.read();
        if (!error.isSuccess()) {
            refuseMessage(error);
            end("framing");
        } else if (m_intake.hasFrame()) {
            handleFrame(m_intake.takeFrame());
            m_intake.releaseRoom();
        }
    }
    if (m_isEnding) {
        m_intake.clear();
    }
}

void Conversation::readLater()
{
    m_context.requests.post([] {},
                            [self = m_self] {
                                if (*self) {
                                    (*self)->readInput();
                                    (*self)->m_changed();
                                }
                            });
}

void Conversation::handleFrame(wire::Frame frame)
{
    const std::int64_t id = wire::idOf(frame);
    m_frameBytes = frame.size();
    if (frame.size() > LongFrameBytes) {
        return handleLongFrame(std::move(frame), id);
    }
    wire::Message message;
    // An unreadable log-in gets the answer to a log-in.
    const bool isLogIn = wire::kindOf(frame) == wire::LogInType;
    const std::string kind = nameForMetrics(wire::kindOf(frame));
    const NVError error = wire::decode(std::move(frame), limitsOf(m_stage == EStage::LoggedIn), message);
    const NVError outOfTurn(EErrorCode::Malformed, utils::text("service", "通信次序错误：握手之前不能发送其他消息"));
    const bool isOutOfTurn =
        m_stage == EStage::Greeting && error.isSuccess() && !std::holds_alternative<wire::Hello>(message);
    if (isOutOfTurn || !error.isSuccess()) {
        noteRefused(kind, isOutOfTurn ? outOfTurn : error);
    }
    if (isOutOfTurn) {
        refuseClient(outOfTurn);
    } else if (error.isSuccess()) {
        std::visit([this](auto& content) { handle(content); }, message);
    } else if (id == 0 || m_requests.isUnderWay(id)) {
        fault(error);
    } else if (isLogIn) {
        send(wire::encode(wire::LogInReply{id, error, nullptr}));
    } else {
        refuse(id, error);
    }
}

void Conversation::handleLongFrame(wire::Frame&& frame, std::int64_t id)
{
    const bool isOperation = wire::kindOf(frame) == wire::OperateType;
    if (id == 0 || (!isOperation && wire::kindOf(frame) != wire::QueryType)) {
        return refuseMessage(
            {EErrorCode::ResourceExhausted,
             utils::filled(utils::text("service", "通信数据超出限制: 只有请求可以超过 %1 字节"), LongFrameBytes)});
    }
    addRequest(std::make_shared<Request>(id, isOperation, std::move(frame)));
}

void Conversation::handle(const wire::Hello& hello)
{
    if (m_stage != EStage::Greeting) {
        return refuseMessage({EErrorCode::Malformed, utils::text("service", "通信次序错误：重复的握手消息")});
    }
    std::int32_t protocol = 0;
    const NVError error = wire::chooseProtocol(hello, protocol);
    m_context.log.info("hello", {{"peer", m_peer},
                                 {"client", hello.client},
                                 {"sdk", hello.sdkVersion},
                                 {"outcome", nameOfErrorCode(error.code()).key}});
    if (!error.isSuccess()) {
        return refuseClient(error);
    }
    m_protocol = protocol;
    m_stage = EStage::Anonymous;
    m_stageBegan = m_context.now();
    send(wire::encode(wire::Welcome{protocol, wire::sdkVersion(), m_context.engine->serverName(),
                                    m_context.engine->systemTag(), m_context.timeouts.keepAliveSeconds}));
}

void Conversation::handle(const wire::LogIn& logIn)
{
    m_session.reset();
    m_changes.reset();
    m_language = utils::languageNamed(logIn.language).value_or(m_language);
    const utils::CLanguageScope scope(m_language);
    m_stage = EStage::Anonymous;
    m_stageBegan = m_context.now();
    m_intake.setMaxFrameBytes(limitsOf(false).bytes);
    const NVError refusal = m_logIns.begin(logIn, m_language, m_isClosing);
    if (!refusal.isSuccess()) {
        answerLogIn({logIn.id, refusal, nullptr});
    }
}

void Conversation::finishLogIn(std::int64_t id, const service::LogInReply& reply)
{
    const utils::CLanguageScope scope(m_language);
    m_stageBegan = m_context.now();
    if (reply.error.isSuccess()) {
        m_session = reply.session;
        m_stage = EStage::LoggedIn;
        m_intake.setMaxFrameBytes(limitsOf(true).bytes);
    }
    answerLogIn({id, reply.error, reply.user});
    m_lastHeard = m_context.now();
    readInput();
    m_changed();
}

void Conversation::answerLogIn(const wire::LogInReply& reply)
{
    send(wire::encode(reply));
    if (m_logIns.areUsedUp()) {
        fault({EErrorCode::ResourceExhausted, utils::text("service", "登录失败次数过多，连接已被数据服务关闭")});
        end("refused");
    }
}

void Conversation::handle(wire::Query& query)
{
    addRequest(std::make_shared<Request>(query.id, false, std::move(query.request)));
}

void Conversation::handle(wire::Operate& operate)
{
    addRequest(std::make_shared<Request>(operate.id, true, std::move(operate.request)));
}

void Conversation::addRequest(const RequestPtr& request)
{
    if (m_requests.isUnderWay(request->id)) {
        return refuseMessage({EErrorCode::InvalidValue, utils::text("service", "请求编号重复")});
    }
    if (m_isClosing) {
        return refuse(request->id, {EErrorCode::NotConnected, utils::text("service", "数据服务正在停止")});
    }
    if (m_stage != EStage::LoggedIn) {
        const NVError error(EErrorCode::NotLoggedIn, utils::text("wire", wire::NotLoggedInText));
        noteRefused(request->kind, error);
        return refuse(request->id, error);
    }
    request->session = m_session;
    request->job->language = m_language;
    request->bytes = m_frameBytes;
    request->room = m_intake.takeRoom();
    m_requests.add(request);
}

void Conversation::requestFinished(const std::string& kind, const NVError& unreadable)
{
    if (!unreadable.isSuccess()) {
        logRefused(kind, unreadable);
    }
    readInput();
    m_changed();
}

void Conversation::handle(const wire::Cancel& cancel)
{
    const NVError cancelled(EErrorCode::Cancelled, utils::text("service", "请求已取消"));
    if (m_requests.cancel(cancel.id, cancelled)) {
        refuse(cancel.id, cancelled);
    }
}

void Conversation::handle(const wire::Listen& listen)
{
    if (m_protocol < wire::ChangesProtocol) {
        return refuseMessage({EErrorCode::Unsupported, utils::text("wire", wire::UnknownKindText)});
    }
    if (m_stage != EStage::LoggedIn) {
        return refuseMessage({EErrorCode::NotLoggedIn, utils::text("wire", wire::NotLoggedInText)});
    }
    std::optional<service::ChangePosition> from;
    if (!listen.position.empty()) {
        // Nobody knows what came after a position that is none.
        constexpr service::ChangePosition Unknown{-1, 0, 0};
        from = service::ChangePosition::fromText(listen.position).value_or(Unknown);
    }
    m_changes = m_context.changes.listen(m_session, from, [this] { m_changed(); });
}

bson::BSONObj Conversation::takeChanges()
{
    if (!m_changes || !m_changes->unread.hasNews()) {
        return {};
    }
    service::UnreadChanges::News news = m_changes->unread.take();
    return wire::encode(wire::Changed{news.position.text(), news.isComplete, std::move(news.records)});
}

void Conversation::handle(const wire::Ping& ping)
{
    send(wire::encode(wire::Pong{ping.id}));
}

void Conversation::handle(const wire::Fault& fault)
{
    // No answer, because the client might answer that with a fault, too.
    m_context.log.warning("client_fault", {{"peer", m_peer}, {"user", user()}, {"text", fault.error.errorMsg()}});
}

template <typename ServerMessage>
void Conversation::handle(const ServerMessage&)
{
    refuseMessage({EErrorCode::Malformed, utils::text("service", "通信次序错误：该消息只能由服务端发送")});
}

std::string Conversation::user() const
{
    return m_session ? m_session->login() : std::string();
}

bson::BSONObj Conversation::takeMessage()
{
    const utils::CLanguageScope scope(m_language);
    bson::BSONObj message;
    if (!m_messages.empty()) {
        message = m_messages.front();
        m_messages.pop_front();
        m_messageBytes -= static_cast<std::size_t>(message.objsize());
    } else if (!m_isEnding) {
        message = takeChanges();
        if (message.isEmpty()) {
            message = m_requests.takeAnswer();
        }
    }
    if (!message.isEmpty()) {
        m_lastSent = m_context.now();
        readInput();
    }
    return message;
}

void Conversation::beginClosing(int graceMilliseconds)
{
    if (m_isClosing || m_isEnding) {
        return;
    }
    const utils::CLanguageScope scope(m_language);
    m_isClosing = true;
    m_reason = "shutdown";
    send(wire::encode(wire::Closing{graceMilliseconds, utils::text("service", "数据服务正在停止")}));
}

bool Conversation::isOver() const
{
    return m_messages.empty() && (m_isEnding || (m_isClosing && m_requests.isEmpty() && !m_logIns.isUnderWay()));
}

void Conversation::checkTime()
{
    if (m_isEnding) {
        return;
    }
    const utils::CLanguageScope scope(m_language);
    const TimePoint now = m_context.now();
    const TimeoutSettings& timeouts = m_context.timeouts;
    if (!wantsInput()) {
        m_lastHeard = now;
    }
    const bool isGreetingLate = m_stage == EStage::Greeting && now - m_stageBegan > seconds(timeouts.handshakeSeconds);
    const bool isLogInLate =
        m_stage == EStage::Anonymous && !m_logIns.isUnderWay() && now - m_stageBegan > seconds(timeouts.logInSeconds);
    const bool isSilent = now - m_lastHeard > seconds(wire::SilentIntervals * timeouts.keepAliveSeconds);
    if (m_intake.isLate()) {
        fault({EErrorCode::DeadlineExceeded, utils::text("service", "消息传输过慢，连接已被数据服务关闭")});
        return end("timeout");
    }
    if (isGreetingLate || isLogInLate || isSilent || m_requests.isAnswerLate()) {
        fault({EErrorCode::DeadlineExceeded, utils::text("service", "连接超时，已被数据服务关闭")});
        return end("timeout");
    }
    m_requests.startRequests(); // for which others may have made room
    if (m_stage != EStage::Greeting && now - m_lastSent >= seconds(timeouts.keepAliveSeconds)) {
        send(wire::encode(wire::Ping{++m_lastPing}));
    }
}

void Conversation::send(const bson::BSONObj& message)
{
    m_lastSent = m_context.now();
    m_messageBytes += static_cast<std::size_t>(message.objsize());
    m_messages.push_back(message);
}

void Conversation::refuse(std::int64_t id, const NVError& error)
{
    send(wire::encode(wire::ReplyEnd{id, error, 0, {}}));
}

void Conversation::noteRefused(const std::string& kind, const NVError& error)
{
    m_context.metrics.requestDone(kind, error.code(), Metrics::Seconds(0));
    logRefused(kind, error);
}

void Conversation::logRefused(const std::string& kind, const NVError& error)
{
    if (++m_refusedMessages <= MaxRefusedMessagesLogged) {
        m_context.log.warning("message_refused", {{"peer", m_peer},
                                                  {"user", user()},
                                                  {"kind", kind},
                                                  {"outcome", nameOfErrorCode(error.code()).key},
                                                  {"text", error.errorMsg()}});
    }
}

void Conversation::refuseMessage(const NVError& error)
{
    noteRefused("message", error);
    fault(error);
}

void Conversation::refuseClient(const NVError& error)
{
    send(wire::encode(wire::Refused{error, wire::OldestProtocol, wire::NewestProtocol, wire::sdkVersion()}));
    end("refused");
}

void Conversation::fault(const NVError& error)
{
    send(wire::encode(wire::Fault{error}));
}

void Conversation::end(const char* reason)
{
    m_isEnding = true;
    m_reason = reason;
}

} // namespace service::daemon
