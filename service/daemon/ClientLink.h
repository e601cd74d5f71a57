#pragma once

#include "service/daemon/Conversation.h"

#include <QObject>
#include <QSslSocket>
#include <QString>

#include <memory>

namespace service::daemon
{

/// One client's socket and the conversation over it. Reads only what the conversation wants and takes messages from it
/// only while the network takes them, so that a client costs bounded memory whatever it does.
class ClientLink : public QObject
{
    Q_OBJECT

public:
    /// @param socket  connected; the link owns it.
    /// @param tls     null: no TLS.
    ClientLink(ConversationContext& context, std::unique_ptr<QSslSocket> socket, const QSslConfiguration* tls);
    ~ClientLink() override;

    /// Looks at the clock; to be called about once a second.
    void checkTime();
    /// See `Conversation::beginClosing`.
    void beginClosing(int graceMilliseconds);
    bool hasUser() const { return !m_conversation->user().empty(); }
    TimePoint began() const { return m_began; }
    /// See `Conversation`.
    std::chrono::duration<double> lateness() const { return m_conversation->lateness(); }
    /// Closes the connection at once.
    void abort(const char* reason);

    /// The address by which connections and log-ins are limited: without port, of IPv6 the network's part only.
    const std::string& address() const { return m_address; }
    static std::string limitedAddress(const QHostAddress& address);

signals:
    /// The connection is closed; the link is of no use any more.
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
    bool m_isReady = false; ///< TLS stands, or there is none
    bool m_isPumping = false;
    bool m_isClosing = false; ///< everything was given to the socket
    bool m_isOver = false;
    std::string m_reason = "client";
    TimePoint m_began;
    TimePoint m_lastProgress; ///< the network took bytes, or there were none
    TimePoint m_closingSince;
    qint64 m_reportedBytes = 0;
};

} // namespace service::daemon
