// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/RiskConfigs.h"

#include <map>
#include <set>

namespace service
{

/// One change of a group. A deletion has the name and the institution before it.
struct GroupChange {
    std::int64_t revision = 0;
    nvservice::EZvDataOperation operation = nvservice::EZvDataOperation::Add;
    Change change;
    std::string name;
    InstitutionId institution;
};

/// A group after one change. A deletion has the state before it.
struct GroupRevision : GroupChange {
    std::vector<std::int64_t> accountRows; ///< in the order of the group
    bson::BSONObj unknownFields;
    QByteArray riskConfig; ///< of a deletion: the configuration that was deleted with the group
};

/// All changes of a group, the oldest first, even if it was deleted. Empty if the group never existed.
std::vector<GroupRevision> loadGroupRevisions(const ServerData& data, std::int64_t groupId);
std::optional<GroupRevision> findGroupRevision(const ServerData& data, std::int64_t groupId, std::int64_t revision);
/// The last change up to a time.
std::optional<GroupRevision> findGroupRevisionAt(const ServerData& data, std::int64_t groupId, std::int64_t at);
/// The changes before a revision, the latest first.
std::vector<GroupChange> loadGroupChangesBefore(const ServerData& data, std::int64_t groupId, std::int64_t revision,
                                                int limit);
/// The last names of groups by id, also of deleted ones; with a scope, their last ones in that institution.
std::map<std::int64_t, std::string> loadLastGroupNames(const ServerData& data, const std::set<std::int64_t>& groupIds,
                                                       InstitutionId scope);
/// The ids of all groups that have, or once had, a name.
std::vector<std::int64_t> findGroupsEverNamed(const ServerData& data, const std::string& name);

/// A change of a group's configuration.
struct RiskRevision {
    std::int64_t revision = 0;
    Change change;
    std::int32_t dataType = 0; ///< tells whether the configuration or its e-mail rules were saved
};

/// All changes of a group's configuration, the oldest first. The first revision, the default configuration, is not a
/// change.
std::vector<RiskRevision> loadRiskRevisions(const ServerData& data, std::int64_t groupId);
std::optional<RiskRevision> findRiskChange(const ServerData& data, std::int64_t groupId, std::int64_t revision);
/// The last change up to a time.
std::optional<RiskRevision> findRiskChangeAt(const ServerData& data, std::int64_t groupId, std::int64_t at);
/// The changes before a revision, the latest first.
std::vector<RiskRevision> loadRiskChangesBefore(const ServerData& data, std::int64_t groupId, std::int64_t revision,
                                                int limit);
/// The configuration after a change; null if there was no such change.
RiskConfigPtr findRiskRevision(const ServerData& data, std::int64_t groupId, std::int64_t revision);

} // namespace service
