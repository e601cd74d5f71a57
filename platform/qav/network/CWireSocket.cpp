// SPDX-License-Identifier: Apache-2.0
#include "network/CWireSocket.h"

#include "platform/wire/MessageCodec.h"
#include "platform/wire/Protocol.h"

#include <utils/Translation.h>

#include <QCoreApplication>
#include <QHostAddress>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QStringList>

#include <array>
#include <utility>

namespace QAV
{

namespace
{

constexpr std::size_t ReadBytes = std::size_t{64} * 1024;

QString namesOf(const QSslCertificate& certificate)
{
    QStringList names = certificate.subjectAlternativeNames().values();
    names << certificate.subjectInfo(QSslCertificate::CommonName);
    names.removeDuplicates();
    return names.join(QCoreApplication::translate("QAV", "、"));
}

QString certificateProblem(const QSslError& error, const QString& host)
{
    const QSslCertificate certificate = error.certificate();
    switch (error.error()) {
    case QSslError::CertificateExpired:
        return QCoreApplication::translate("QAV", "服务端证书已过期（有效期至 %1）")
            .arg(certificate.expiryDate().toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")));
    case QSslError::CertificateNotYetValid:
        return QCoreApplication::translate("QAV", "服务端证书尚未生效（自 %1 起有效），请检查本机时间")
            .arg(certificate.effectiveDate().toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")));
    case QSslError::HostNameMismatch:
        return QCoreApplication::translate("QAV", "服务端证书不属于主机 %1（证书属于 %2）")
            .arg(host, namesOf(certificate));
    case QSslError::SelfSignedCertificate:
    case QSslError::SelfSignedCertificateInChain:
    case QSslError::UnableToGetIssuerCertificate:
    case QSslError::UnableToGetLocalIssuerCertificate:
    case QSslError::UnableToVerifyFirstCertificate:
    case QSslError::CertificateUntrusted:
        return QCoreApplication::translate("QAV", "服务端证书的颁发机构不受信任（%1）")
            .arg(certificate.issuerInfo(QSslCertificate::CommonName).join(QCoreApplication::translate("QAV", "、")));
    case QSslError::CertificateRevoked:
    case QSslError::CertificateBlacklisted:
        return QCoreApplication::translate("QAV", "服务端证书已被吊销");
    default:
        return QCoreApplication::translate("QAV", "服务端证书无效：%1").arg(error.errorString());
    }
}

/// The reason of a failed handshake that is not about certificates.
QString handshakeProblem(const QString& libraryText)
{
    if (libraryText.contains(QLatin1String("wrong version number"))) {
        return QCoreApplication::translate("QAV", "对方没有使用TLS加密");
    }
    if (libraryText.contains(QLatin1String("unsupported protocol")) ||
        libraryText.contains(QLatin1String("protocol version"))) {
        return QCoreApplication::translate("QAV", "服务端不支持TLS 1.2及以上版本，为安全起见不予连接");
    }
    return QCoreApplication::translate("QAV", "TLS握手失败：%1").arg(libraryText);
}

/// Why a connection to `host` could not be made or was lost, for the user.
QString connectionProblem(const QString& host, const QSslSocket& socket, const QList<QSslError>& certificateErrors)
{
    if (!certificateErrors.isEmpty()) {
        QStringList problems;
        for (const QSslError& error : certificateErrors) {
            problems << certificateProblem(error, host);
        }
        problems.removeDuplicates();
        return problems.join(QCoreApplication::translate("QAV", "；"));
    }
    switch (socket.error()) {
    case QAbstractSocket::ConnectionRefusedError:
        return QCoreApplication::translate("QAV", "服务端拒绝连接或没有启动");
    case QAbstractSocket::RemoteHostClosedError:
        return QCoreApplication::translate("QAV", "服务端关闭了连接");
    case QAbstractSocket::HostNotFoundError:
        return QCoreApplication::translate("QAV", "找不到主机 %1").arg(host);
    case QAbstractSocket::SocketTimeoutError:
        return QCoreApplication::translate("QAV", "连接超时");
    case QAbstractSocket::NetworkError:
        return QCoreApplication::translate("QAV", "网络中断或主机不可达");
    case QAbstractSocket::SslHandshakeFailedError:
        return handshakeProblem(socket.errorString());
    default:
        return socket.errorString();
    }
}

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
            lose(utils::filled(utils::text("QAV", "证书文件无法读取或不含证书：%1"), m_server.caFile));
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
        lose(utils::text("QAV", "未加密的连接只能用于本机"));
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
