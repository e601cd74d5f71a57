// SPDX-License-Identifier: Apache-2.0
#include "service/engine/GroupRiskConfig.h"
#include "service/engine/RiskConfigRules.h"

#include <nvservice/DataType.h>

#include <set>

namespace service
{

namespace
{

using nvservice::CAccountGroupRCConfig;
using nvservice::CAssetsRC;
using nvservice::EZvDataOperation;

Records queryRiskConfig(const RequestContext& context, const std::string& key)
{
    const std::int64_t groupId = requireId(key, RiskConfigName);
    requireRight(context.user, RiskRight, RiskRightName);
    return {GroupRiskConfig(context, groupId).record()};
}

std::optional<std::int32_t> groupOfConfig(const CAccountGroupRCConfig& sent, EZvDataOperation)
{
    return sent.groupId;
}

/// Assigns ids to limits that are new, that repeat an id, or whose id is not one of the configuration.
void giveRuleIds(const RequestContext& context, CAccountGroupRCConfig& config, const CAccountGroupRCConfig& stored)
{
    std::set<std::int64_t> free;
    for (const CAssetsRC& limit : stored.assetsRCs) {
        free.insert(limit.ruleId);
    }
    std::vector<CAssetsRC*> unnumbered;
    for (CAssetsRC& limit : config.assetsRCs) {
        if (free.erase(limit.ruleId) == 0) {
            unnumbered.push_back(&limit);
        }
    }
    if (unnumbered.empty()) {
        return;
    }
    std::int64_t next = takeRuleIds(context, static_cast<std::int64_t>(unnumbered.size()));
    for (CAssetsRC* limit : unnumbered) {
        limit->ruleId = next++;
    }
}

/// Replaces the configuration, including its e-mail rules. An older revision is accepted if this session made all
/// changes since, so that a user can save again from a dialog that is still open.
AppliedChange modifyRiskConfig(const RequestContext& context, const CAccountGroupRCConfig& sent)
{
    const GroupRiskConfig stored(context, sent.groupId);
    stored.requireCurrent(sent.revision());
    requireValidRiskConfig(context, sent, *stored.record());
    CAccountGroupRCConfig config = sent;
    if (!context.isTrial()) {
        giveRuleIds(context, config, *stored.record());
    }
    return stored.replace(std::move(config), nvservice::DataType::GroupRiskConfig);
}

} // namespace

DataHandler riskConfigHandler()
{
    return {nvservice::DataType::GroupRiskConfig,
            &queryRiskConfig,
            RiskConfigName,
            &requireReasonableSize,
            &groupOfConfig,
            {{EZvDataOperation::Modify, RiskRight, RiskRightName, &modifyRiskConfig}}};
}

} // namespace service
