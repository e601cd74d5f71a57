// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/ClientLink.h"

#include <algorithm>
#include <array>
#include <utility>

namespace service::daemon
{

namespace
{

using std::chrono::seconds;

constexpr int ReadBytes = 64 * 1024;
// How long the last message of a connection may take to arrive before the connection is cut.
constexpr seconds LastMessageTime(2);

} // namespace

ClientLink::ClientLink(ConversationContext& context, std::unique_ptr<QSslSocket> socket, const QSslConfiguration* tls)
    : m_context(context), m_socket(std::move(socket)), m_address(limitedAddress(m_socket->peerAddress())),
      m_peer(m_socket->peerAddress().toString().toStdString() + ' ' + std::to_string(m_socket->peerPort())),
      m_conversation(new Conversation(context, m_address, [this] { pump(); })), m_began(context.now()),
      m_lastProgress(m_began)
{
    m_context.metrics.connectionOpened();
    m_context.log.debug("connection_opened", {{"peer", m_peer}, {"sub_system", m_context.engine->serverName()}});
    m_socket->setReadBufferSize(ReadBytes);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_socket->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    connect(m_socket.get(), &QSslSocket::readyRead, this, [this] { pump(); });
    const auto written = [this] {
        m_lastProgress = m_context.now();
        pump();
    };
    connect(m_socket.get(), &QSslSocket::bytesWritten, this, written);
    connect(m_socket.get(), &QSslSocket::encryptedBytesWritten, this, written);
    connect(m_socket.get(), &QSslSocket::disconnected, this, [this] { disconnected(); });
    // A socket stays open after a TLS error.
    connect(
        m_socket.get(), &QAbstractSocket::errorOccurred, this,
        [this](QAbstractSocket::SocketError error) {
            if (error != QAbstractSocket::RemoteHostClosedError) {
                abort("connection");
            }
        },
        Qt::QueuedConnection);
    if (tls) {
        connect(m_socket.get(), &QSslSocket::encrypted, this, [this] { encrypted(); });
        m_socket->setSslConfiguration(*tls);
        m_socket->startServerEncryption();
    } else {
        m_isReady = true;
    }
}

ClientLink::~ClientLink()
{
    m_socket->disconnect(this);
    if (!m_isOver) {
        m_context.metrics.connectionClosed();
    }
    m_context.metrics.outputBytes(-m_reportedBytes);
}

std::string ClientLink::limitedAddress(const QHostAddress& address)
{
    bool isMapped = false;
    const quint32 ipv4 = address.toIPv4Address(&isMapped);
    if (isMapped) {
        return QHostAddress(ipv4).toString().toStdString();
    }
    Q_IPV6ADDR bytes = address.toIPv6Address();
    std::fill(std::begin(bytes.c) + 8, std::end(bytes.c), quint8{0});
    return QHostAddress(bytes).toString().toStdString();
}

void ClientLink::encrypted()
{
    m_isReady = true;
    pump();
}

void ClientLink::pump()
{
    // The socket emits signals while it is being written to.
    if (!m_isReady || m_isPumping || m_isOver) {
        return;
    }
    m_isPumping = true;
    exchange();
    m_isPumping = false;
    reportQueuedBytes();
    closeWhenSent();
}

void ClientLink::exchange()
{
    std::array<char, ReadBytes> bytes;
    if (m_isClosing) {
        m_socket->readAll(); // what nobody answers any more, so that the last message is not lost over it
        return;
    }
    for (bool hasProgress = true; hasProgress;) {
        hasProgress = false;
        while (m_conversation->wantsInput()) {
            const qint64 count = m_socket->read(bytes.data(), ReadBytes);
            if (count <= 0) {
                break;
            }
            m_conversation->receive(bytes.data(), static_cast<std::size_t>(count));
            hasProgress = true;
        }
        while (queuedBytes() < m_context.limits.outputBytesPerConnection) {
            const bson::BSONObj message = m_conversation->takeMessage();
            if (message.isEmpty()) {
                break;
            }
            if (queuedBytes() == 0) {
                m_lastProgress = m_context.now();
            }
            m_socket->write(message.objdata(), message.objsize());
            m_context.metrics.bytesSent(message.objsize());
            hasProgress = true;
        }
    }
    // The event loop would poll all sockets before it sent what is little. Of much, others have their turn.
    if (queuedBytes() < m_context.limits.outputBytesPerConnection) {
        m_socket->flush();
    }
}

void ClientLink::closeWhenSent()
{
    if (!m_isClosing && m_conversation->isOver()) {
        m_isClosing = true;
        m_reason = m_conversation->reason();
        m_closingSince = m_context.now();
    }
    // With unread bytes of the client the system would drop the last message. Only a client that knows of the shutdown
    // sends no more.
    if (m_isClosing && queuedBytes() == 0 && m_reason == "shutdown") {
        m_socket->disconnectFromHost();
    }
}

void ClientLink::checkTime()
{
    if (m_isOver) {
        return;
    }
    const TimePoint now = m_context.now();
    if (m_isClosing) {
        if (now - m_closingSince > LastMessageTime) {
            abort(m_reason.c_str());
        }
        return;
    }
    if (queuedBytes() == 0) {
        m_lastProgress = now;
    }
    if (now - m_lastProgress > seconds(m_context.timeouts.stallSeconds)) {
        return abort("stalled");
    }
    m_conversation->checkTime();
    if (!m_isReady && m_conversation->hasEnded()) {
        return abort("timeout");
    }
    pump();
}

void ClientLink::beginClosing(int graceMilliseconds)
{
    if (!m_isReady) {
        return abort("shutdown");
    }
    m_conversation->beginClosing(graceMilliseconds);
    pump();
}

void ClientLink::abort(const char* reason)
{
    if (m_isOver) {
        return;
    }
    m_reason = reason;
    m_socket->abort();
    disconnected();
}

void ClientLink::disconnected()
{
    if (m_isOver) {
        return;
    }
    m_isOver = true;
    m_context.metrics.connectionClosed();
    if (!m_isReady) {
        m_context.metrics.connectionRefused("handshake");
        m_context.log.warning("handshake_failed", {{"peer", m_peer}, {"error", m_socket->errorString()}});
    } else {
        m_context.log.info("connection_closed", {{"peer", m_peer},
                                                 {"user", m_conversation->user()},
                                                 {"reason", m_reason},
                                                 {"refused_messages", m_conversation->refusedMessages()}});
    }
    emit sigOver();
}

qint64 ClientLink::queuedBytes() const
{
    return m_socket->bytesToWrite() + m_socket->encryptedBytesToWrite();
}

void ClientLink::reportQueuedBytes()
{
    const qint64 bytes = queuedBytes();
    m_context.metrics.outputBytes(bytes - m_reportedBytes);
    m_reportedBytes = bytes;
}

} // namespace service::daemon
