#pragma once

#include <string>
#include <string_view>

namespace nvservice
{

/// An element name from outside as a message may show it: valid UTF-8 without control characters, of bounded length.
std::string printableName(std::string_view name);

} // namespace nvservice
