// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Configuration.h"
#include "service/daemon/Mebibyte.h"
#include "service/daemon/SectionReader.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <set>
#include <tuple>

namespace service::daemon
{

namespace
{

constexpr int LargestPort = 65535;
constexpr int LongestSeconds = 24 * 60 * 60;
constexpr qint64 LargestFileBytes = Mebibyte;

const QString OwnFolder = QStringLiteral("conf.d");

QString describe(const ConfigurationPlace& place)
{
    return place.line > 0
               ? QCoreApplication::translate("service", "%1第%2行").arg(place.file, QString::number(place.line))
               : place.file;
}

bool isUrl(const QString& store)
{
    return store.contains(QLatin1String("://"));
}

QString absolute(const QString& directory, const QString& path)
{
    return path.isEmpty() ? path : QDir(directory).absoluteFilePath(path);
}

/// Reads one configuration.
class Reader
{
public:
    Reader(const QString& directory, ConfigurationResult& result)
        : m_directory(directory), m_result(result), m_config(result.configuration)
    {
    }

    void read(const std::vector<toml::table>& files)
    {
        SectionReader::Layers layers;
        for (const toml::table& file : files) {
            layers.push_back(&file);
        }
        SectionReader root(std::move(layers), {}, m_result);
        section(root, "store", [this](SectionReader& reader) { readStore(reader); });
        readListen(root);
        section(root, "tls", [this](SectionReader& reader) {
            reader.read("certificate", m_config.tls.certificateFile);
            reader.read("key", m_config.tls.keyFile);
            if (reader.has("certificate") != reader.has("key")) {
                reader.complain(reader.has("key") ? "certificate" : "key",
                                QCoreApplication::translate("service", "缺失"));
            }
        });
        section(root, "limits", [this](SectionReader& reader) { readLimits(reader); });
        section(root, "timeouts", [this](SectionReader& reader) { readTimeouts(reader); });
        section(root, "log_in", [this](SectionReader& reader) { readLogIns(reader); });
        section(root, "workers", [this](SectionReader& reader) {
            reader.read("requests", m_config.workers.requests, 1, 256);
            reader.read("log_ins", m_config.workers.logIns, 1, 4);
        });
        section(root, "monitor", [this](SectionReader& reader) { readMonitor(reader); });
        section(root, "log", [this](SectionReader& reader) { readLog(reader); });
        root.finish();

        m_config.tls.certificateFile = absolute(m_directory, m_config.tls.certificateFile);
        m_config.tls.keyFile = absolute(m_directory, m_config.tls.keyFile);
        const bool needsTls = std::any_of(m_config.listen.begin(), m_config.listen.end(),
                                          [](const ListenSettings& listen) { return !listen.plaintext; });
        if (needsTls && !root.has("tls")) {
            m_result.mistakes.push_back({QCoreApplication::translate("service", "缺少 [tls] 一节"), {}});
        }
    }

private:
    template <typename Read>
    void section(SectionReader& root, const char* name, const Read& read)
    {
        SectionReader::Layers layers = root.table(name);
        if (layers.empty()) {
            return;
        }
        SectionReader reader(std::move(layers), QLatin1String(name), m_result);
        read(reader);
        reader.finish();
    }

    void readStore(SectionReader& reader)
    {
        reader.read("location", m_config.store);
        if (!m_config.store.isEmpty() && !isUrl(m_config.store)) {
            m_config.store = absolute(m_directory, m_config.store);
        }
    }

    void readListen(SectionReader& root)
    {
        const toml::array* list = root.tables("listen");
        if (!list && !root.has("listen")) {
            m_result.mistakes.push_back({QCoreApplication::translate("service", "缺少 [[listen]] 一节"), {}});
        }
        if (!list) {
            return;
        }
        std::set<std::pair<QString, int>> ports;
        for (const toml::node& node : *list) {
            SectionReader reader({node.as_table()}, QStringLiteral("listen"), m_result);
            ListenSettings listen;
            reader.read("sub_system", listen.subSystem);
            readAddress(reader, listen.address, listen.port);
            reader.read("plaintext", listen.plaintext);
            if (listen.plaintext && !listen.address.isNull() && !listen.address.isLoopback()) {
                reader.complain("plaintext", QCoreApplication::translate("service", "只能用于本机回环地址"));
            }
            if (listen.subSystem.isEmpty() && list->size() > 1 && !reader.has("sub_system")) {
                reader.complain("sub_system", QCoreApplication::translate("service", "缺失"));
            }
            if (listen.port != 0 && !ports.emplace(listen.address.toString(), listen.port).second) {
                reader.complain("port", QCoreApplication::translate("service", "重复"));
            }
            reader.finish();
            m_config.listen.push_back(listen);
        }
    }

    void readLimits(SectionReader& reader)
    {
        LimitSettings& limits = m_config.limits;
        reader.read("connections", limits.connections, 1, 100000);
        reader.read("connections_per_address", limits.connectionsPerAddress, 1, 100000);
        reader.read("requests_per_connection", limits.requestsPerConnection, 1, 1024);
        reader.read("held_mebibytes_per_connection", limits.heldMebibytesPerConnection, 1, 1024 * 1024);
        reader.read("held_mebibytes", limits.heldMebibytes, 1, 1024 * 1024);
        reader.read("output_bytes_per_connection", limits.outputBytesPerConnection, 64 * 1024, 64 * 1024 * 1024);
        reader.read("waiting_log_ins", limits.waitingLogIns, 1, 10000);
        reader.read("received_mebibytes", limits.receivedMebibytes, 16, 1024 * 1024);
    }

