// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/MonitorServer.h"

#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>

namespace service::daemon
{

namespace
{

constexpr int MaxConnections = 16;
constexpr int MaxRequestBytes = 8 * 1024;
constexpr int RequestMilliseconds = 5000;

const char* reasonOf(int status)
{
    switch (status) {
    case 200:
        return "OK";
    case 400:
        return "Bad Request";
    case 404:
        return "Not Found";
    case 405:
        return "Method Not Allowed";
    default:
        return "Service Unavailable";
    }
}

void send(QTcpSocket* socket, const MonitorReply& reply, bool isHead)
{
    QByteArray bytes = "HTTP/1.1 " + QByteArray::number(reply.status) + ' ' + reasonOf(reply.status) +
                       "\r\nContent-Type: " + reply.contentType +
                       "\r\nContent-Length: " + QByteArray::number(reply.body.size()) +
                       "\r\nCache-Control: no-store\r\nConnection: close\r\n\r\n";
    socket->write(isHead ? bytes : bytes + reply.body);
    socket->disconnectFromHost();
}

} // namespace

MonitorServer::MonitorServer(Handler handler) : m_handler(std::move(handler))
{
    connect(&m_server, &QTcpServer::newConnection, this, [this] { accept(); });
}

bool MonitorServer::listen(const QHostAddress& address, int port, QString& error)
{
    if (m_server.listen(address, static_cast<quint16>(port))) {
        return true;
    }
    error = m_server.errorString();
    return false;
}

bool MonitorServer::hasRoom()
{
    if (m_open >= MaxConnections && !m_silent.empty()) {
        delete m_silent.front();
    }
    return m_open < MaxConnections;
}

void MonitorServer::accept()
{
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        if (!hasRoom()) {
            delete socket;
            continue;
        }
        ++m_open;
        m_silent.push_back(socket);
        socket->setReadBufferSize(MaxRequestBytes);
        connect(socket, &QObject::destroyed, this, [this, socket] {
            --m_open;
            forgetSilent(socket);
        });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readRequest(socket); });
        QTimer::singleShot(RequestMilliseconds, socket, &QObject::deleteLater);
    }
}

void MonitorServer::forgetSilent(QTcpSocket* socket)
{
    m_silent.erase(std::remove(m_silent.begin(), m_silent.end(), socket), m_silent.end());
}

void MonitorServer::readRequest(QTcpSocket* socket)
{
    const QByteArray head = socket->peek(MaxRequestBytes);
    if (!head.contains("\r\n\r\n") && head.size() < MaxRequestBytes) {
        return;
    }
    disconnect(socket, &QTcpSocket::readyRead, this, nullptr);
    forgetSilent(socket);
    socket->readAll();
    const QList<QByteArray> words = head.left(head.indexOf("\r\n")).split(' ');
    if (words.size() != 3 || !words[2].startsWith("HTTP/1.")) {
        return send(socket, {400, "text/plain", "bad request\n"}, false);
    }
    const bool isHead = words[0] == "HEAD";
    if (!isHead && words[0] != "GET") {
        return send(socket, {405, "text/plain", "method not allowed\n"}, false);
    }
    m_handler(words[1], [socket = QPointer<QTcpSocket>(socket), isHead](const MonitorReply& reply) {
        if (socket) {
            send(socket, reply, isHead);
        }
    });
}

} // namespace service::daemon
