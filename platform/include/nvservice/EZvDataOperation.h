// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace nvservice
{

/// What an operation does with its record. The value 1 is not used.
enum class EZvDataOperation : std::int32_t { Modify = 0, Add = 2, Delete = 3 };

} // namespace nvservice
