// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace nvservice
{

/// Codes of user rights. The service grants them; QAV::CUserManager::checkUserAuth checks them.
namespace UserRight
{

constexpr int EditAccountGroup = 10717;    ///< add and modify account groups
constexpr int SetAccountGroupRisk = 10719; ///< view and modify the risk configuration of a group
constexpr int DeleteAccountGroup = 10721;  ///< delete account groups
constexpr int ReadAudit = 10723;           ///< read the audit and the findings of the consistency check

// Rights to one account type. In a group, an account that the user may not see is replaced by a placeholder with only
// its type and server. Placeholders count as accounts and must be sent back with the group.
constexpr int FutureAccount = 10037;           ///< view and select futures accounts
constexpr int StockAccount = 10041;            ///< view and select stock accounts
constexpr int StockOptionAccount = 10657;      ///< view and select stock option accounts
constexpr int ShanghaiHongKongAccount = 10745; ///< view and select Shanghai-Hong Kong accounts
constexpr int OverseasFutureAccount = 10817;   ///< view and select overseas futures accounts
constexpr int FutureOptionAccount = 10871;     ///< view and select futures option accounts
constexpr int NeeqAccount = 10953;             ///< view and select NEEQ accounts
constexpr int CreditAccount = 10089;           ///< view and select credit accounts
constexpr int ShenzhenHongKongAccount = 11501; ///< view and select Shenzhen-Hong Kong accounts
constexpr int IbOverseasAccount = 12001;       ///< view and select IB overseas accounts
constexpr int GoldAccount = 12091;             ///< view and select precious metal accounts
constexpr int InterbankAccount = 13091;        ///< view and select interbank accounts

} // namespace UserRight

} // namespace nvservice
