// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAccountGroupRCRule.h>
#include <nvservice/CAssetsRC.h>
#include <nvservice/CEmailRC.h>
#include <nvservice/CRatProofSetting.h>
#include <nvservice/IData.h>

#include <vector>

namespace nvservice
{

/// The risk-control configuration of one account group. Key: "<system tag>|<group id, decimal>".
class NVSERVICE_EXPORT CAccountGroupRCConfig : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::int32_t groupId = -1;        ///< the group that the configuration belongs to
    CAccountGroupRCRule rcRule;       ///< black and white lists
    std::vector<CAssetsRC> assetsRCs; ///< asset-portfolio limits, in the order in which the user sees them
    CRatProofSetting ratProofSetting; ///< reverse-order check and wash-trade ban
    std::vector<CEmailRC> emailRCs;   ///< e-mail rules of the group
};

} // namespace nvservice
