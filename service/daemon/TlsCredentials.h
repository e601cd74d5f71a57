#pragma once

#include "service/daemon/Configuration.h"

#include <QSslConfiguration>
#include <QString>
#include <QStringList>

namespace service::daemon
{

/// What a TLS server shows to its clients.
struct TlsCredentials {
    QSslConfiguration configuration; ///< TLS 1.2 or newer; of use only without an error
    QString error;                   ///< Chinese; empty: certificate and key can be used
    QStringList warnings;            ///< Chinese: what clients will refuse, or what endangers the key
};

/// Reads certificate and key and checks that they belong together.
TlsCredentials loadTlsCredentials(const TlsSettings& settings);

} // namespace service::daemon
