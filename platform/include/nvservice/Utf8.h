#pragma once

#include <nvservice/Export.h>

#include <string_view>

namespace nvservice
{

/// Whether a text is UTF-8 (shortest forms only, no surrogates, at most U+10FFFF). May be called from any thread.
NVSERVICE_EXPORT bool isUtf8(std::string_view text);

} // namespace nvservice
