#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QString>

#include <optional>
#include <vector>

namespace service::daemon
{

/// One port, at which one sub-system is served.
struct ListenSettings {
    QString subSystem; ///< its name; empty: the only one of the store
    QHostAddress address;
    int port = 0;           ///< 0: one that is free, which the log tells
    bool plaintext = false; ///< no TLS; on a loopback address only
};

struct TlsSettings {
    QString certificateFile; ///< PEM, the server's own certificate first, then those between it and the authority's
    QString keyFile;         ///< PEM, without a password
};

/// What clients may take of the daemon together and each.
struct LimitSettings {
    int connections = 256;
    int connectionsPerAddress = 64;
    int requestsPerConnection = 64; ///< under way at a time; nothing more is read while there are as many
    /// Answers that wait for their connections to take them, as large as they will be there: no further query begins
    /// while there is as much of one connection, or of all. Of all, those who are slowest to take theirs are cut then.
    int heldMebibytesPerConnection = 256;
    int heldMebibytes = 1024;
    int outputBytesPerConnection = 1024 * 1024; ///< encoded but not yet taken by the network
    int waitingLogIns = 64;                     ///< of all connections together; further ones are refused
    int receivedMebibytes = 128;                ///< messages beyond 4 KiB of all, until carried out; others stay unread
};

struct TimeoutSettings {
    int handshakeSeconds = 10; ///< from the connection's beginning to its welcome
    int logInSeconds = 300;    ///< from the welcome to a log-in, and from one that failed to the next
    int messageSeconds = 10;   ///< how late the bytes of a message may be beside 256 KiB a second
    int keepAliveSeconds = 20; ///< as the welcome announces; a client that is silent for three times as long is gone
    int stallSeconds = 60;     ///< a client that takes nothing of what waits for it for so long is gone
    int replySeconds = 600;    ///< a client that needs longer for one answer is gone
    int drainSeconds = 20;     ///< for what is under way when the daemon stops
};

/// After so many failures in a row further attempts are refused for a while, which doubles with every failure.
struct LogInSettings {
    int failuresPerUser = 5;
    int failuresPerAddress = 20;
    int lockSeconds = 5;
    int longestLockSeconds = 900;
};

struct WorkerSettings {
    int requests = 16; ///< threads, each with a connection to the database
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

/// One mistake of a configuration.
struct ConfigurationMistake {
    int line = 0; ///< from 1; 0: of the whole file
    QString text; ///< Chinese, names the key
};

struct ConfigurationResult {
    Configuration configuration;
    bool isReadable = false;                    ///< a TOML file, whatever it says
    std::vector<ConfigurationMistake> mistakes; ///< in the order of their lines; empty: the configuration may be used
};

/// Reads the TOML text of a configuration and finds every mistake in it: keys that nobody knows, values of a wrong type
/// or out of range, what is missing, addresses that are not allowed. Relative paths are relative to `directory`.
ConfigurationResult readConfiguration(const QByteArray& text, const QString& directory);
/// The same for a file; one that cannot be read is a mistake of line 0.
ConfigurationResult loadConfiguration(const QString& file);

/// "第12行：..." or, for the whole file, the text alone.
QString describe(const ConfigurationMistake& mistake);

} // namespace service::daemon