    void readTimeouts(SectionReader& reader)
    {
        TimeoutSettings& timeouts = m_config.timeouts;
        reader.read("handshake_seconds", timeouts.handshakeSeconds, 1, LongestSeconds);
        reader.read("log_in_seconds", timeouts.logInSeconds, 1, LongestSeconds);
        reader.read("message_seconds", timeouts.messageSeconds, 1, LongestSeconds);
        reader.read("keep_alive_seconds", timeouts.keepAliveSeconds, 1, 3600);
        reader.read("stall_seconds", timeouts.stallSeconds, 1, LongestSeconds);
        reader.read("reply_seconds", timeouts.replySeconds, 1, LongestSeconds);
        reader.read("drain_seconds", timeouts.drainSeconds, 0, 3600);
    }

    void readLogIns(SectionReader& reader)
    {
        LogInSettings& logIns = m_config.logIns;
        reader.read("failures_per_user", logIns.failuresPerUser, 1, 1000);
        reader.read("failures_per_address", logIns.failuresPerAddress, 1, 1000000);
        reader.read("lock_seconds", logIns.lockSeconds, 1, LongestSeconds);
        reader.read("longest_lock_seconds", logIns.longestLockSeconds, 1, LongestSeconds);
    }

    void readMonitor(SectionReader& reader)
    {
        MonitorSettings monitor;
        readAddress(reader, monitor.address, monitor.port);
        if (!monitor.address.isNull() && !monitor.address.isLoopback()) {
            reader.complain("address", QCoreApplication::translate("service", "只能是本机回环地址"));
        }
        m_config.monitor = monitor;
    }

    void readLog(SectionReader& reader)
    {
        reader.read("level", m_config.log.level,
                    {{"debug", ELogLevel::Debug},
                     {"info", ELogLevel::Info},
                     {"warning", ELogLevel::Warning},
                     {"error", ELogLevel::Error}});
        reader.read("format", m_config.log.format, {{"json", ELogFormat::Json}, {"text", ELogFormat::Text}});
    }

    static void readAddress(SectionReader& reader, QHostAddress& address, int& port)
    {
        reader.read("address", address);
        reader.read("port", port, 0, LargestPort);
        for (const char* key : {"address", "port"}) {
            if (!reader.has(key)) {
                reader.complain(key, QCoreApplication::translate("service", "缺失"));
            }
        }
    }

    QString m_directory;
    ConfigurationResult& m_result;
    Configuration& m_config;
};

} // namespace

ConfigurationResult readConfiguration(const std::vector<ConfigurationText>& files, const QString& directory)
{
    ConfigurationResult result;
    std::vector<toml::table> tables;
    for (const ConfigurationText& file : files) {
        try {
            tables.push_back(
                toml::parse(std::string_view(file.text.constData(), static_cast<std::size_t>(file.text.size())),
                            file.name.toStdString()));
        } catch (const toml::parse_error& error) {
            result.mistakes.push_back({QCoreApplication::translate("service", "不符合TOML格式：%1").arg(error.what()),
                                       {file.name, static_cast<int>(error.source().begin.line)}});
        }
    }
    result.isReadable = result.mistakes.empty();
    if (result.isReadable) {
        Reader(directory, result).read(tables);
    }
    std::stable_sort(result.mistakes.begin(), result.mistakes.end(), [](const auto& left, const auto& right) {
        return std::tie(left.place.file, left.place.line) < std::tie(right.place.file, right.place.line);
    });
    return result;
}

ConfigurationResult loadConfiguration(const QString& name)
{
    const QDir folder = QFileInfo(name).absoluteDir();
    const QFileInfo own(folder.filePath(OwnFolder));
    QStringList names{QFileInfo(name).fileName()};
    ConfigurationResult unreadable;
    if (own.exists() && !(own.isDir() && own.isReadable() && own.isExecutable())) {
        unreadable.mistakes.push_back(
            {QCoreApplication::translate("service", "无法读取目录 %1").arg(own.filePath()), {}});
    }
    // QDir::System: a broken link is a mistake, too.
    for (const QString& file : QDir(own.filePath()).entryList({"*.toml"}, QDir::Files | QDir::System, QDir::Name)) {
        names << OwnFolder + QLatin1Char('/') + file;
    }
    std::vector<ConfigurationText> texts;
    for (const QString& text : names) {
        QFile file(folder.filePath(text));
        const bool isOpen = file.open(QIODevice::ReadOnly);
        if (isOpen && file.size() <= LargestFileBytes) {
            texts.push_back({text, file.readAll()});
        } else {
            unreadable.mistakes.push_back(
                {QCoreApplication::translate("service", "无法读取配置文件 %1：%2")
                     .arg(file.fileName(),
                          isOpen ? QCoreApplication::translate("service", "文件过大") : file.errorString()),
                 {}});
        }
    }
    return unreadable.mistakes.empty() ? readConfiguration(texts, folder.path()) : unreadable;
}

QString describe(const ConfigurationMistake& mistake)
{
    const QString place = describe(mistake.place);
    return place.isEmpty() ? mistake.text : QCoreApplication::translate("service", "%1：%2").arg(place, mistake.text);
}

QString describe(const ConfigurationSetting& setting)
{
    return QCoreApplication::translate("service", "%1 = %2（%3）")
        .arg(setting.name, setting.value, describe(setting.place));
}

} // namespace service::daemon
