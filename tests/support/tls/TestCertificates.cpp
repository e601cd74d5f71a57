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
    for (const char* authority : {"authority", "stranger"}) {
        run(qPrintable(QString("req -x509 -new -key %1.key -days 365 -subj /CN=%1 -out %1.pem"
                               " -addext keyUsage=critical,keyCertSign,cRLSign")
                           .arg(QLatin1String(authority))));
    }
    run("req -new -key server.key -subj /CN=server -out server.csr");
}

QString TestCertificates::certificate(EKind kind)
{
    const bool isStranger = kind == EKind::OtherAuthority;
    const int days = kind == EKind::EndsSoon ? 20 : 365;
    const QString name = QString("server-%1.pem").arg(static_cast<int>(kind));
    if (QFileInfo::exists(m_directory.filePath(name))) {
        return m_directory.filePath(name);
    }
    if (kind == EKind::SelfSigned) {
        run(qPrintable(QString("req -x509 -new -key server.key -days 365 -subj /CN=localhost -out %1").arg(name)));
    } else if (kind == EKind::Expired) {
        signForThePast(name);
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

void TestCertificates::signForThePast(const QString& name) const
{
    // Only this command signs for any period, in all versions of OpenSSL.
    write(path("index.txt"), "");
    write(path("past.cnf"), "[ca]\ndefault_ca=past\n[past]\ndatabase=index.txt\nnew_certs_dir=.\nrand_serial=yes\n"
                            "default_md=sha256\npolicy=names\n[names]\ncommonName=supplied\n");
    run(qPrintable(
        QString("ca -batch -notext -config past.cnf -cert authority.pem -keyfile authority.key -in server.csr"
                " -extfile localhost.ext -startdate 20200101000000Z -enddate 20200201000000Z -out %1")
            .arg(name)));
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
