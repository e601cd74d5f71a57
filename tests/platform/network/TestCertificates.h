#pragma once

#include <QSslCertificate>
#include <QSslKey>
#include <QString>
#include <QTemporaryDir>

namespace support
{

/// An authority of the test's own, made by the openssl program in a folder of its own.
class TestCertificates
{
public:
    /// A certificate and its key.
    struct Identity {
        QString certificateFile;
        QString keyFile;
        QSslCertificate certificate;
        QSslKey key;
    };

    /// False when the openssl program failed; problem() says how.
    bool make();
    QString problem() const { return m_problem; }

    QString caFile() const { return m_folder.filePath("ca.pem"); }
    /// Another authority, which has signed nothing.
    QString otherCaFile() const { return m_folder.filePath("other.pem"); }

    /// Valid for localhost and 127.0.0.1.
    Identity good() const { return identity("good"); }
    Identity expired() const { return identity("expired"); }
    /// For another host.
    Identity wrongHost() const { return identity("elsewhere"); }
    Identity selfSigned() const { return identity("self"); }

private:
    bool run(const QStringList& arguments);
    bool makeAuthority(const QString& name);
    bool makeSigned(const QString& name, const QString& hosts, const QString& days);
    Identity identity(const QString& name) const;

    QTemporaryDir m_folder;
    QString m_problem;
};

} // namespace support
