// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CAuditEntry.h>
#include <nvservice/CCategoryInfo.h>
#include <nvservice/CChangeInfo.h>
#include <nvservice/CFinding.h>
#include <nvservice/CGroupRestore.h>
#include <nvservice/CInstitutionInfo.h>
#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/CKolmProductsResp.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>
#include <nvservice/CProductInfo.h>
#include <nvservice/CSecurityInfo.h>
#include <nvservice/CUserInfo.h>
#include <nvservice/CustomEmailRC.h>

#include <cstddef>
#include <string_view>
#include <tuple>

/// The description of all records: class names and fields. Encoding, decoding, deep copies and the tagging of nested
/// records are derived from it.
namespace nvservice
{

template <typename Record, typename Value>
struct Field {
    std::string_view name;
    Value Record::* member;
};

template <std::size_t N, typename Record, typename Value>
constexpr Field<Record, Value> field(const char (&name)[N], Value Record::* member)
{
    return {{name, N - 1}, member};
}

/// Specialised once per record: `typeName` and `list`.
template <typename Record>
struct Fields;

template <typename Value, typename = void>
constexpr bool hasFields = false;
template <typename Value>
constexpr bool hasFields<Value, std::void_t<decltype(Fields<Value>::list)>> = true;

template <>
struct Fields<CAccountInfo> {
    static constexpr char typeName[] = "nvservice::CAccountInfo";
    static constexpr auto list = std::make_tuple(
        field("brokerType", &CAccountInfo::brokerType), field("accountId", &CAccountInfo::accountId),
        field("unitId", &CAccountInfo::unitId), field("accountName", &CAccountInfo::accountName),
        field("institutionId", &CAccountInfo::institutionId), field("institutionName", &CAccountInfo::institutionName));
};

template <>
struct Fields<CAccountGroup> {
    static constexpr char typeName[] = "nvservice::CAccountGroup";
    static constexpr auto list = std::make_tuple(
        field("groupId", &CAccountGroup::groupId), field("groupName", &CAccountGroup::groupName),
        field("accounts", &CAccountGroup::accounts), field("institutionId", &CAccountGroup::institutionId),
        field("institutionName", &CAccountGroup::institutionName));
};

template <>
struct Fields<CKolmAccountInfo> {
    static constexpr char typeName[] = "nvservice::CKolmAccountInfo";
    static constexpr auto list =
        std::make_tuple(field("account", &CKolmAccountInfo::account), field("stateCode", &CKolmAccountInfo::stateCode),
                        field("excluded", &CKolmAccountInfo::excluded));
};

template <>
struct Fields<CProductInfo> {
    static constexpr char typeName[] = "nvservice::CProductInfo";
    static constexpr auto list =
        std::make_tuple(field("productId", &CProductInfo::productId), field("productName", &CProductInfo::productName),
                        field("excluded", &CProductInfo::excluded), field("accounts", &CProductInfo::accounts));
};

template <>
struct Fields<CKolmProductsResp> {
    static constexpr char typeName[] = "nvservice::CKolmProductsResp";
    static constexpr auto list = std::make_tuple(field("products", &CKolmProductsResp::products));
};

template <>
struct Fields<CTradeLimitEntry> {
    static constexpr auto list = std::make_tuple(
        field("securityCode", &CTradeLimitEntry::securityCode), field("securityName", &CTradeLimitEntry::securityName),
        field("direction", &CTradeLimitEntry::direction), field("listKind", &CTradeLimitEntry::listKind));
};

template <>
struct Fields<CTradeLimitList> {
    static constexpr auto list =
        std::make_tuple(field("traderType", &CTradeLimitList::traderType), field("entries", &CTradeLimitList::entries));
};

template <>
struct Fields<CAccountGroupRCRule> {
    static constexpr char typeName[] = "nvservice::CAccountGroupRCRule";
    static constexpr auto list = std::make_tuple(field("lists", &CAccountGroupRCRule::lists));
};

template <>
struct Fields<CAssetsRC> {
    static constexpr char typeName[] = "nvservice::CAssetsRC";
    static constexpr auto list = std::make_tuple(
        field("ruleId", &CAssetsRC::ruleId), field("scope", &CAssetsRC::scope),
        field("assetClass", &CAssetsRC::assetClass), field("categoryId", &CAssetsRC::categoryId),
        field("measured", &CAssetsRC::measured), field("base", &CAssetsRC::base),
        field("comparison", &CAssetsRC::comparison), field("threshold", &CAssetsRC::threshold),
        field("unit", &CAssetsRC::unit), field("action", &CAssetsRC::action), field("enabled", &CAssetsRC::enabled),
        field("serverName", &CAssetsRC::serverName), field("remark", &CAssetsRC::remark));
};

template <>
struct Fields<CRatProofSetting> {
    static constexpr char typeName[] = "nvservice::CRatProofSetting";
    static constexpr auto list =
        std::make_tuple(field("washTradeForbidden", &CRatProofSetting::washTradeForbidden),
                        field("reverseOrderCheck", &CRatProofSetting::reverseOrderCheck),
                        field("washTradeExemptCategoryIds", &CRatProofSetting::washTradeExemptCategoryIds),
                        field("reverseOrderExemptCategoryIds", &CRatProofSetting::reverseOrderExemptCategoryIds),
                        field("notCountCancelledOrders", &CRatProofSetting::notCountCancelledOrders),
                        field("reverseOrderWarnOnly", &CRatProofSetting::reverseOrderWarnOnly));
};

template <>
struct Fields<CEmailRC> {
    static constexpr char typeName[] = "nvservice::CEmailRC";
    static constexpr auto list =
        std::make_tuple(field("ruleKind", &CEmailRC::ruleKind), field("accountKey", &CEmailRC::accountKey),
                        field("ruleKey", &CEmailRC::ruleKey), field("recipients", &CEmailRC::recipients),
                        field("subject", &CEmailRC::subject), field("enabled", &CEmailRC::enabled));
};

template <>
struct Fields<CustomEmailRC> {
    static constexpr char typeName[] = "nvservice::CustomEmailRC";
    static constexpr auto list = std::make_tuple(field("emailRCs", &CustomEmailRC::emailRCs));
};

template <>
struct Fields<CAccountGroupRCConfig> {
    static constexpr char typeName[] = "nvservice::CAccountGroupRCConfig";
    static constexpr auto list = std::make_tuple(field("groupId", &CAccountGroupRCConfig::groupId),
                                                 field("rcRule", &CAccountGroupRCConfig::rcRule),
                                                 field("assetsRCs", &CAccountGroupRCConfig::assetsRCs),
                                                 field("ratProofSetting", &CAccountGroupRCConfig::ratProofSetting),
                                                 field("emailRCs", &CAccountGroupRCConfig::emailRCs));
};

template <>
struct Fields<CCategoryInfo> {
    static constexpr char typeName[] = "nvservice::CCategoryInfo";
    static constexpr auto list = std::make_tuple(
        field("categoryId", &CCategoryInfo::categoryId), field("categoryName", &CCategoryInfo::categoryName),
        field("categoryType", &CCategoryInfo::categoryType), field("sysType", &CCategoryInfo::sysType),
        field("parentId", &CCategoryInfo::parentId));
};

template <>
struct Fields<CInstitutionInfo> {
    static constexpr char typeName[] = "nvservice::CInstitutionInfo";
    static constexpr auto list = std::make_tuple(field("institutionId", &CInstitutionInfo::institutionId),
                                                 field("name", &CInstitutionInfo::name));
};

template <>
struct Fields<CSecurityInfo> {
    static constexpr char typeName[] = "nvservice::CSecurityInfo";
    static constexpr auto list =
        std::make_tuple(field("securityCode", &CSecurityInfo::securityCode),
                        field("securityName", &CSecurityInfo::securityName), field("market", &CSecurityInfo::market),
                        field("sysType", &CSecurityInfo::sysType), field("traderType", &CSecurityInfo::traderType));
};

template <>
struct Fields<CUserInfo> {
    static constexpr char typeName[] = "nvservice::CUserInfo";
    static constexpr auto list =
        std::make_tuple(field("userId", &CUserInfo::userId), field("userName", &CUserInfo::userName),
                        field("institutionId", &CUserInfo::institutionId), field("rights", &CUserInfo::rights));
};

template <>
struct Fields<CAuditEntry> {
    static constexpr char typeName[] = "nvservice::CAuditEntry";
    static constexpr auto list = std::make_tuple(
        field("entryId", &CAuditEntry::entryId), field("at", &CAuditEntry::at), field("userId", &CAuditEntry::userId),
        field("userName", &CAuditEntry::userName), field("operation", &CAuditEntry::operation),
        field("dataType", &CAuditEntry::dataType), field("groupId", &CAuditEntry::groupId),
        field("groupName", &CAuditEntry::groupName), field("recordKey", &CAuditEntry::recordKey),
        field("outcome", &CAuditEntry::outcome), field("outcomeText", &CAuditEntry::outcomeText),
        field("operationId", &CAuditEntry::operationId), field("attempts", &CAuditEntry::attempts),
        field("before", &CAuditEntry::before), field("after", &CAuditEntry::after),
        field("withheldReason", &CAuditEntry::withheldReason));
};

template <>
struct Fields<CFinding> {
    static constexpr char typeName[] = "nvservice::CFinding";
    static constexpr auto list = std::make_tuple(
        field("kind", &CFinding::kind), field("kindName", &CFinding::kindName), field("groupId", &CFinding::groupId),
        field("groupName", &CFinding::groupName), field("text", &CFinding::text), field("advice", &CFinding::advice));
};

template <>
struct Fields<CGroupRestore> {
    static constexpr char typeName[] = "nvservice::CGroupRestore";
    static constexpr auto list = std::make_tuple(
        field("groupId", &CGroupRestore::groupId), field("groupRevision", &CGroupRestore::groupRevision),
        field("configRevision", &CGroupRestore::configRevision),
        field("seenGroupRevision", &CGroupRestore::seenGroupRevision),
        field("seenConfigRevision", &CGroupRestore::seenConfigRevision), field("obstacles", &CGroupRestore::obstacles));
};

template <>
struct Fields<CChangeInfo> {
    static constexpr char typeName[] = "nvservice::CChangeInfo";
    static constexpr auto list =
        std::make_tuple(field("dataType", &CChangeInfo::dataType), field("groupId", &CChangeInfo::groupId),
                        field("groupName", &CChangeInfo::groupName), field("operation", &CChangeInfo::operation),
                        field("userId", &CChangeInfo::userId), field("userName", &CChangeInfo::userName),
                        field("changedAt", &CChangeInfo::changedAt), field("operationId", &CChangeInfo::operationId));
};

template <>
struct Fields<CKolmQueryDataReq> {
    static constexpr char typeName[] = "nvservice::CKolmQueryDataReq";
    static constexpr auto list = std::make_tuple(field("dataType", &CKolmQueryDataReq::dataType),
                                                 field("queryKey", &CKolmQueryDataReq::queryKey));
};

template <>
struct Fields<COperateDataReq> {
    static constexpr char typeName[] = "nvservice::COperateDataReq";
    static constexpr auto list =
        std::make_tuple(field("dataType", &COperateDataReq::dataType), field("operation", &COperateDataReq::operation),
                        field("data", &COperateDataReq::data), field("operationId", &COperateDataReq::operationId));
};

template <typename... Records>
struct RecordList {
};

/// All classes that a document can name.
using AllRecords = RecordList<CAccountGroup, CAccountInfo, CKolmAccountInfo, CProductInfo, CKolmProductsResp,
                              CKolmQueryDataReq, COperateDataReq, CAccountGroupRCConfig, CAccountGroupRCRule, CAssetsRC,
                              CRatProofSetting, CEmailRC, CustomEmailRC, CCategoryInfo, CInstitutionInfo, CSecurityInfo,
                              CUserInfo, CAuditEntry, CFinding, CGroupRestore, CChangeInfo>;

} // namespace nvservice
