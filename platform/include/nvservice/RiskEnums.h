// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace nvservice
{

/// What a risk rule watches as one whole.
enum class EZVRCScopeType : std::int32_t { Account = 0, AccountGroup = 1, Product = 2 };

/// The list that a security is on: securities that must not be traded, or the only ones that may be traded.
enum class EZVRCListKind : std::int32_t { Black = 0, White = 1 };

/// The side of a trade that a list entry applies to. Trade types without a direction use Both.
enum class EZVRCDirection : std::int32_t { Both = 0, Buy = 1, Sell = 2 };

/// The kind of asset that a portfolio limit measures. ByCategory means the category that the limit names.
enum class EZVRCAssetClass : std::int32_t {
    All = 0,
    Stock = 1,
    Bond = 2,
    Fund = 3,
    Repo = 4,
    Future = 5,
    Option = 6,
    Cash = 7,
    ByCategory = 100
};

/// A quantity of a portfolio: what a limit measures, or what it is divided by.
enum class EZVRCQuantity : std::int32_t {
    None = 0, ///< as a base: the measured quantity is not divided
    MarketValue = 1,
    Cost = 2,
    Volume = 3,
    Margin = 4,
    NetAssets = 5,
    TotalAssets = 6,
    ShareCapital = 7,
    FloatingProfit = 8
};

/// How the measured figure is compared with the threshold. The limit is broken if the comparison is true.
enum class EZVRCComparison : std::int32_t { Greater = 0, GreaterOrEqual = 1, Less = 2, LessOrEqual = 3 };

/// The unit of a threshold.
enum class EZVRCUnit : std::int32_t {
    Percent = 0, ///< of the base quantity; 5 means 5 %
    Yuan = 1,
    TenThousandYuan = 2,
    Share = 3
};

/// What happens if a limit is broken.
enum class EZVRCAction : std::int32_t { Warn = 0, Forbid = 1 };

} // namespace nvservice
