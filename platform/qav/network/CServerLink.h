// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "network/CBackOff.h"
#include "network/CChangeSubscription.h"
#include "network/CReplyIntake.h"
#include "network/CWireSocket.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace QAV
{

/// Keeps the connection to one server and sends requests over it: greeting, log-in, requests in order, replies,
/// keep-alive, reconnecting. Lives on the network thread of its transport; all functions are called there.
class CServerLink : public QObject
{
public:
    using Clock = std::chrono::steady_clock;
    using StateReport = std::function<void(EConnectionState, const std::string& reason)>;

    CServerLink(const NetworkServer& server, CReplyDecoder& decoder, StateReport report,
                CChangeSubscription::Report reportChanges);
    ~CServerLink() override;

    /// Starts connecting.
    void start();
    /// The request will be answered once, unless it is cancelled.
    void take(NetworkRequestPtr request);
    void cancel(ITransport::RequestId request);
    /// Whether to hear of changes.
    void setListening(bool listens);

private:
    enum class EPhase {
        Pausing,   ///< not connected; the pause timer may be running
        Greeting,  ///< from connecting to the server's welcome
        LoggingIn, ///< repeating the log-in after a lost connection
        Up,        ///< ready for requests
    };

    // Connection
    void open();
    void opened();
    void lost(const utils::NVError& reason);
    void attemptFailed(const utils::NVError& reason);
    void closeSocket();
    void comeUp();
    /// @param reason  why the server is not connected
    void setState(EConnectionState state, const std::string& reason);

    // Requests
    void pump();
    /// Sends the next request, or answers it with an error if it cannot be sent.
    void sendNext();
    /// Handles a violation of the protocol in the reply to the request `id`; 0: in another message.
    void violated(std::int64_t id, const utils::NVError& error);
    void keepAlive();
    /// Asks the server for changes, if they are wanted.
    void listen();

    // Messages
    void checkReply(std::int64_t id, const utils::NVError& violation);
    void receive(wire::Message message);
    void on(const wire::Welcome& message);
    void on(const wire::Refused& message);
    void on(const wire::LogInReply& message);
    void on(const wire::ReplyBegin& message);
    void on(wire::ReplyChunk& message);
    void on(wire::ReplyEnd& message);
    void on(wire::Changed& message) { m_changes.take(message); }
    void on(const wire::Ping& message);
    void on(const wire::Pong& message);
    void on(const wire::Closing& message);
    void on(const wire::Fault& message);
    // Messages that only clients send.
    void on(const wire::Hello&) { unexpected(); }
    void on(const wire::LogIn&) { unexpected(); }
    void on(const wire::Query&) { unexpected(); }
    void on(const wire::Operate&) { unexpected(); }
    void on(const wire::Cancel&) { unexpected(); }
    void on(const wire::Listen&) { unexpected(); }
    void unexpected();

    const NetworkServer m_server;
    CReplyDecoder& m_decoder;
    const StateReport m_report;
    CRequestBook m_book;
    CReplyIntake m_replies;
    CChangeSubscription m_changes;
    CBackOff m_backOff;
    CWireSocket* m_socket = nullptr; ///< null while there is no connection; destroys itself after close()
    EPhase m_phase = EPhase::Pausing;
    EConnectionState m_state = EConnectionState::Disconnected;
    std::string m_reason;         ///< last reported reason
    utils::NVError m_lastFailure; ///< of the last attempt to connect; success after a connection
    std::int64_t m_lastId = 0;    ///< ids are never reused, not even on another connection

    std::optional<LogInRequest> m_credentials; ///< for repeating the log-in; none if the server refused it
    std::int64_t m_logInId = 0;                ///< of the pending log-in; 0 if there is none
    bool m_loggedIn = false;                   ///< on the current connection
    bool m_closing = false;                    ///< the server is stopping and accepts no more requests
    std::string m_closingText;                 ///< the server's reason
    std::int32_t m_protocol = 0;               ///< of the current connection
    std::chrono::milliseconds m_keepAlive{0};
    Clock::time_point m_upSince;

    QTimer m_pauseTimer;
    QTimer m_connectTimer;
    QTimer m_keepAliveTimer;
};

} // namespace QAV
