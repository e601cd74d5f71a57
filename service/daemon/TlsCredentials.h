#pragma once

#include "service/daemon/Configuration.h"

#include <QDateTime>
#include <QSslConfiguration>
#include <QString>
#include <QStringList>

namespace service::daemon
{

/// What a TLS server shows to its clients.
struct TlsCredentials {
    /// TLS 1.2 or newer, with forward secrecy and authenticated encryption alone; of use only without an error.
    QSslConfiguration configuration;
    QString error;        ///< Chinese; empty: certificate and key can be used
    QStringList warnings; ///< Chinese: what clients will refuse yet, or what endangers the key
    QDateTime end;        ///< of the certificate; clients refuse it afterwards
};

/// Reads certificate and key and checks that they belong together.
TlsCredentials loadTlsCredentials(const TlsSettings& settings);

/// Whether a certificate ends within 30 days, or has ended; false for a null time.
bool isEndNear(const QDateTime& end);
/// Says so in Chinese.
QString textOfEnd(const QDateTime& end);

} // namespace service::daemon
