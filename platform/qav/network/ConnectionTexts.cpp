// SPDX-License-Identifier: Apache-2.0
#include "network/ConnectionTexts.h"

#include <QSslCertificate>
#include <QSslSocket>
#include <QStringList>

namespace QAV
{

namespace
{

QString namesOf(const QSslCertificate& certificate)
{
    QStringList names = certificate.subjectAlternativeNames().values();
    names << certificate.subjectInfo(QSslCertificate::CommonName);
    names.removeDuplicates();
    return names.join(QStringLiteral("、"));
}

QString certificateProblem(const QSslError& error, const QString& host)
{
    const QSslCertificate certificate = error.certificate();
    switch (error.error()) {
    case QSslError::CertificateExpired:
        return QStringLiteral("服务端证书已过期（有效期至 %1）")
            .arg(certificate.expiryDate().toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")));
    case QSslError::CertificateNotYetValid:
        return QStringLiteral("服务端证书尚未生效（自 %1 起有效），请检查本机时间")
            .arg(certificate.effectiveDate().toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")));
    case QSslError::HostNameMismatch:
        return QStringLiteral("服务端证书不属于主机 %1（证书属于 %2）").arg(host, namesOf(certificate));
    case QSslError::SelfSignedCertificate:
    case QSslError::SelfSignedCertificateInChain:
    case QSslError::UnableToGetIssuerCertificate:
    case QSslError::UnableToGetLocalIssuerCertificate:
    case QSslError::UnableToVerifyFirstCertificate:
    case QSslError::CertificateUntrusted:
        return QStringLiteral("服务端证书的颁发机构不受信任（%1）")
            .arg(certificate.issuerInfo(QSslCertificate::CommonName).join(QStringLiteral("、")));
    case QSslError::CertificateRevoked:
    case QSslError::CertificateBlacklisted:
        return QStringLiteral("服务端证书已被吊销");
    default:
        return QStringLiteral("服务端证书无效：%1").arg(error.errorString());
    }
}

/// The reason of a failed handshake that is not about certificates.
QString handshakeProblem(const QString& libraryText)
{
    if (libraryText.contains(QLatin1String("wrong version number"))) {
        return QStringLiteral("对方没有使用TLS加密");
    }
    if (libraryText.contains(QLatin1String("unsupported protocol")) ||
        libraryText.contains(QLatin1String("protocol version"))) {
        return QStringLiteral("服务端不支持TLS 1.2及以上版本，为安全起见不予连接");
    }
    return QStringLiteral("TLS握手失败：%1").arg(libraryText);
}

} // namespace

QString connectionProblem(const QString& host, const QSslSocket& socket, const QList<QSslError>& certificateErrors)
{
    if (!certificateErrors.isEmpty()) {
        QStringList problems;
        for (const QSslError& error : certificateErrors) {
            problems << certificateProblem(error, host);
        }
        problems.removeDuplicates();
        return problems.join(QStringLiteral("；"));
    }
    switch (socket.error()) {
    case QAbstractSocket::ConnectionRefusedError:
        return QStringLiteral("服务端拒绝连接或没有启动");
    case QAbstractSocket::RemoteHostClosedError:
        return QStringLiteral("服务端关闭了连接");
    case QAbstractSocket::HostNotFoundError:
        return QStringLiteral("找不到主机 %1").arg(host);
    case QAbstractSocket::SocketTimeoutError:
        return QStringLiteral("连接超时");
    case QAbstractSocket::NetworkError:
        return QStringLiteral("网络中断或主机不可达");
    case QAbstractSocket::SslHandshakeFailedError:
        return handshakeProblem(socket.errorString());
    default:
        return socket.errorString();
    }
}

} // namespace QAV
