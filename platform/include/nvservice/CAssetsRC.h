// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/IData.h>
#include <nvservice/RiskEnums.h>

namespace nvservice
{

/// One asset-portfolio limit: if (measured / base) compares with the threshold as stated, the action is taken.
/// Key: "<system tag>|<rule id, decimal>".
class NVSERVICE_EXPORT CAssetsRC : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::int64_t ruleId = -1;                            ///< assigned by the service; -1 for a new limit
    EZVRCScopeType scope = EZVRCScopeType::AccountGroup; ///< what is watched as one whole
    EZVRCAssetClass assetClass = EZVRCAssetClass::All;   ///< the assets that are measured
    std::int32_t categoryId = -1; ///< the CCategoryInfo that is measured; -1 unless assetClass is ByCategory
    EZVRCQuantity measured = EZVRCQuantity::MarketValue;   ///< the quantity that is measured
    EZVRCQuantity base = EZVRCQuantity::None;              ///< the quantity that it is divided by
    EZVRCComparison comparison = EZVRCComparison::Greater; ///< how the result is compared with the threshold
    double threshold = 0.0;                                ///< in `unit`; finite
    EZVRCUnit unit = EZVRCUnit::Percent;                   ///< of the threshold
    EZVRCAction action = EZVRCAction::Warn;                ///< taken if the limit is broken
    bool enabled = true;                                   ///< false: switched off
    std::string serverName;                                ///< the server's name as shown to the user
    std::string remark;                                    ///< a note by the user
};

} // namespace nvservice
