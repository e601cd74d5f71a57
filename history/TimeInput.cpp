// SPDX-License-Identifier: Apache-2.0
#include "history/TimeInput.h"

#include <WQ/CLineEdit.h>
#include <WQ/CMessageTip.h>

#include <QDateTime>

namespace QAV
{

std::optional<std::int64_t> timeOf(const QString& text, bool isEnd)
{
    const QString trimmed = text.trimmed();
    const QDate day = QDate::fromString(trimmed, QStringLiteral("yyyy-MM-dd"));
    if (day.isValid()) {
        return isEnd ? day.addDays(1).startOfDay().toMSecsSinceEpoch() - 1 : day.startOfDay().toMSecsSinceEpoch();
    }
    for (const auto& [format, milliseconds] : {std::pair(QStringLiteral("yyyy-MM-dd HH:mm"), 60000),
                                               std::pair(QStringLiteral("yyyy-MM-dd HH:mm:ss"), 1000)}) {
        const QDateTime time = QDateTime::fromString(trimmed, format);
        if (time.isValid()) {
            return time.toMSecsSinceEpoch() + (isEnd ? milliseconds - 1 : 0);
        }
    }
    return std::nullopt;
}

void showTimeHint(WQ::CLineEdit& edit)
{
    edit.setEmptyHintText(QStringLiteral("如 2026-01-05 09:30"));
}

void askForTime(WQ::CLineEdit& edit)
{
    WQ::CMessageTip::showTip(&edit, Qt::AlignBottom, QStringLiteral("请输入日期或时间，如 2026-01-05 09:30"), 3,
                             WQ::MessageWarning, 0);
}

} // namespace QAV
