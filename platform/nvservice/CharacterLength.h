#pragma once

#include <cstddef>
#include <string_view>

namespace nvservice
{

/// The bytes of the UTF-8 character at the beginning of `text`; 0 when none begins there.
std::size_t characterLength(std::string_view text);

} // namespace nvservice
