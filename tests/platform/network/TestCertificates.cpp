#include "platform/network/TestCertificates.h"

#include <QFile>
#include <QProcess>

namespace support
{

namespace
{

const QStringList NewKey{"-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes"};

QByteArray contentOf(const QString& file)
{
    QFile source(file);
    return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
}

} // namespace

bool TestCertificates::make()
{
    const QString localNames = "DNS:localhost,IP:127.0.0.1";
    return makeAuthority("ca") && makeAuthority("other") && makeAuthority("self") &&
           makeSigned("good", localNames, "30") && makeSigned("expired", localNames, "-1") &&
           makeSigned("elsewhere", "DNS:elsewhere.example", "30");
}

bool TestCertificates::run(const QStringList& arguments)
{
    QProcess openssl;
    openssl.setWorkingDirectory(m_folder.path());
    openssl.start("openssl", arguments);
    if (!openssl.waitForFinished(60000) || openssl.exitCode() != 0)
        m_problem =
            "openssl " + arguments.join(' ') + ": " + openssl.errorString() + ' ' + openssl.readAllStandardError();
    return m_problem.isEmpty();
}

bool TestCertificates::makeAuthority(const QString& name)
{
    return run(QStringList{"req", "-x509"} + NewKey +
               QStringList{"-keyout", name + ".key", "-out", name + ".pem", "-subj", "/CN=Test authority " + name,
                           "-days", "30"});
}

bool TestCertificates::makeSigned(const QString& name, const QString& hosts, const QString& days)
{
    QFile extensions(m_folder.filePath(name + ".ext"));
    if (!extensions.open(QIODevice::WriteOnly))
        return false;
    extensions.write("subjectAltName=" + hosts.toUtf8() + '\n');
    extensions.close();
    return run(QStringList{"req"} + NewKey +
               QStringList{"-keyout", name + ".key", "-out", name + ".csr", "-subj", "/CN=" + name}) &&
           run({"x509", "-req", "-in", name + ".csr", "-CA", "ca.pem", "-CAkey", "ca.key", "-CAcreateserial", "-out",
                name + ".pem", "-days", days, "-extfile", name + ".ext"});
}

TestCertificates::Identity TestCertificates::identity(const QString& name) const
{
    Identity identity;
    identity.certificateFile = m_folder.filePath(name + ".pem");
    identity.keyFile = m_folder.filePath(name + ".key");
    identity.certificate = QSslCertificate(contentOf(identity.certificateFile));
    identity.key = QSslKey(contentOf(identity.keyFile), QSsl::Ec);
    return identity;
}

} // namespace support
