// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string_view>

namespace nvservice
{

/// The number of bytes of the UTF-8 character at the start of `text`; 0 if it is invalid.
std::size_t characterLength(std::string_view text);

} // namespace nvservice
