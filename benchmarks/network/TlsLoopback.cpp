// SPDX-License-Identifier: Apache-2.0
#include "TlsLoopback.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>
#include <QTcpServer>

#include <chrono>
#include <future>
#include <stdexcept>
#include <thread>

namespace bench
{

namespace
{

using WallClock = std::chrono::steady_clock;

constexpr int Patience = 60000;
constexpr qint64 BytesInFlight = 1024 * 1024;
constexpr qint64 ReadBytes = 64 * 1024;

QByteArray contentOf(const QString& file)
{
    QFile source(file);
    return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
}

class SingleServer : public QTcpServer
{
public:
    qintptr waitForOne()
    {
        return waitForNewConnection(Patience) ? m_handle : throw std::runtime_error("nobody connects");
    }

protected:
    void incomingConnection(qintptr handle) override { m_handle = handle; }

private:
    qintptr m_handle = -1;
};

WallClock::time_point receive(quint16 port, const QString& authority, qint64 expected)
{
    QSslSocket socket;
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setProtocol(QSsl::TlsV1_2OrLater);
    tls.setCaCertificates(QSslCertificate::fromPath(authority));
    socket.setSslConfiguration(tls);
    socket.connectToHostEncrypted("127.0.0.1", port);
    if (!socket.waitForEncrypted(Patience)) {
        throw std::runtime_error(socket.errorString().toStdString());
    }
    std::vector<char> bytes(ReadBytes);
    for (qint64 got = 0; got < expected;) {
        const qint64 count = socket.read(bytes.data(), ReadBytes);
        if (count > 0) {
            got += count;
        } else if (!socket.waitForReadyRead(Patience)) {
            throw std::runtime_error("the connection is lost");
        }
    }
    return WallClock::now();
}

} // namespace

double sendOverTls(const std::vector<bson::BSONObj>& messages, support::TestCertificates& certificates)
{
    SingleServer server;
    if (!server.listen(QHostAddress::LocalHost)) {
        throw std::runtime_error("no port");
    }
    qint64 total = 0;
    for (const bson::BSONObj& message : messages) {
        total += message.objsize();
    }
    auto end = std::async(std::launch::async, &receive, server.serverPort(), certificates.authority(), total);
    QSslSocket socket;
    socket.setSocketDescriptor(server.waitForOne());
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setLocalCertificate(QSslCertificate(contentOf(certificates.certificate())));
    tls.setPrivateKey(QSslKey(contentOf(certificates.key()), QSsl::Ec));
    tls.setPeerVerifyMode(QSslSocket::VerifyNone);
    socket.setSslConfiguration(tls);
    socket.startServerEncryption();
    if (!socket.waitForEncrypted(Patience)) {
        throw std::runtime_error(socket.errorString().toStdString());
    }
    const WallClock::time_point begin = WallClock::now();
    for (const bson::BSONObj& message : messages) {
        socket.write(message.objdata(), message.objsize());
        while (socket.bytesToWrite() + socket.encryptedBytesToWrite() > BytesInFlight) {
            socket.waitForBytesWritten(Patience);
        }
    }
    while (socket.bytesToWrite() + socket.encryptedBytesToWrite() > 0 && socket.waitForBytesWritten(Patience)) {
    }
    return std::chrono::duration<double>(end.get() - begin).count();
}

} // namespace bench
