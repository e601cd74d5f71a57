// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace WQ
{
class CLineEdit;
} // namespace WQ

namespace QAV
{

/// Reads a local time, "2026-01-05", "2026-01-05 09:30" or "2026-01-05 09:30:15", as milliseconds since 1970 UTC: the
/// first one of the day, minute or second, or the last one. Empty for another text.
std::optional<std::int64_t> timeOf(const QString& text, bool isEnd);

/// Shows in an empty edit how a time is entered.
void showTimeHint(WQ::CLineEdit& edit);
/// Says in a tip at the edit that its text is no time.
void askForTime(WQ::CLineEdit& edit);

} // namespace QAV
