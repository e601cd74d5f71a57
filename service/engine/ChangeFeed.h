// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Users.h"

#include <nvservice/CChangeInfo.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace service
{

/// A moment in the order of the commits of one server.
struct ChangePosition {
    std::int64_t epoch = 0;   ///< of the restored backup
    std::int64_t auditId = 0; ///< of the last audit row
    std::int64_t at = 0;      ///< when it was read; milliseconds since 1970 UTC

    /// For clients, who send it back as it is.
    std::string text() const;
    /// Empty for a text that is no position.
    static std::optional<ChangePosition> fromText(const std::string& text);
};

/// A committed change of a group or its configuration, with the states that decide who may hear of it.
struct CommittedChange {
    struct State {
        std::string groupName;
        InstitutionId institution;
    };

    std::int64_t auditId = 0;
    nvservice::CChangeInfoPtr info; ///< for who may read the group afterwards
    std::optional<State> before;    ///< empty if there was no group
    std::optional<State> after;     ///< empty if the group was deleted
};

/// What was committed between two positions.
struct ChangeBatch {
    ChangePosition end;
    std::int64_t completeFrom = 0;        ///< an audit id; whoever has read less may have missed changes
    std::vector<CommittedChange> changes; ///< in the order of the commits
    /// The users at the end by row, with no other right than that to risk configurations. Empty if nothing was written.
    std::unordered_map<std::int64_t, StoredUser> users;
};

/// If more operations than `most` were committed after the audit row `after`, no changes are read.
struct ChangeLimit {
    std::int64_t after = 0;
    std::size_t most = std::numeric_limits<std::size_t>::max();
};

/// Reads what was committed since `from`, or nothing but the present end. Reads no documents, and at most 4096 audit
/// rows. In the caller's read transaction; throws `StoreError`.
ChangeBatch readChanges(const ServerData& data, const std::optional<ChangePosition>& from,
                        const ChangeLimit& limit = {});

} // namespace service
