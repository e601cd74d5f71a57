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

/// What all conversations about one sub-system share. Outlives them.
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

/// The protocol with one client, from its first byte to its last, without a socket: bytes go in, messages come out.
///
/// Memory: no more than one message of a client is held unread, as many requests as the limits allow (1 MiB of messages
/// and one more), and the records of their answers; a message is encoded when somebody takes it, so that a client who
/// takes nothing costs nothing further. A message beyond 4 KiB needs room, of which there is so much for all
/// conversations together, until it is carried out. `wantsInput` is false while a limit is reached; bytes that come all
/// the same wait.
///
/// Time: a message that has begun is read to its end and has to come with 256 KiB a second or hardly less.
///
/// Order: the operations of a client are carried out one after the other, as they came, in the name of the user who was
/// logged in when they came; a query sees all operations that came before it. Answers come as they are ready, parts of
/// large ones in turns.
///
/// Used on one thread. Messages that take long to read are read by the executor of requests. A message that makes no
/// sense is answered with a typed error and costs nothing else; only when frames cannot be told apart any more, the
/// conversation is over.
class Conversation : private boost::noncopyable
{
public:
    /// @param peer     the client's address without its port, by which log-ins are limited.
    /// @param changed  called when something happened that was not caused by a call: messages may be taken, or input
    ///                 is wanted again. It may destroy nothing.
    Conversation(ConversationContext& context, std::string peer, std::function<void()> changed);
    ~Conversation();

    bool wantsInput() const;
    void receive(const char* data, std::size_t size);

    /// The next message; empty when there is none at present.
    bson::BSONObj takeMessage();
    /// Nothing comes any more: the connection is to be closed when everything that was taken has been sent.
    bool isOver() const;
    /// It will be over as soon as the messages that it has are taken.
    bool hasEnded() const { return m_isEnding; }
    /// Why it is over, or "": "framing", "refused", "timeout", "shutdown".
    const char* reason() const { return m_reason; }

    /// Looks at the clock; to be called about once a second.
    void checkTime();
    /// Tells the client that the server stops. What was received is answered; `isOver` after that.
    void beginClosing(int graceMilliseconds);

    /// How late the slowest answer that still holds records is, beside one that is taken at 256 KiB a second; 0 without
    /// any.
    std::chrono::duration<double> lateness() const;

    /// Empty before a log-in has succeeded.
    std::string user() const;
    /// How many messages could not be read, came out of turn or without a log-in.
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
    /// Metrics and log of a message that does not become a request.
    void noteRefused(const std::string& kind, const utils::NVError& error);
    void logRefused(const std::string& kind, const utils::NVError& error);
    /// Answers what makes no sense and belongs to no request.
    void refuseMessage(const utils::NVError& error);
    void refuseClient(const utils::NVError& error);
    void fault(const utils::NVError& error);
    void end(const char* reason);

    ConversationContext& m_context;
    std::string m_peer;
    std::function<void()> m_changed;
    std::shared_ptr<Conversation*> m_self; ///< null inside once the conversation is gone

    EStage m_stage = EStage::Greeting;
    wire::FrameReader m_reader;
    std::string m_input;            ///< bytes that were received while no input was wanted
    std::size_t m_frameBytes = 0;   ///< of the message that is being handled
    MessageRoom::Share m_frameRoom; ///< for the message that is being received or handled, if it is a long one
    bool m_isWaitingForRoom = false;
    TimePoint m_frameBegan;
    service::SessionPtr m_session;
    bool m_isLoggingIn = false;
    int m_refusedLogIns = 0;            ///< in a row
    std::int64_t m_refusedMessages = 0; ///< that became no request

    std::vector<RequestPtr> m_requests; ///< in the order in which they came
    std::size_t m_turn = 0;             ///< whose answer is continued next
    std::size_t m_requestBytes = 0;     ///< of messages whose requests are not carried out yet
    std::size_t m_heldBytes = 0;        ///< of answers, those that are being made included
    std::deque<bson::BSONObj> m_messages;
    std::size_t m_messageBytes = 0;

    TimePoint m_stageBegan; ///< or the last log-in attempt
    TimePoint m_lastHeard;
    TimePoint m_lastSent;
    std::int64_t m_lastPing = 0;
    bool m_isClosing = false; ///< the client has been told that the server stops
    bool m_isEnding = false;  ///< no input counts any more
    const char* m_reason = "";
};

} // namespace service::daemon
