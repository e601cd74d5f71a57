// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/TlsCredentials.h"

#include <QCoreApplication>
#include <QFile>
#include <QSslCertificate>
#include <QSslCipher>
#include <QSslKey>

#include <openssl/pem.h>
#include <openssl/x509.h>

#include <array>
#include <memory>

namespace service::daemon
{

namespace
{

constexpr int NearDays = 30;

// With forward secrecy and authenticated encryption.
constexpr std::array<const char*, 9> Ciphers = {
    "TLS_AES_256_GCM_SHA384",        "TLS_CHACHA20_POLY1305_SHA256",  "TLS_AES_128_GCM_SHA256",
    "ECDHE-ECDSA-AES256-GCM-SHA384", "ECDHE-RSA-AES256-GCM-SHA384",   "ECDHE-ECDSA-CHACHA20-POLY1305",
    "ECDHE-RSA-CHACHA20-POLY1305",   "ECDHE-ECDSA-AES128-GCM-SHA256", "ECDHE-RSA-AES128-GCM-SHA256"};

QList<QSslCipher> ciphers()
{
    QList<QSslCipher> known;
    for (const char* name : Ciphers) {
        const QSslCipher cipher(QString::fromLatin1(name));
        if (!cipher.isNull()) {
            known << cipher;
        }
    }
    return known;
}

TlsCredentials failed(const QString& error)
{
    TlsCredentials credentials;
    credentials.error = error;
    return credentials;
}

QSslKey readKey(const QByteArray& pem)
{
    for (const QSsl::KeyAlgorithm algorithm : {QSsl::Ec, QSsl::Rsa}) {
        QSslKey key(pem, algorithm, QSsl::Pem, QSsl::PrivateKey);
        if (!key.isNull()) {
            return key;
        }
    }
    return {};
}

bool belongTogether(const QSslCertificate& certificate, const QSslKey& key)
{
    const QByteArray pem = key.toPem();
    const std::unique_ptr<BIO, decltype(&BIO_free)> bytes(BIO_new_mem_buf(pem.constData(), pem.size()), BIO_free);
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> native(
        PEM_read_bio_PrivateKey(bytes.get(), nullptr, nullptr, nullptr), EVP_PKEY_free);
    return native && X509_check_private_key(static_cast<X509*>(certificate.handle()), native.get()) == 1;
}

QString localTime(const QDateTime& time)
{
    return time.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

} // namespace

TlsCredentials loadTlsCredentials(const TlsSettings& settings)
{
    QFile certificateFile(settings.certificateFile);
    if (!certificateFile.open(QIODevice::ReadOnly)) {
        return failed(QCoreApplication::translate("service", "无法读取证书文件 %1：%2")
                          .arg(settings.certificateFile, certificateFile.errorString()));
    }
    const QList<QSslCertificate> chain = QSslCertificate::fromDevice(&certificateFile, QSsl::Pem);
    if (chain.isEmpty()) {
        return failed(
            QCoreApplication::translate("service", "证书文件 %1 中没有PEM格式的证书").arg(settings.certificateFile));
    }
    QFile keyFile(settings.keyFile);
    if (!keyFile.open(QIODevice::ReadOnly)) {
        return failed(QCoreApplication::translate("service", "无法读取私钥文件 %1：%2")
                          .arg(settings.keyFile, keyFile.errorString()));
    }
    const QSslKey key = readKey(keyFile.readAll());
    if (key.isNull()) {
        return failed(QCoreApplication::translate("service", "私钥文件 %1 中没有可用的PEM私钥（RSA或EC，不加密）")
                          .arg(settings.keyFile));
    }
    if (!belongTogether(chain.first(), key)) {
        return failed(QCoreApplication::translate("service", "私钥 %1 与证书 %2 不匹配")
                          .arg(settings.keyFile, settings.certificateFile));
    }

    TlsCredentials credentials;
    credentials.configuration = QSslConfiguration::defaultConfiguration();
    credentials.configuration.setProtocol(QSsl::TlsV1_2OrLater);
    credentials.configuration.setCiphers(ciphers());
    credentials.configuration.setPeerVerifyMode(QSslSocket::VerifyNone); // users log in with a password
    credentials.configuration.setLocalCertificateChain(chain);
    credentials.configuration.setPrivateKey(key);

    const QSslCertificate& own = chain.first();
    const QDateTime now = QDateTime::currentDateTime();
    credentials.end = own.expiryDate();
    if (own.effectiveDate() > now) {
        credentials.warnings << QCoreApplication::translate("service", "证书自 %1 起有效，在此之前客户端会拒绝连接")
                                    .arg(localTime(own.effectiveDate()));
    }
    if (keyFile.permissions() & (QFile::ReadOther | QFile::WriteOther)) {
        credentials.warnings
            << QCoreApplication::translate("service", "私钥文件 %1 对所有人可读").arg(settings.keyFile);
    }
    return credentials;
}

bool isEndNear(const QDateTime& end)
{
    return end.isValid() && end < QDateTime::currentDateTime().addDays(NearDays);
}

QString textOfEnd(const QDateTime& end)
{
    return end < QDateTime::currentDateTime()
               ? QCoreApplication::translate("service", "证书已于 %1 过期，客户端会拒绝连接").arg(localTime(end))
               : QCoreApplication::translate("service", "证书将于 %1 过期，请及时更换").arg(localTime(end));
}

} // namespace service::daemon
