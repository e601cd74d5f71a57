#pragma once

#include <nvservice/Export.h>

#include <string>

namespace nvservice
{

/// Names of enum values for the user.
class NVSERVICE_EXPORT TypeManager
{
public:
    /// The Chinese name (UTF-8) of `value` of the enum `typeName`, which is given with its namespace:
    /// "nvservice::EZVBrokerType", "nvservice::EZvTraderType", "nvservice::EZvDataOperation" and the enums of
    /// <nvservice/RiskEnums.h>. `traderType` (an EZvTraderType bit) is for enums whose names depend on the trade type:
    /// a direction is called 买入/卖出, for stock options 买/卖; other enums ignore it.
    /// A value without a name gives its decimal text, so that the user sees that there is something; an unknown
    /// `typeName` gives an empty text. May be called from any thread.
    static std::string getEnumItemName(const std::string& typeName, int value, int traderType);
};

} // namespace nvservice
