#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QTcpServer>

#include <deque>
#include <functional>

class QTcpSocket;

namespace service::daemon
{

/// What a monitoring program gets.
struct MonitorReply {
    int status = 200;
    QByteArray contentType = "text/plain; charset=utf-8";
    QByteArray body;
};

/// Answers GET and HEAD of a few paths over HTTP/1.1, one request for each connection. A connection lives for a few
/// seconds. Of too many the one goes that has been longest without a request.
class MonitorServer : public QObject
{
public:
    using Answer = std::function<void(const MonitorReply&)>;
    /// Called with a path ("/health") on the server's thread; the answer is given there, at once or later, once.
    using Handler = std::function<void(const QByteArray& path, Answer answer)>;

    explicit MonitorServer(Handler handler);

    /// False and an error text when the port cannot be had.
    bool listen(const QHostAddress& address, int port, QString& error);
    int port() const { return m_server.serverPort(); }

private:
    void accept();
    bool hasRoom();
    void forgetSilent(QTcpSocket* socket);
    void readRequest(QTcpSocket* socket);

    Handler m_handler;
    int m_open = 0;
    std::deque<QTcpSocket*> m_silent; ///< without a request so far, the oldest first
    QTcpServer m_server;
};

} // namespace service::daemon
