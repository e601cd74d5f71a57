// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Export.h>

#include <string>

namespace nvservice
{

/// Names of enum values to show to the user.
class NVSERVICE_EXPORT TypeManager
{
public:
    /// The name (UTF-8) of `value` in the enum `typeName`, in the language of the thread; types of accounts and trades
    /// have Chinese names only. The enum is named with its namespace: "nvservice::EZVBrokerType",
    /// "nvservice::EZvTraderType", "nvservice::EZvDataOperation" or an enum of <nvservice/RiskEnums.h>. `traderType`
    /// (an EZvTraderType bit) matters for enums whose names depend on the trade type: a direction is called 买入/卖出,
    /// but 买/卖 for stock options. Other enums ignore it. A value without a name gives its decimal text, so that the
    /// user sees that there is a value. An unknown `typeName` gives an empty text. May be called from any thread.
    static std::string getEnumItemName(const std::string& typeName, int value, int traderType);
};

} // namespace nvservice
