// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <functional>
#include <string_view>

namespace WQ
{

/// The hash of a row key, 64 bits on all platforms that the client runs on.
inline std::size_t hashOfKey(const QString& key)
{
    const std::u16string_view text(QStringView(key).utf16(), static_cast<std::size_t>(key.size()));
    return std::hash<std::u16string_view>()(text);
}

} // namespace WQ
