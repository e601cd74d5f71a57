#pragma once

#include <nvservice/Export.h>

#include <string>
#include <string_view>

namespace nvservice
{

/// Whether a text is UTF-8 (shortest forms only, no surrogates, at most U+10FFFF). May be called from any thread.
NVSERVICE_EXPORT bool isUtf8(std::string_view text);

/// The text with U+FFFD in the place of every byte that belongs to no character. May be called from any thread.
NVSERVICE_EXPORT std::string repairedUtf8(std::string_view text);

} // namespace nvservice
