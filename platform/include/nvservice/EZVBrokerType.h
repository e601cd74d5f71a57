// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace nvservice
{

/// The type of a trading account. A later version of the service may send other values; they are preserved.
enum class EZVBrokerType : std::int32_t {
    Unknown = 0,
    Future = 1,
    Stock = 2,
    Credit = 3,
    Gold = 4,
    FutureOption = 5,
    StockOption = 6,
    ShanghaiHongKong = 7,
    Neeq = 10,
    ShenzhenHongKong = 11,
    AllBusiness = 12,
    WealthManagement = 13,
    OverseasFuture = 1001,
    IbOverseas = 1002,
    Interbank = 15002
};

} // namespace nvservice
