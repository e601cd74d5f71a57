// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/Configuration.h"

#include <QString>

#include <boost/noncopyable.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <variant>

namespace service::daemon
{

/// One field of an event.
struct LogField {
    LogField(const char* name, const char* value) : name(name), value(std::string(value)) {}
    LogField(const char* name, std::string value) : name(name), value(std::move(value)) {}
    LogField(const char* name, const QString& value) : name(name), value(value.toStdString()) {}
    LogField(const char* name, bool value) : name(name), value(value) {}
    LogField(const char* name, std::int64_t value) : name(name), value(value) {}
    LogField(const char* name, int value) : name(name), value(std::int64_t{value}) {}
    /// For a text that does not come from a client; only very long ones are cut.
    static LogField ownText(const char* name, std::string value)
    {
        LogField field(name, std::move(value));
        field.maxBytes = std::size_t{16} * 1024;
        return field;
    }

    const char* name;
    std::variant<std::string, std::int64_t, bool> value;
    std::size_t maxBytes = 512; ///< a longer text is cut
};

/// Writes one line per event, with a name and fields, as JSON
///     {"time":"2026-01-05T01:30:00.123Z","level":"info","event":"log_in","user":"admin"}
/// or as text
///     2026-01-05T01:30:00.123Z info log_in user="admin"
/// Values are escaped, so they cannot leave their line or their quotation marks. Callers must not log passwords or
/// content of records. Thread-safe.
class EventLog : private boost::noncopyable
{
public:
    using Sink = std::function<void(const std::string&)>; ///< receives one line without its line end

    /// Writes to standard output.
    explicit EventLog(const LogSettings& settings);
    /// Writes to `sink`. It is called on the thread that logs the event, never concurrently.
    EventLog(const LogSettings& settings, Sink sink);
    ~EventLog();

    void write(ELogLevel level, const char* event, std::initializer_list<LogField> fields = {});
    void debug(const char* event, std::initializer_list<LogField> fields = {})
    {
        write(ELogLevel::Debug, event, fields);
    }
    void info(const char* event, std::initializer_list<LogField> fields = {}) { write(ELogLevel::Info, event, fields); }
    void warning(const char* event, std::initializer_list<LogField> fields = {})
    {
        write(ELogLevel::Warning, event, fields);
    }
    void error(const char* event, std::initializer_list<LogField> fields = {})
    {
        write(ELogLevel::Error, event, fields);
    }

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace service::daemon
