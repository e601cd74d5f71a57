// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "network/CBackOff.h"
#include "network/CReplyDecoder.h"
#include "network/CRequestBook.h"
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

/// Keeps one server connected and carries requests to it: greeting, log-in, sending in order, answers, keep-alive, lost
/// connections. Lives on the network thread of its transport; everything is called there.
class CServerLink : public QObject
{
public:
    using Clock = std::chrono::steady_clock;
    using StateReport = std::function<void(EConnectionState, const std::string& reason)>;

    CServerLink(const NetworkServer& server, CReplyDecoder& decoder, StateReport report);
    ~CServerLink() override;

    /// Begins to connect.
    void start();
    /// Takes a request; from now on it will be answered once, unless it is cancelled.
    void take(NetworkRequestPtr request);
    void cancel(ITransport::RequestId request);

private:
    enum class EPhase {
        Pausing,   ///< no connection; the pause timer runs
        Greeting,  ///< connecting, until the server's welcome
        LoggingIn, ///< repeating the log-in of a lost connection
        Up,        ///< requests are sent
    };

    // Connection
    void open();
    void opened();
    void lost(const utils::NVError& reason);
    void attemptFailed(const utils::NVError& reason);
    void closeSocket();
    void comeUp();
    /// @param reason  why there is no connection.
    void setState(EConnectionState state, const std::string& reason);

    // Requests
    void pump();
    /// Sends the next request and notes it, or answers it because it can't be sent.
    void sendNext();
    /// The server has broken the protocol in the reply to `id`; 0: in no reply in particular.
    void violated(std::int64_t id, const utils::NVError& error);
    void keepAlive();

    // Messages
    void receive(wire::Message message);
    void on(const wire::Welcome& message);
    void on(const wire::Refused& message);
    void on(const wire::LogInReply& message);
    void on(const wire::ReplyBegin& message);
    void on(wire::ReplyChunk& message);
    void on(wire::ReplyEnd& message);
    void on(const wire::Ping& message);
    void on(const wire::Pong& message);
    void on(const wire::Closing& message);
    void on(const wire::Fault& message);
    // Only a client sends these.
    void on(const wire::Hello&) { unexpected(); }
    void on(const wire::LogIn&) { unexpected(); }
    void on(const wire::Query&) { unexpected(); }
    void on(const wire::Operate&) { unexpected(); }
    void on(const wire::Cancel&) { unexpected(); }
    void unexpected();

    const NetworkServer m_server;
    CReplyDecoder& m_decoder;
    const StateReport m_report;
    CRequestBook m_book;
    CBackOff m_backOff;
    CWireSocket* m_socket = nullptr; ///< null while there is no connection; destroys itself after close()
    EPhase m_phase = EPhase::Pausing;
    EConnectionState m_state = EConnectionState::Disconnected;
    std::string m_reason;         ///< as reported
    utils::NVError m_lastFailure; ///< why the last attempt failed; success while none has since the last connection
    std::int64_t m_lastId = 0;    ///< never used twice, on no connection

    std::optional<LogInRequest> m_credentials; ///< of the last log-in that no server refused
    std::int64_t m_logInId = 0;                ///< of the log-in that is under way; 0 when none is
    bool m_loggedIn = false;                   ///< on the present connection
    bool m_closing = false;                    ///< the server is about to stop and takes no more requests
    std::string m_closingText;                 ///< the server's reason for that
    std::chrono::milliseconds m_keepAlive{0};
    Clock::time_point m_upSince;

    QTimer m_pauseTimer;
    QTimer m_connectTimer;
    QTimer m_keepAliveTimer;
};

} // namespace QAV
