// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/Conversation.h"

#include <QObject>
#include <QSslSocket>
#include <QString>

#include <memory>

namespace service::daemon
{

/// One client's socket and its conversation. Reads only as much as the conversation wants, and takes messages from it
/// only while the network accepts them. So the memory of a client is bounded, whatever it does.
class ClientLink : public QObject
{
    Q_OBJECT

public:
    /// @param socket  connected; the link takes ownership
    /// @param tls     null: no TLS
    ClientLink(ConversationContext& context, std::unique_ptr<QSslSocket> socket, const QSslConfiguration* tls);
    ~ClientLink() override;

    /// Checks the time limits. Call it about once a second.
    void checkTime();
    /// See `Conversation::beginClosing`.
    void beginClosing(int graceMilliseconds);
    bool hasUser() const { return !m_conversation->user().empty(); }
    TimePoint began() const { return m_began; }
    /// See `Conversation`.
    std::chrono::duration<double> lateness() const { return m_conversation->lateness(); }
    /// Closes the connection at once.
    void abort(const char* reason);

    /// The address for the limits on connections and log-ins: without the port, and for IPv6 only the network part.
    const std::string& address() const { return m_address; }
    static std::string limitedAddress(const QHostAddress& address);

signals:
    /// The connection is closed. The link must not be used any more.
    void sigOver();

private:
    void encrypted();
    void disconnected();
    void pump();
    void exchange();
    void closeWhenSent();
    qint64 queuedBytes() const;
    void reportQueuedBytes();

    ConversationContext& m_context;
    std::unique_ptr<QSslSocket> m_socket;
    std::string m_address;
    std::string m_peer; ///< with port, for the log
    std::unique_ptr<Conversation> m_conversation;
    bool m_isReady = false; ///< TLS is established, or there is none
    bool m_isPumping = false;
    bool m_isClosing = false; ///< everything has been passed to the socket
    bool m_isOver = false;
    std::string m_reason = "client";
    TimePoint m_began;
    TimePoint m_lastProgress; ///< when the network last accepted bytes or there were none to send
    TimePoint m_closingSince;
    qint64 m_reportedBytes = 0;
};

} // namespace service::daemon
