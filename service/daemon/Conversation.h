#pragma once

#include "platform/wire/FrameReader.h"
#include "platform/wire/Messages.h"
#include "service/daemon/Answer.h"
#include "service/daemon/Configuration.h"
#include "service/daemon/EventLog.h"
#include "service/daemon/Executor.h"
#include "service/daemon/HeldBytes.h"
#include "service/daemon/LogInGuard.h"
#include "service/daemon/MessageRoom.h"
#include "service/daemon/Metrics.h"
#include "service/engine/DataEngine.h"

#include <boost/noncopyable.hpp>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace service::daemon
{

/// The objects that all conversations of one sub-system share. Must outlive them.
struct ConversationContext {
    service::DataEnginePtr engine;
    IExecutor& requests;
    IExecutor& logIns;
    LogInGuard& guard;
    Metrics& metrics;
    EventLog& log;
    HeldBytes& held;
    MessageRoom& room;
    LimitSettings limits;
    TimeoutSettings timeouts;
    std::function<TimePoint()> now;
};

/// The protocol with one client, without a socket: bytes go in, messages come out.
///
/// Memory: a conversation holds at most one unread message, as many requests as the limits allow (1 MiB of messages and
/// one more), and the records of their answers. A message is encoded when it is taken, so a client that takes nothing
/// costs no more memory. A message beyond 4 KiB needs a share of the MessageRoom of all conversations until it is
/// carried out. While a limit is reached, `wantsInput` is false; bytes that are passed anyway wait.
///
/// Time: a message that has begun is read to its end. It must arrive at about 256 KiB/s.
///
/// Order: the operations of a client are carried out one after another in the order of arrival, for the user who was
/// logged in when they arrived. A query sees all operations that arrived before it. Answers are sent as soon as they
/// are ready; chunks of large answers are interleaved.
///
/// Used on one thread. The executor of requests decodes large messages. An invalid message is answered with a typed
/// error and has no other effect. Only lost framing ends the conversation.
class Conversation : private boost::noncopyable
{
public:
    /// @param peer     the client's address without the port, for the limits on log-ins
    /// @param changed  called after a change that no call has caused: there are messages to take, or input is wanted
    ///                 again. Must not destroy the conversation.
    Conversation(ConversationContext& context, std::string peer, std::function<void()> changed);
    ~Conversation();

    bool wantsInput() const;
    void receive(const char* data, std::size_t size);

    /// The next message; empty if there is none now.
    bson::BSONObj takeMessage();
    /// True if there will be no more messages: close the connection when all taken messages have been sent.
    bool isOver() const;
    /// True if the conversation will be over as soon as its messages have been taken.
    bool hasEnded() const { return m_isEnding; }
    /// Why it is over, or "": "framing", "refused", "timeout", "shutdown".
    const char* reason() const { return m_reason; }

    /// Checks the time limits. Call it about once a second.
    void checkTime();
    /// Tells the client that the server stops. Received requests are still answered; then `isOver` is true.
    void beginClosing(int graceMilliseconds);

    /// How far the slowest answer with unsent records is behind 256 KiB/s; 0 if there is none.
    std::chrono::duration<double> lateness() const;

    /// Empty before a log-in has succeeded.
    std::string user() const;
    /// The number of messages that were unreadable, out of turn or without a log-in.
    std::int64_t refusedMessages() const { return m_refusedMessages; }

private:
    enum class EStage { Greeting, Anonymous, LoggedIn };
    struct Request;
    using RequestPtr = std::shared_ptr<Request>;

    void readInput();
    void askForRoom();
    bool isMessageLate() const;
    void handleFrame(wire::Frame frame);
    void handleLongFrame(wire::Frame frame, std::int64_t id);
    void handle(const wire::Hello& hello);
    void handle(const wire::LogIn& logIn);
    void handle(wire::Query& query);
    void handle(wire::Operate& operate);
    void handle(const wire::Cancel& cancel);
    void handle(const wire::Ping& ping);
    void handle(const wire::Pong&) {}
    void handle(const wire::Fault& fault);
    template <typename ServerMessage>
    void handle(const ServerMessage&);

    void addRequest(RequestPtr request);
    void releaseBytes(Request& request);
    void forget(const RequestPtr& request);
    bool isUnderWay(std::int64_t id) const;
    void startRequests();
    void start(const RequestPtr& request);
    void setHeldBytes(std::size_t bytes);
    bool mayHold(std::size_t bytes) const;
    void finish(const RequestPtr& request);
    void countRefusedLogIn();
    void finishLogIn(const wire::LogIn& logIn, const service::LogInReply& reply, TimePoint began);
    void answer(Request& request);
    void answerDone(const Request& request, utils::EErrorCode outcome);
    void dispose(std::vector<nvservice::IDataPtr> records);
    bson::BSONObj takeAnswer();

    void send(const bson::BSONObj& message);
    void refuse(std::int64_t id, const utils::NVError& error);
    /// Logs and counts a message that does not become a request.
    void noteRefused(const std::string& kind, const utils::NVError& error);
    void logRefused(const std::string& kind, const utils::NVError& error);
    /// Answers an invalid message that belongs to no request.
    void refuseMessage(const utils::NVError& error);
    void refuseClient(const utils::NVError& error);
    void fault(const utils::NVError& error);
    void end(const char* reason);

    ConversationContext& m_context;
    std::string m_peer;
    std::function<void()> m_changed;
    std::shared_ptr<Conversation*> m_self; ///< points to null after the conversation was destroyed

    EStage m_stage = EStage::Greeting;
    wire::FrameReader m_reader;
    std::string m_input;            ///< bytes received while no input was wanted
    std::size_t m_frameBytes = 0;   ///< of the message being handled
    MessageRoom::Share m_frameRoom; ///< for a large message being received or handled
    bool m_isWaitingForRoom = false;
    TimePoint m_frameBegan;
    service::SessionPtr m_session;
    bool m_isLoggingIn = false;
    int m_refusedLogIns = 0;            ///< in a row
    std::int64_t m_refusedMessages = 0; ///< that became no request

    std::vector<RequestPtr> m_requests; ///< in the order of arrival
    std::size_t m_turn = 0;             ///< the request whose answer is continued next
    std::size_t m_requestBytes = 0;     ///< of messages whose requests are not carried out yet
    std::size_t m_heldBytes = 0;        ///< of answers, including those being produced
    std::deque<bson::BSONObj> m_messages;
    std::size_t m_messageBytes = 0;

    TimePoint m_stageBegan; ///< or the time of the last log-in attempt
    TimePoint m_lastHeard;
    TimePoint m_lastSent;
    std::int64_t m_lastPing = 0;
    bool m_isClosing = false; ///< the client has been told that the server stops
    bool m_isEnding = false;  ///< further input is ignored
    const char* m_reason = "";
};

} // namespace service::daemon
