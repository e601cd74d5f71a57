// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CNetworkTransport.h>

#include "platform/wire/FrameReader.h"
#include "platform/wire/Messages.h"

#include <QObject>
#include <QSslError>
#include <QSslSocket>

#include <chrono>
#include <cstdint>
#include <functional>

namespace QAV
{

/// One connection, from the first packet to the last: TLS and messages. It connects once and is then thrown away.
class CWireSocket : public QObject
{
public:
    using Clock = std::chrono::steady_clock;

    /// None is called after close().
    struct Events {
        std::function<void()> opened; ///< encrypted and verified, or plain to a loopback address
        std::function<void(wire::Message)> message;
        /// A message could not be read; `id` is that of its request, or 0. The connection goes on.
        std::function<void(std::int64_t id, utils::NVError)> unreadable;
        std::function<void(utils::NVError)> lost; ///< the connection was not made, or is gone
    };

    CWireSocket(const NetworkServer& server, Events events, QObject* parent);

    void open();
    void send(const bson::BSONObj& message);
    /// Ends the connection and destroys this object later, so that it may be called from within an event.
    void close();

    /// What the network has not taken yet.
    qint64 unsentBytes() const { return m_socket.bytesToWrite() + m_socket.encryptedBytesToWrite(); }

    Clock::time_point lastHeard() const { return m_lastHeard; }
    Clock::time_point lastSent() const { return m_lastSent; }

private:
    void connected();
    void read();
    void lose(const std::string& reason);

    const NetworkServer m_server;
    Events m_events;
    QSslSocket m_socket;
    QList<QSslError> m_certificateErrors;
    wire::FrameReader m_reader;
    bool m_closed = false;
    Clock::time_point m_lastHeard = Clock::now();
    Clock::time_point m_lastSent = Clock::now();
};

} // namespace QAV
