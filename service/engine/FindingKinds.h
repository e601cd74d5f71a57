// SPDX-License-Identifier: Apache-2.0
#pragma once

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

/// What is said about all findings of a kind. Names and advice are to be translated.
struct FindingKind {
    EFinding kind;
    const char* key; ///< for programs: "closed-account"
    const char* name;
    const char* advice;
    bool tellsRiskSettings; ///< true: only for those who may see them
};

const FindingKind& kindOf(EFinding finding);
/// "closed-account"
const char* keyOf(EFinding finding);

} // namespace service
