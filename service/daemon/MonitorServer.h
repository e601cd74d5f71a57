// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QTcpServer>

#include <deque>
#include <functional>

class QTcpSocket;

namespace service::daemon
{

/// The reply to a monitoring program.
struct MonitorReply {
    int status = 200;
    QByteArray contentType = "text/plain; charset=utf-8";
    QByteArray body;
};

/// Answers GET and HEAD requests for a few paths over HTTP/1.1, one request per connection. A connection is open for a
/// few seconds at most. If there are too many, the one that has waited longest without a request is closed.
class MonitorServer : public QObject
{
public:
    using Answer = std::function<void(const MonitorReply&)>;
    /// Called with a path ("/health") on the server's thread. It must answer exactly once on that thread, at once or
    /// later.
    using Handler = std::function<void(const QByteArray& path, Answer answer)>;

    explicit MonitorServer(Handler handler);

    /// Returns false and an error text if the port is not available.
    bool listen(const QHostAddress& address, int port, QString& error);
    int port() const { return m_server.serverPort(); }

private:
    void accept();
    bool hasRoom();
    void forgetSilent(QTcpSocket* socket);
    void readRequest(QTcpSocket* socket);

    Handler m_handler;
    int m_open = 0;
    std::deque<QTcpSocket*> m_silent; ///< without a complete request so far, the oldest first
    QTcpServer m_server;
};

} // namespace service::daemon
