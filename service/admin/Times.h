// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace service
{

/// Parses a time into milliseconds since 1970 UTC: "2026-01-05", "2026-01-05 09:30", "2026-01-05 09:30:15", also with
/// 'T' instead of the blank, in the machine's time zone unless "Z" or an offset follows. Returns the first millisecond
/// of the day, minute or second, or its last if `toEnd`. Empty for any other text.
std::optional<std::int64_t> readTime(const QString& text, bool toEnd);

/// "2026-01-05 09:30:15" in the machine's time zone.
QString textOfTime(std::int64_t at);
/// ISO 8601 with milliseconds and offset.
QString isoTime(std::int64_t at);

} // namespace service
