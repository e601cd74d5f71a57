// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QString>

#include <optional>
#include <vector>

namespace service::daemon
{

/// One port and the sub-system that is served on it.
struct ListenSettings {
    QString subSystem; ///< the name; empty: the only sub-system of the store
    QHostAddress address;
    int port = 0;           ///< 0: any free port, which is logged
    bool plaintext = false; ///< true: no TLS; only for a loopback address
};

struct TlsSettings {
    QString certificateFile; ///< PEM: the server's own certificate, then the intermediate ones
    QString keyFile;         ///< PEM without a password
};

/// Limits for each client and for all clients together.
struct LimitSettings {
    int connections = 256;
    int connectionsPerAddress = 64;
    int requestsPerConnection = 64; ///< pending at a time; beyond that nothing more is read
    /// Limits on the full size of pending answers, per connection and of all connections together. Beyond them no
    /// further query starts. Beyond the second one, the slowest readers are also disconnected.
    int heldMebibytesPerConnection = 256;
    int heldMebibytes = 1024;
    int outputBytesPerConnection = 1024 * 1024; ///< encoded but not yet accepted by the network
    int waitingLogIns = 64;                     ///< of all connections together; further ones are refused
    int receivedMebibytes = 128;                ///< all messages beyond 4 KiB until carried out; others stay unread
};

struct TimeoutSettings {
    int handshakeSeconds = 10; ///< from the start of the connection to the welcome
    int logInSeconds = 300;    ///< from the welcome to a log-in, and from a failed log-in to the next
    int messageSeconds = 10;   ///< grace for a message that should arrive at 256 KiB/s
    int keepAliveSeconds = 20; ///< sent in the welcome; after three times as long without a sign a client is gone
    int stallSeconds = 60;     ///< a client that takes nothing for so long is disconnected
    int replySeconds = 600;    ///< a client that takes longer for one answer is disconnected
    int drainSeconds = 20;     ///< for pending requests when the daemon stops
};

/// After this many consecutive failures, further attempts are locked for a time that doubles with every failure.
struct LogInSettings {
    int failuresPerUser = 5;
    int failuresPerAddress = 20;
    int lockSeconds = 5;
    int longestLockSeconds = 900;
};

struct WorkerSettings {
    int requests = 16; ///< threads, each with its own database connection
    int logIns = 2;
};

/// Health and metrics, on a loopback address only.
struct MonitorSettings {
    QHostAddress address;
    int port = 0;
};

enum class ELogLevel { Debug, Info, Warning, Error };
enum class ELogFormat { Json, Text };

struct LogSettings {
    ELogLevel level = ELogLevel::Info;
    ELogFormat format = ELogFormat::Json;
};

struct Configuration {
    QString store; ///< SQLite file or postgresql:// URL
    std::vector<ListenSettings> listen;
    TlsSettings tls;
    LimitSettings limits;
    TimeoutSettings timeouts;
    LogInSettings logIns;
    WorkerSettings workers;
    std::optional<MonitorSettings> monitor; ///< none: not served
    LogSettings log;
};

/// A line of a configuration.
struct ConfigurationPlace {
    QString file; ///< for messages
    int line = 0; ///< from 1; 0: no line in particular
};

struct ConfigurationMistake {
    QString text; ///< Chinese; names the key
    ConfigurationPlace place;
};

/// A key that a file sets, and that no later file overrides.
struct ConfigurationSetting {
    QString name; ///< "store.location"
    QString value;
    ConfigurationPlace place;
};

struct ConfigurationResult {
    Configuration configuration;
    bool isReadable = false;                    ///< the files are valid TOML
    std::vector<ConfigurationMistake> mistakes; ///< by file and line; empty: the configuration is valid
    std::vector<ConfigurationSetting> settings;
};

/// One file of a configuration.
struct ConfigurationText {
    QString name; ///< for messages
    QByteArray text;
};

/// Reads a configuration from TOML and finds all mistakes in it: unknown keys, values of the wrong type or out of
/// range, missing values, addresses that are not allowed. A key of a later file replaces that of earlier ones; so does
/// the whole list of [[listen]]. Relative paths are resolved in `directory`.
ConfigurationResult readConfiguration(const std::vector<ConfigurationText>& files, const QString& directory);
/// The same for a file and, in the order of their names, the files conf.d/*.toml beside it. Paths are relative to that
/// file. A file that cannot be read is a mistake.
ConfigurationResult loadConfiguration(const QString& file);

/// "conf.d/port.toml第12行：...", without what the place does not tell.
QString describe(const ConfigurationMistake& mistake);
/// "store.location = "a.db"（dataserviced.toml第3行）"
QString describe(const ConfigurationSetting& setting);

} // namespace service::daemon
