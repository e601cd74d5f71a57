// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/DataHandler.h"
#include "service/engine/GroupScope.h"
#include "service/store/RiskConfigs.h"

#include <nvservice/UserRight.h>

#include <QCoreApplication>

namespace service
{

/// The right to see and to change risk configurations, and its name in texts.
constexpr int RiskRight = nvservice::UserRight::SetAccountGroupRisk;
constexpr char RiskRightName[] = QT_TRANSLATE_NOOP("service", "设置账号组风控");
constexpr char RiskConfigName[] = QT_TRANSLATE_NOOP("service", "风控配置"); ///< of the record in texts

/// The stored risk configuration of a request's group. Throws `Refusal` or `StoreError`.
class GroupRiskConfig
{
public:
    /// NotFound (group or configuration), OutOfScope.
    GroupRiskConfig(const RequestContext& context, std::int64_t groupId);

    const RiskConfigPtr& record() const { return m_stored.record; }

    /// Throws (Conflict) unless `revision` is the stored one, or an older one and only this session has made changes
    /// since.
    void requireCurrent(std::int64_t revision) const;
    [[noreturn]] void refuseOutdated(const Change& change) const;
    /// Replaces the stored configuration.
    AppliedChange replace(nvservice::CAccountGroupRCConfig config, std::int32_t dataType) const;

private:
    const RequestContext& m_context;
    GroupHead m_group;
    StoredRiskConfig m_stored;
};

} // namespace service
