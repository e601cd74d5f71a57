// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace nvservice
{

/// The trade type that a part of a risk rule applies to. Each value is a single bit. Unlisted bits are preserved.
enum class EZvTraderType : std::int32_t {
    None = 0,
    Stock = 1,
    Future = 2,
    StockOption = 32,
    ShanghaiHongKong = 128,
    Neeq = 256,
    FutureOption = 1024,
    ShenzhenHongKong = 16384,
    Interbank = 32768
};

} // namespace nvservice
