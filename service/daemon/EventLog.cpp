// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/EventLog.h"

#include <QDateTime>

#include <spdlog/logger.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <algorithm>
#include <cstdio>
#include <mutex>

namespace service::daemon
{

namespace
{

class FunctionSink : public spdlog::sinks::base_sink<std::mutex>
{
public:
    explicit FunctionSink(EventLog::Sink sink) : m_sink(std::move(sink)) {}

protected:
    void sink_it_(const spdlog::details::log_msg& message) override
    {
        m_sink(std::string(message.payload.data(), message.payload.size()));
    }
    void flush_() override {}

private:
    EventLog::Sink m_sink;
};

/// spdlog has the same levels in the same order.
spdlog::level::level_enum spdlogLevel(ELogLevel level)
{
    static_assert(spdlog::level::debug + static_cast<int>(ELogLevel::Error) == spdlog::level::err);
    return static_cast<spdlog::level::level_enum>(spdlog::level::debug + static_cast<int>(level));
}

std::string nameOf(ELogLevel level)
{
    const spdlog::string_view_t name = spdlog::level::to_string_view(spdlogLevel(level));
    return {name.data(), name.size()};
}

/// The value as a JSON string: always valid UTF-8, without control characters.
std::string quoted(const std::string& value, std::size_t maxBytes)
{
    const bool isCut = value.size() > maxBytes;
    const QString text = QString::fromUtf8(value.data(), static_cast<int>(std::min(value.size(), maxBytes)));
    QString result(QLatin1Char('"'));
    for (const QChar c : text) {
        if (c == QLatin1Char('"') || c == QLatin1Char('\\')) {
            result += QLatin1Char('\\') + QString(c);
        } else if (c.category() == QChar::Other_Control || c.category() == QChar::Other_Format ||
                   c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph) {
            result += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        } else {
            result += c;
        }
    }
    return (result + QLatin1String(isCut ? "...\"" : "\"")).toStdString();
}

std::string textOf(const LogField& field)
{
    if (const auto* number = std::get_if<std::int64_t>(&field.value)) {
        return std::to_string(*number);
    }
    if (const auto* flag = std::get_if<bool>(&field.value)) {
        return *flag ? "true" : "false";
    }
    return quoted(std::get<std::string>(field.value), field.maxBytes);
}

std::string timestamp()
{
    return QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).toStdString();
}

} // namespace

struct EventLog::Private {
    ELogFormat format;
    spdlog::logger logger;

    Private(const LogSettings& settings, spdlog::sink_ptr sink)
        : format(settings.format), logger("daemon", std::move(sink))
    {
        logger.set_pattern("%v");
        logger.set_level(spdlogLevel(settings.level));
        logger.flush_on(spdlog::level::debug);
    }
};

EventLog::EventLog(const LogSettings& settings)
    : m_d(new Private(settings, std::make_shared<spdlog::sinks::stdout_sink_mt>()))
{
}

EventLog::EventLog(const LogSettings& settings, Sink sink)
    : m_d(new Private(settings, std::make_shared<FunctionSink>(std::move(sink))))
{
}

EventLog::~EventLog() = default;

void EventLog::write(ELogLevel level, const char* event, std::initializer_list<LogField> fields)
{
    if (!m_d->logger.should_log(spdlogLevel(level))) {
        return;
    }
    std::string line;
    if (m_d->format == ELogFormat::Json) {
        line = "{\"time\":\"" + timestamp() + "\",\"level\":\"" + nameOf(level) + "\",\"event\":\"" + event + '"';
        for (const LogField& field : fields) {
            line += std::string(",\"") + field.name + "\":" + textOf(field);
        }
        line += '}';
    } else {
        line = timestamp() + ' ' + nameOf(level) + ' ' + event;
        for (const LogField& field : fields) {
            line += std::string(" ") + field.name + '=' + textOf(field);
        }
    }
    m_d->logger.log(spdlogLevel(level), spdlog::string_view_t(line));
}

} // namespace service::daemon
