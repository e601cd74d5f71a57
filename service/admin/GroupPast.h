#pragma once

#include "service/store/GroupHistory.h"

namespace service
{

/// A group as one change left it, with its accounts. These are named as they are today: history knows which they were,
/// not what they were called.
struct PastGroup {
    GroupRevision revision;
    GroupPtr record; ///< stamped with id, tag and revision
    bool isDeletion() const { return revision.operation == nvservice::EZvDataOperation::Delete; }
};

/// A group's configuration as it was.
struct PastRiskConfig {
    RiskConfigPtr record;             ///< stamped with id, tag and revision
    std::optional<Change> lastChange; ///< none for the configuration that every group begins with
};

/// The group as a revision left it. Throws `Refusal` (NotFound) when there is none, or an account of it is unknown.
PastGroup requireRevision(Connection& connection, const SubSystem& server, std::int64_t groupId, std::int64_t revision);
/// The group at a time. Throws `Refusal` (NotFound) when it wasn't there yet, or not any more.
PastGroup requireGroupAt(Connection& connection, const SubSystem& server, std::int64_t groupId, std::int64_t at);

/// The configuration at a time at which the group was there.
PastRiskConfig riskConfigAt(Connection& connection, const SubSystem& server, std::int64_t groupId, std::int64_t at);
/// Throws `Refusal` (NotFound) when there is no such revision.
PastRiskConfig requireRiskRevision(Connection& connection, const SubSystem& server, std::int64_t groupId,
                                   std::int64_t revision);

} // namespace service
