// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace nvservice
{

/// Codes of the data that a query or operation is about.
namespace DataType
{

constexpr std::int32_t Category = 614;         ///< CCategoryInfo
constexpr std::int32_t AccountGroup = 625;     ///< CAccountGroup
constexpr std::int32_t GroupRiskConfig = 7131; ///< CAccountGroupRCConfig; the query key is the decimal group id
constexpr std::int32_t Account = 12203;        ///< CKolmAccountInfo
constexpr std::int32_t Product = 12224;        ///< CKolmProductsResp
/// CInstitutionInfo; the client's own query, with which the institution search edit loads its list.
constexpr std::int32_t Institution = 12231;
/// CSecurityInfo; the client's own query, with which the list editors look securities up. The query key is a decimal
/// EZvTraderType; empty: the securities of all trade types.
constexpr std::int32_t Security = 12237;
constexpr std::int32_t EmailRule = 23460; ///< CustomEmailRC

// Queries of these types take conditions, whose names are those of <nvservice/QueryCondition.h>. Lists come in pages:
// the extra document of the reply has the text `next`, the cursor of the next page; the last page has none. A page may
// have fewer records than wanted, or none, and still not be the last.

/// CChangeInfo, the latest first: the changes of a group, its risk configuration and its e-mail rules. Conditions:
/// `group` (required), `since`, `until`, `user`, `page-size`, `cursor`.
constexpr std::int32_t GroupHistory = 90001;
/// CAccountGroup, CAccountGroupRCConfig or both, as they were. Conditions: `group` (required), and `group-revision`,
/// `config-revision` or both, or `at`, for what was there at that time; without any, what is there now.
constexpr std::int32_t GroupState = 90002;
/// CAuditEntry, the latest first. Conditions: `group`, `since`, `until`, `user`, `data-type`, `operation`, `outcome`,
/// `details`, `page-size`, `cursor`.
constexpr std::int32_t Audit = 90003;
/// CFinding: all that the consistency check finds, in the order of the groups, in one page. No conditions. One check
/// runs at a time, for 25 seconds at most; then, and while another one runs, the answer is `ResourceExhausted`.
constexpr std::int32_t Finding = 90004;
/// CGroupRestore; modifying one restores a group, its risk configuration or both. The query answers what would be
/// stored: one CGroupRestore, which can be sent back, and after it what would differ from now: the new CAccountGroup,
/// CAccountGroupRCConfig or both. Conditions: `group` (required), `group-revision`, `config-revision` or both. A
/// deleted group is added again under a new id, with the configuration that it had last unless another one is named.
constexpr std::int32_t GroupRestore = 90005;

} // namespace DataType

} // namespace nvservice
