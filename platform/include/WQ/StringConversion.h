// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/Export.h>

#include <QString>

#include <string>

namespace WQ
{

/// Converts UTF-8, as in records, to a QString, as in widgets. Invalid bytes become U+FFFD.
WQ_EXPORT QString sToQs(const std::string& utf8);
/// Converts a QString to UTF-8. Lossless for every text without unpaired surrogates.
WQ_EXPORT std::string qsToS(const QString& text);

} // namespace WQ
