// SPDX-License-Identifier: Apache-2.0
#include "support/tls/TestCertificates.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <stdexcept>

namespace support
{

namespace
{

void write(const QString& file, const char* text)
{
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly) || out.write(text) < 0) {
        throw std::runtime_error("cannot write " + file.toStdString());
    }
}

} // namespace

TestCertificates::TestCertificates()
{
    write(path("localhost.ext"), "subjectAltName=DNS:localhost,IP:127.0.0.1\n");
    write(path("elsewhere.ext"), "subjectAltName=DNS:elsewhere.example\n");
    for (const char* key : {"authority", "stranger", "server", "other"}) {
        run(qPrintable(QString("ecparam -name prime256v1 -genkey -noout -out %1.key").arg(QLatin1String(key))));
    }
    run("req -x509 -new -key authority.key -days 365 -subj /CN=authority -out authority.pem");
    run("req -x509 -new -key stranger.key -days 365 -subj /CN=stranger -out stranger.pem");
    run("req -new -key server.key -subj /CN=server -out server.csr");
}

QString TestCertificates::certificate(EKind kind)
{
    const bool isStranger = kind == EKind::OtherAuthority;
    const int days = kind == EKind::Expired ? -1 : kind == EKind::EndsSoon ? 20 : 365;
    const QString name = QString("server-%1.pem").arg(static_cast<int>(kind));
    if (QFileInfo::exists(m_directory.filePath(name))) {
        return m_directory.filePath(name);
    }
    if (kind == EKind::SelfSigned) {
        run(qPrintable(QString("req -x509 -new -key server.key -days 365 -subj /CN=localhost -out %1").arg(name)));
    } else {
        sign("server", isStranger ? "stranger" : "authority", days,
             kind == EKind::WrongHost ? "elsewhere" : "localhost", name);
    }
    return m_directory.filePath(name);
}

QString TestCertificates::rsaCertificate()
{
    const QString name = QStringLiteral("rsa.pem");
    if (!QFileInfo::exists(m_directory.filePath(name))) {
        run("genrsa -out rsa.key 2048");
        run("req -new -key rsa.key -subj /CN=server -out rsa.csr");
        sign("rsa", "authority", 365, "localhost", name);
    }
    return m_directory.filePath(name);
}

void TestCertificates::sign(const char* request, const char* authority, int days, const char* extensions,
                            const QString& name) const
{
    run(qPrintable(
        QString("x509 -req -in %1.csr -CA %2.pem -CAkey %2.key -CAcreateserial -days %3 -extfile %4.ext -out %5")
            .arg(QLatin1String(request), QLatin1String(authority), QString::number(days), QLatin1String(extensions),
                 name)));
}

void TestCertificates::run(const char* command) const
{
    QProcess openssl;
    openssl.setWorkingDirectory(m_directory.path());
    openssl.setProcessChannelMode(QProcess::MergedChannels);
    openssl.start(QStringLiteral("openssl"), QString::fromLatin1(command).split(' '));
    if (!openssl.waitForFinished(60000) || openssl.exitStatus() != QProcess::NormalExit || openssl.exitCode() != 0) {
        throw std::runtime_error(std::string("openssl ") + command + ": " + openssl.readAll().toStdString());
    }
}

} // namespace support
