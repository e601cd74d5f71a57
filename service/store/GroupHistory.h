#pragma once

#include "service/store/RiskConfigs.h"

namespace service
{

/// A group as one change left it; a delete has the state that it took away.
struct GroupRevision {
    std::int64_t revision = 0;
    nvservice::EZvDataOperation operation = nvservice::EZvDataOperation::Add;
    Change change;
    std::string name;
    InstitutionId institution;
    std::vector<std::int64_t> accountRows; ///< in the order of the group
    bson::BSONObj unknownFields;
    QByteArray riskConfig; ///< of a delete: the configuration that went with the group
};

/// Every change of a group, the oldest first; of a group that is gone as well. Empty for one that never was.
std::vector<GroupRevision> loadGroupRevisions(Connection& connection, const SubSystem& server, std::int64_t groupId);
/// The ids of all groups that have, or once had, a name.
std::vector<std::int64_t> findGroupsEverNamed(Connection& connection, const SubSystem& server, const std::string& name);

/// A change of a group's configuration.
struct RiskRevision {
    std::int64_t revision = 0;
    Change change;
    std::int32_t dataType = 0; ///< whether the configuration was saved or its e-mail rules
};

/// Every change of a group's configuration, the oldest first. The first revision, which is the default configuration,
/// has no change.
std::vector<RiskRevision> loadRiskRevisions(Connection& connection, const SubSystem& server, std::int64_t groupId);
/// The configuration as a change left it; null when there was no such change.
RiskConfigPtr findRiskRevision(Connection& connection, const SubSystem& server, std::int64_t groupId,
                               std::int64_t revision);

} // namespace service
