// SPDX-License-Identifier: Apache-2.0
#include "network/CWireSocket.h"

#include "network/ConnectionTexts.h"

#include "platform/wire/MessageCodec.h"
#include "platform/wire/Protocol.h"

#include <QHostAddress>
#include <QSslCertificate>
#include <QSslConfiguration>

#include <array>
#include <utility>

namespace QAV
{

namespace
{

constexpr std::size_t ReadBytes = std::size_t{64} * 1024;

} // namespace

CWireSocket::CWireSocket(const NetworkServer& server, Events events, QObject* parent)
    : QObject(parent), m_server(server), m_events(std::move(events)), m_reader(wire::MaxMessageBytes)
{
    connect(&m_socket, &QSslSocket::readyRead, this, [this] { read(); });
    connect(&m_socket, &QSslSocket::encrypted, this, [this] { connected(); });
    connect(&m_socket, QOverload<const QList<QSslError>&>::of(&QSslSocket::sslErrors), this,
            [this](const QList<QSslError>& errors) { m_certificateErrors = errors; });
    connect(&m_socket, &QSslSocket::errorOccurred, this, [this] {
        const QString problem = connectionProblem(QString::fromStdString(m_server.host), m_socket, m_certificateErrors);
        read(); // what came before the end
        lose(problem.toStdString());
    });
    if (!server.encrypted) {
        connect(&m_socket, &QSslSocket::connected, this, [this] { connected(); });
    }
}

void CWireSocket::open()
{
    const QString host = QString::fromStdString(m_server.host);
    if (!m_server.encrypted) {
        m_socket.connectToHost(host, m_server.port);
        return;
    }
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setProtocol(QSsl::TlsV1_2OrLater);
    tls.setPeerVerifyMode(QSslSocket::VerifyPeer);
    if (!m_server.caFile.empty()) {
        // Read for every connection, so that a new file takes effect without a restart.
        const auto authorities = QSslCertificate::fromPath(QString::fromStdString(m_server.caFile));
        if (authorities.isEmpty()) {
            lose("证书文件无法读取或不含证书：" + m_server.caFile);
            return;
        }
        tls.setCaCertificates(authorities);
    }
    m_socket.setSslConfiguration(tls);
    m_socket.connectToHostEncrypted(host, m_server.port);
}

void CWireSocket::connected()
{
    if (!m_server.encrypted && !m_socket.peerAddress().isLoopback()) {
        lose("未加密的连接只能用于本机");
        return;
    }
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_lastHeard = m_lastSent = Clock::now();
    m_events.opened();
}

void CWireSocket::send(const bson::BSONObj& message)
{
    m_socket.write(message.objdata(), message.objsize());
    m_lastSent = Clock::now();
}

void CWireSocket::close()
{
    m_closed = true;
    m_socket.disconnect(this);
    m_socket.abort();
    deleteLater();
}

void CWireSocket::read()
{
    std::array<char, ReadBytes> bytes;
    while (!m_closed) {
        const qint64 count = m_socket.read(bytes.data(), static_cast<qint64>(bytes.size()));
        if (count <= 0) {
            return;
        }
        m_lastHeard = Clock::now();
        for (std::size_t at = 0; at < static_cast<std::size_t>(count) && !m_closed;) {
            utils::NVError error;
            at += m_reader.feed(bytes.data() + at, static_cast<std::size_t>(count) - at, error);
            if (!error.isSuccess()) {
                lose(error.errorMsg());
                return;
            }
            if (!m_reader.hasFrame()) {
                continue;
            }
            wire::Frame frame = m_reader.take();
            const std::int64_t id = wire::idOf(frame);
            wire::Message message;
            const utils::NVError unreadable = wire::decode(std::move(frame), wire::LimitsAfterLogIn, message);
            if (unreadable.isSuccess()) {
                m_events.message(std::move(message));
            } else {
                m_events.unreadable(id, unreadable);
            }
        }
    }
}

void CWireSocket::lose(const std::string& reason)
{
    if (!m_closed) {
        m_events.lost({utils::EErrorCode::NotConnected, reason});
    }
}

} // namespace QAV
