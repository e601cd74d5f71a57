#pragma once

#include <cstdint>

namespace nvservice
{

/// What an operation request does with its record. The value 1 belongs to no operation.
enum class EZvDataOperation : std::int32_t { Modify = 0, Add = 2, Delete = 3 };

} // namespace nvservice
