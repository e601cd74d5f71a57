#pragma once

#include <nvservice/IData.h>
#include <nvservice/RiskEnums.h>

namespace nvservice
{

/// One asset-portfolio limit: when (measured / base) compares with the threshold as stated, the action is taken.
/// Key: "<system tag>|<rule id, decimal>".
class NVSERVICE_EXPORT CAssetsRC : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::int64_t ruleId = -1; ///< given by the service; -1 for a new limit
    EZVRCScopeType scope = EZVRCScopeType::AccountGroup;
    EZVRCAssetClass assetClass = EZVRCAssetClass::All;
    std::int32_t categoryId = -1; ///< the CCategoryInfo measured; -1 unless assetClass is ByCategory
    EZVRCQuantity measured = EZVRCQuantity::MarketValue;
    EZVRCQuantity base = EZVRCQuantity::None;
    EZVRCComparison comparison = EZVRCComparison::Greater;
    double threshold = 0.0; ///< in `unit`; finite
    EZVRCUnit unit = EZVRCUnit::Percent;
    EZVRCAction action = EZVRCAction::Warn;
    bool enabled = true;
    std::string serverName; ///< the server as the user knows it
    std::string remark;
};

} // namespace nvservice
