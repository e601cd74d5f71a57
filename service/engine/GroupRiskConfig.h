// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/DataHandler.h"
#include "service/engine/GroupScope.h"
#include "service/store/RiskConfigs.h"

#include <nvservice/UserRight.h>

namespace service
{

/// The right to see and to change risk configurations, and what texts call it.
constexpr int RiskRight = nvservice::UserRight::SetAccountGroupRisk;
constexpr char RiskRightName[] = "设置账号组风控";
constexpr char RiskConfigName[] = "风控配置"; ///< as texts call the record

/// The risk configuration of a group that a request is about. Throws `Refusal` or `StoreError`.
class GroupRiskConfig
{
public:
    /// NotFound (group or configuration), OutOfScope.
    GroupRiskConfig(const RequestContext& context, std::int64_t groupId);

    const RiskConfigPtr& record() const { return m_stored.record; }

    /// Throws (Conflict) unless `revision` is the stored one, or an older one after which nobody but this session
    /// changed anything.
    void requireCurrent(std::int64_t revision) const;
    [[noreturn]] void refuseOutdated(const Change& change) const;
    /// Stores a new state in place of the one that was read.
    AppliedChange replace(nvservice::CAccountGroupRCConfig config, std::int32_t dataType) const;

private:
    const RequestContext& m_context;
    GroupHead m_group;
    StoredRiskConfig m_stored;
};

} // namespace service
