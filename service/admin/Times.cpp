// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Times.h"
#include "service/engine/GroupScope.h"

#include <QDateTime>
#include <QRegularExpression>

namespace service
{

namespace
{

constexpr std::int64_t Second = 1000;
constexpr std::int64_t Minute = 60 * Second;

} // namespace

std::optional<std::int64_t> readTime(const QString& text, bool toEnd)
{
    static const QRegularExpression form(QStringLiteral(
        "^(\\d{4}-\\d\\d-\\d\\d)(?:[ T](\\d\\d:\\d\\d)(:\\d\\d)?(\\.\\d{3})?(Z|[+-]\\d\\d:?\\d\\d)?)?$"));
    const QRegularExpressionMatch match = form.match(text.trimmed());
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const bool hasTime = !match.captured(2).isEmpty();
    const bool hasSeconds = !match.captured(3).isEmpty();
    const bool hasMilliseconds = !match.captured(4).isEmpty();
    const QDate date = QDate::fromString(match.captured(1), Qt::ISODate);
    if (!hasTime) {
        const QDateTime start = date.startOfDay();
        if (!start.isValid()) {
            return std::nullopt;
        }
        return toEnd ? date.addDays(1).startOfDay().toMSecsSinceEpoch() - 1 : start.toMSecsSinceEpoch();
    }
    const QString full = match.captured(1) + 'T' + match.captured(2) +
                         (hasSeconds ? match.captured(3) : QStringLiteral(":00")) + match.captured(4) +
                         match.captured(5);
    const QDateTime time = QDateTime::fromString(full, Qt::ISODateWithMs);
    if (!time.isValid()) {
        return std::nullopt;
    }
    const std::int64_t length = hasMilliseconds ? 1 : hasSeconds ? Second : Minute;
    return time.toMSecsSinceEpoch() + (toEnd ? length - 1 : 0);
}

QString textOfTime(std::int64_t at)
{
    return QString::fromStdString(timeText(at));
}

QString isoTime(std::int64_t at)
{
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(at);
    return time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs);
}

} // namespace service
