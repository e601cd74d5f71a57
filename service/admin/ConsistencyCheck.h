#pragma once

#include "service/store/Connection.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace service
{

enum class EFinding {
    OtherServerMember,
    OtherInstitutionMember,
    ClosedAccount,
    ExcludedAccount,
    EmptyGroup,
    RuleOnEmptyGroup,
    BrokenConfig,        ///< missing, or bytes that can't be read
    BrokenFields,        ///< the unknown fields of a group can't be read
    RepeatedList,        ///< two lists of one trade type, of which clients see the first
    SecurityOnBothLists, ///< of one trade type of one group
    BadListEntry,
    MissingCategory,
    ForbiddenCategory, ///< internal, or of a system type that nobody can have a right to
    BadLimit,
    BadEmailRule,
    LowCounter,          ///< an id that was given out would be given out again
    HistoryGap,          ///< revisions are missing
    HistoryMismatch,     ///< what is stored is not what the last change left
    ContradictingGroups, ///< an account is in two groups, of which one allows only what the other forbids
};

/// "closed-account"
const char* keyOf(EFinding finding);

struct Finding {
    EFinding kind;
    std::int64_t groupId = 0;
    std::string groupName;
    std::string text; ///< in Chinese
};

/// What the rules of the service wouldn't let in today, and what can't be meant so, in the order of the groups. Changes
/// nothing. `progress` counts groups. Throws `StoreError`.
std::vector<Finding> checkConsistency(Connection& connection, const SubSystem& server,
                                      const std::function<void(std::int64_t done, std::int64_t total)>& progress);

} // namespace service
