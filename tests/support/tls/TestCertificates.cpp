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
    if (!out.open(QIODevice::WriteOnly) || out.write(text) < 0)
        throw std::runtime_error("cannot write " + file.toStdString());
}

} // namespace

TestCertificates::TestCertificates()
{
    write(path("localhost.ext"), "subjectAltName=DNS:localhost,IP:127.0.0.1\n");
    write(path("elsewhere.ext"), "subjectAltName=DNS:elsewhere.example\n");
    for (const char* key : {"authority", "stranger", "server", "other"})
        run(qPrintable(QString("ecparam -name prime256v1 -genkey -noout -out %1.key").arg(QLatin1String(key))));
    run("req -x509 -new -key authority.key -days 30 -subj /CN=authority -out authority.pem");
    run("req -x509 -new -key stranger.key -days 30 -subj /CN=stranger -out stranger.pem");
    run("req -new -key server.key -subj /CN=server -out server.csr");
}

QString TestCertificates::certificate(EKind kind)
{
    const bool isStranger = kind == EKind::OtherAuthority;
    const QString name = QString("server-%1.pem").arg(static_cast<int>(kind));
    if (QFileInfo::exists(m_directory.filePath(name)))
        return m_directory.filePath(name);
    if (kind == EKind::SelfSigned)
        run(qPrintable(QString("req -x509 -new -key server.key -days 30 -subj /CN=localhost -out %1").arg(name)));
    else
        run(qPrintable(
            QString("x509 -req -in server.csr -CA %1.pem -CAkey %1.key -CAcreateserial -days %2 -extfile %3.ext "
                    "-out %4")
                .arg(isStranger ? "stranger" : "authority", kind == EKind::Expired ? "-1" : "30",
                     kind == EKind::WrongHost ? "elsewhere" : "localhost", name)));
    return m_directory.filePath(name);
}

void TestCertificates::run(const char* command) const
{
    QProcess openssl;
    openssl.setWorkingDirectory(m_directory.path());
    openssl.setProcessChannelMode(QProcess::MergedChannels);
    openssl.start(QStringLiteral("openssl"), QString::fromLatin1(command).split(' '));
    if (!openssl.waitForFinished(60000) || openssl.exitStatus() != QProcess::NormalExit || openssl.exitCode() != 0)
        throw std::runtime_error(std::string("openssl ") + command + ": " + openssl.readAll().toStdString());
}

} // namespace support
