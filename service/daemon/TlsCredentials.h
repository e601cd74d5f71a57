// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/Configuration.h"

#include <QDateTime>
#include <QSslConfiguration>
#include <QString>
#include <QStringList>

namespace service::daemon
{

/// The certificate and key of a TLS server.
struct TlsCredentials {
    /// TLS 1.2 or newer, only with forward secrecy and authenticated encryption. Valid only without an error.
    QSslConfiguration configuration;
    QString error;        ///< Chinese; empty: certificate and key are usable
    QStringList warnings; ///< Chinese: the certificate is not valid yet, or everybody can read the key
    QDateTime end;        ///< when the certificate expires
};

/// Reads certificate and key and checks that they belong together.
TlsCredentials loadTlsCredentials(const TlsSettings& settings);

/// True if a certificate expires within 30 days or has expired; false for a null time.
bool isEndNear(const QDateTime& end);
/// A Chinese text that says so.
QString textOfEnd(const QDateTime& end);

} // namespace service::daemon
