// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace luawrapper
{

/// Keys of the module switches, for LuaModuleCtrl::checkModule.
namespace ModuleKey
{

/// Institutions. The second key is nested in the first.
constexpr const char* Portal = "mdl_portal";
constexpr const char* PortalPrimeBroker = "mdl_portal_pb";

/// Trade types and their accounts. The other keys are nested in the first.
constexpr const char* TradeType = "mdl_tradetype";
constexpr const char* Future = "mdl_tradetype_future";
constexpr const char* Stock = "mdl_tradetype_stock";
constexpr const char* Credit = "mdl_tradetype_credit";
constexpr const char* Gold = "mdl_tradetype_gold";
constexpr const char* FutureOption = "mdl_tradetype_futures_option";
constexpr const char* StockOption = "mdl_tradetype_option";
constexpr const char* ShanghaiHongKong = "mdl_tradetype_ggt";
constexpr const char* ShenzhenHongKong = "mdl_tradetype_sgt";
constexpr const char* Neeq = "mdl_tradetype_neeq";
constexpr const char* OverseasFuture = "mdl_tradetype_outter";
constexpr const char* IbOverseas = "mdl_tradetype_ib";
constexpr const char* Interbank = "mdl_tradetype_interbank";

} // namespace ModuleKey

} // namespace luawrapper
