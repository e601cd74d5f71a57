// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/ServerData.h"

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
    BrokenConfig,        ///< missing or unreadable
    BrokenFields,        ///< the unknown fields of a group are unreadable
    RepeatedList,        ///< two lists of one trade type; clients see the first
    SecurityOnBothLists, ///< of one trade type of one group
    BadListEntry,
    MissingCategory,
    ForbiddenCategory, ///< internal, or of a system type without a right
    BadLimit,
    BadEmailRule,
    LowCounter,          ///< an assigned id would be assigned again
    HistoryGap,          ///< revisions are missing
    HistoryMismatch,     ///< the stored state differs from the result of the last change
    ContradictingGroups, ///< an account is in two groups, one of which allows only what the other forbids
};

/// "closed-account"
const char* keyOf(EFinding finding);

struct Finding {
    EFinding kind;
    std::int64_t groupId = 0;
    std::string groupName;
    std::string text; ///< in Chinese
};

/// Finds what breaks the current rules of the service, and contradictions, in the order of the groups. Changes nothing.
/// `progress` counts groups. Throws `StoreError`.
std::vector<Finding> checkConsistency(const ServerData& data,
                                      const std::function<void(std::int64_t done, std::int64_t total)>& progress);

} // namespace service
