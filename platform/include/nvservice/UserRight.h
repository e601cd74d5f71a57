#pragma once

namespace nvservice
{

/// Rights of a user, as the service grants them and QAV::CUserManager::checkUserAuth asks for them.
namespace UserRight
{

constexpr int EditAccountGroup = 10717;    ///< add and modify account groups
constexpr int SetAccountGroupRisk = 10719; ///< see and set the risk configuration of a group
constexpr int DeleteAccountGroup = 10721;

/// To see and choose the accounts of one broker type. In a group whose accounts the user may not all see, the others
/// are there as stand-ins with type and server alone: they count, and have to be sent back with the group.
constexpr int FutureAccount = 10037;
constexpr int StockAccount = 10041;
constexpr int StockOptionAccount = 10657;
constexpr int ShanghaiHongKongAccount = 10745;
constexpr int OverseasFutureAccount = 10817;
constexpr int FutureOptionAccount = 10871;
constexpr int NeeqAccount = 10953;
constexpr int CreditAccount = 10089;
constexpr int ShenzhenHongKongAccount = 11501;
constexpr int IbOverseasAccount = 12001;
constexpr int GoldAccount = 12091;
constexpr int InterbankAccount = 13091;

} // namespace UserRight

} // namespace nvservice
