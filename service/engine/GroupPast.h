// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/GroupHistory.h"

namespace service
{

/// A group after one change, with its accounts. Accounts have their current names, because the history does not store
/// earlier ones.
struct PastGroup {
    GroupRevision revision;
    GroupPtr record; ///< with id, tag and revision
    bool isDeletion() const { return revision.operation == nvservice::EZvDataOperation::Delete; }
};

/// A past configuration of a group.
struct PastRiskConfig {
    RiskConfigPtr record;             ///< with id, tag and revision
    std::optional<Change> lastChange; ///< empty for the default configuration of a new group
};

/// The group at a revision. Throws `Refusal` (NotFound) if there is none, or if one of its accounts is unknown.
PastGroup requireRevision(const ServerData& data, std::int64_t groupId, std::int64_t revision);
/// The group at a time. Throws `Refusal` (NotFound) if it did not exist at that time.
PastGroup requireGroupAt(const ServerData& data, std::int64_t groupId, std::int64_t at);

/// The configuration at a time at which the group existed.
PastRiskConfig riskConfigAt(const ServerData& data, std::int64_t groupId, std::int64_t at);
/// The configuration at a revision. Throws `Refusal` (NotFound) if there is none.
PastRiskConfig requireRiskRevision(const ServerData& data, std::int64_t groupId, std::int64_t revision);
/// The institution that the group belonged to when the configuration was saved. Throws `Refusal` (NotFound) if there
/// was no group.
InstitutionId institutionOf(const ServerData& data, const PastRiskConfig& config);

} // namespace service
