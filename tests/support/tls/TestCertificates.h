// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QTemporaryDir>

namespace support
{

/// Certificates for "localhost" and 127.0.0.1, made with the openssl program in a directory that goes with the object.
class TestCertificates
{
public:
    enum class EKind {
        Good,
        Expired,
        EndsSoon,       ///< in 20 days
        WrongHost,      ///< for another name
        OtherAuthority, ///< signed by somebody whom nobody trusts
        SelfSigned
    };

    /// Throws std::runtime_error with the program's output when something cannot be made.
    TestCertificates();

    /// The certificate of the authority that clients trust, PEM.
    QString authority() const { return path("authority.pem"); }
    /// PEM; made at the first call.
    QString certificate(EKind kind = EKind::Good);
    /// The key of all certificates, PEM.
    QString key() const { return path("server.key"); }
    /// The same as a good certificate and its key, with RSA instead of elliptic curves; made at the first call.
    QString rsaCertificate();
    QString rsaKey() const { return path("rsa.key"); }
    /// A key that belongs to no certificate, PEM.
    QString otherKey() const { return path("other.key"); }

private:
    void sign(const char* request, const char* authority, int days, const char* extensions, const QString& name) const;
    QString path(const char* name) const { return m_directory.filePath(QString::fromLatin1(name)); }
    void signForThePast(const QString& name) const;
    void run(const char* command) const;

    QTemporaryDir m_directory;
};

} // namespace support
