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

} // namespace DataType

} // namespace nvservice
