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

/// One connection: TLS and messages. It connects once and is not reused.
class CWireSocket : public QObject
{
public:
    using Clock = std::chrono::steady_clock;

    /// Not called after close().
    struct Events {
        std::function<void()> opened; ///< encrypted and verified, or plain to a loopback address
        std::function<void(wire::Message)> message;
        /// A message could not be read; `id` is that of its request, or 0. The connection continues.
        std::function<void(std::int64_t id, utils::NVError)> unreadable;
        std::function<void(utils::NVError)> lost; ///< connecting failed, or the connection is lost
    };

    CWireSocket(const NetworkServer& server, Events events, QObject* parent);

    void open();
    void send(const bson::BSONObj& message);
    /// Ends the connection. Destroys this object later, so it may be called from within an event.
    void close();

    /// Bytes that wait to be sent.
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
