// SPDX-License-Identifier: Apache-2.0
#include "service/engine/DataHandler.h"
#include "service/engine/GroupPast.h"
#include "service/engine/GroupRiskConfig.h"
#include "service/engine/QueryConditions.h"
#include "service/engine/RecordView.h"

#include <limits>

namespace service
{

namespace
{

namespace QueryCondition = nvservice::QueryCondition;

nvservice::IDataPtr groupAt(const RequestContext& context, const PastGroup& past)
{
    requireInScope(context.user, past.revision.institution);
    return viewOf(context, past.record).record;
}

nvservice::IDataPtr configAt(const RequestContext& context, const PastRiskConfig& past)
{
    requireInScope(context.user, institutionOf(context, past));
    return past.record;
}

Records stateAt(const RequestContext& context, std::int32_t groupId, std::int64_t at)
{
    const std::optional<GroupRevision> last = findGroupRevisionAt(context, groupId, at);
    if (last) {
        requireInScope(context.user, last->institution);
    }
    Records records{groupAt(context, requireGroupAt(context, groupId, at))};
    if (context.user.has(RiskRight)) {
        records.push_back(riskConfigAt(context, groupId, at).record);
    }
    return records;
}

} // namespace

Records queryGroupState(const RequestContext& context, const std::string& key)
{
    const QueryConditions conditions(key, {QueryCondition::Group, QueryCondition::GroupRevision,
                                           QueryCondition::ConfigRevision, QueryCondition::At});
    const std::int32_t groupId = conditions.requiredGroup();
    const auto groupRevision = conditions.revision(QueryCondition::GroupRevision);
    const auto configRevision = conditions.revision(QueryCondition::ConfigRevision);
    const auto at = conditions.number(QueryCondition::At);
    if (at && (groupRevision || configRevision)) {
        QueryConditions::refuse();
    }
    if (!groupRevision && !configRevision) {
        return stateAt(context, groupId, at.value_or(std::numeric_limits<std::int64_t>::max()));
    }
    Records records;
    if (configRevision) {
        requireRight(context.user, RiskRight, RiskRightName);
    }
    if (groupRevision) {
        records.push_back(groupAt(context, requireRevision(context, groupId, *groupRevision)));
    }
    if (configRevision) {
        records.push_back(configAt(context, requireRiskRevision(context, groupId, *configRevision)));
    }
    return records;
}

} // namespace service
