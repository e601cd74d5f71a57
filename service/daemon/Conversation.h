// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/wire/Messages.h"
#include "service/daemon/FrameIntake.h"
#include "service/daemon/LogInAttempts.h"
#include "service/daemon/RequestScheduler.h"

#include <utils/Translation.h>

#include <boost/noncopyable.hpp>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace service::daemon
{

/// The protocol with one client, without a socket: bytes go in, messages come out.
///
/// Memory: a conversation holds at most one unread message, as many requests as the limits allow (1 MiB of messages and
/// one more), and the records of their answers. A message is encoded when it is taken, so a client that takes nothing
/// costs no more memory. Changes that it has not taken are merged. A message beyond 4 KiB needs a share of the
/// MessageRoom of all conversations until it is carried out. While a limit is reached, `wantsInput` is false; bytes
/// that are passed anyway wait.
///
/// Time: a message that has begun is read to its end. It must arrive at about 256 KiB/s.
///
/// Order: requests as `RequestScheduler` says, for the user who was logged in when they arrived.
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
    std::chrono::duration<double> lateness() const { return m_requests.lateness(); }

    /// Empty before a log-in has succeeded.
    std::string user() const;
    /// The number of messages that were unreadable, out of turn or without a log-in.
    std::int64_t refusedMessages() const { return m_refusedMessages; }

private:
    enum class EStage { Greeting, Anonymous, LoggedIn };

    void readInput();
    void readLater();
    void handleFrame(wire::Frame frame);
    void handleLongFrame(wire::Frame&& frame, std::int64_t id);
    void handle(const wire::Hello& hello);
    void handle(const wire::LogIn& logIn);
    void handle(wire::Query& query);
    void handle(wire::Operate& operate);
    void handle(const wire::Cancel& cancel);
    void handle(const wire::Listen& listen);
    void handle(const wire::Ping& ping);
    void handle(const wire::Pong&) {}
    void handle(const wire::Fault& fault);
    template <typename ServerMessage>
    void handle(const ServerMessage&);

    void addRequest(const RequestPtr& request);
    void requestFinished(const std::string& kind, const utils::NVError& unreadable);
    void finishLogIn(std::int64_t id, const service::LogInReply& reply);
    void answerLogIn(const wire::LogInReply& reply);

    /// What the client has not been told yet; empty if there is nothing.
    bson::BSONObj takeChanges();
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
    RequestScheduler m_requests;
    LogInAttempts m_logIns;
    FrameIntake m_intake; ///< destroyed before the requests, whose room it could be granted otherwise

    EStage m_stage = EStage::Greeting;
    std::int32_t m_protocol = 0;      ///< chosen after the greeting
    ChangeHub::ListenerPtr m_changes; ///< null unless the client listens to changes
    std::size_t m_frameBytes = 0;     ///< of the message being handled
    service::SessionPtr m_session;
    utils::ELanguage m_language = utils::language(); ///< of the texts for the client
    std::int64_t m_refusedMessages = 0;              ///< that became no request

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
