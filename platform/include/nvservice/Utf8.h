// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Export.h>

#include <string>
#include <string_view>

namespace nvservice
{

/// True if the text is valid UTF-8: shortest forms only, no surrogates, at most U+10FFFF. May be called from any
/// thread.
NVSERVICE_EXPORT bool isUtf8(std::string_view text);

/// The beginning of a valid text: at most `maxBytes`, and no part of a character. May be called from any thread.
NVSERVICE_EXPORT std::string_view cutUtf8(std::string_view text, std::size_t maxBytes);

/// The text with U+FFFD in place of every invalid byte. May be called from any thread.
NVSERVICE_EXPORT std::string repairedUtf8(std::string_view text);

} // namespace nvservice
