#include "service/engine/Queries.h"
#include "service/engine/AccountRights.h"
#include "service/engine/GroupScope.h"
#include "service/engine/Refusal.h"
#include "service/engine/RiskOperations.h"
#include "service/store/Groups.h"
#include "service/store/RiskConfigs.h"
#include "service/store/Securities.h"

#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/CKolmProductsResp.h>
#include <nvservice/DataType.h>

#include <QString>

#include <algorithm>

namespace service
{

namespace
{

using utils::EErrorCode;

// Of the products in one record. With the longest names such a record stays below nvservice::MaxRecordBytes.
constexpr std::size_t MaxListedAccounts = 10000;
constexpr char EveryCategory[] = "-1_-1";

/// The decimal id that a query key names; empty for every other text.
std::optional<std::int64_t> idOfKey(const std::string& key)
{
    bool isNumber = false;
    const qlonglong id = QString::fromStdString(key).toLongLong(&isNumber);
    return isNumber && std::to_string(id) == key ? std::optional<std::int64_t>(id) : std::nullopt;
}

std::int64_t requireId(const std::string& key, const char* what)
{
    const std::optional<std::int64_t> id = idOfKey(key);
    if (!id)
        throw Refusal(EErrorCode::InvalidValue, what + std::string("查询条件无效"));
    return *id;
}

Reply counted(Reply reply)
{
    reply.totalCount = static_cast<int>(reply.records.size());
    return reply;
}

template <typename Records>
Reply replyOf(const Records& records)
{
    Reply reply;
    reply.records.assign(records.begin(), records.end());
    return counted(std::move(reply));
}

Reply queryGroups(Connection& connection, const SubSystem& server, const StoredUser& user, const std::string& key)
{
    Reply reply;
    if (!key.empty()) {
        const std::optional<std::int64_t> id = idOfKey(key);
        if (!id)
            throw Refusal(EErrorCode::InvalidValue, "账号组查询条件无效");
        const std::optional<StoredGroup> group = findGroup(connection, server, *id);
        if (group && (!user.institution || group->record->institutionId == *user.institution)) {
            for (std::size_t i = 0; i < group->accountRows.size(); ++i) {
                auto& account = group->record->accounts[i];
                account = accountShownTo(user, group->accountRows[i], account);
            }
            reply.records.push_back(group->record);
        }
    } else {
        AccountsByRow accounts = accountsByRow(loadAccounts(connection, server, std::nullopt));
        for (auto& [row, account] : accounts)
            account = accountShownTo(user, row, account);
        const std::vector<GroupPtr> groups = loadGroups(connection, server, user.institution, accounts);
        reply.records.assign(groups.begin(), groups.end());
    }
    return counted(std::move(reply));
}

/// The accounts of the user's institution whose types the user may read.
std::vector<StoredAccount> readableAccounts(Connection& connection, const SubSystem& server, const StoredUser& user)
{
    std::vector<StoredAccount> accounts = loadAccounts(connection, server, user.institution);
    accounts.erase(std::remove_if(accounts.begin(), accounts.end(),
                                  [&user](const StoredAccount& each) { return !mayRead(user, each.info->brokerType); }),
                   accounts.end());
    return accounts;
}

Reply queryProducts(Connection& connection, const SubSystem& server, const StoredUser& user)
{
    const AccountsByRow accounts = accountsByRow(readableAccounts(connection, server, user));
    std::vector<boost::shared_ptr<nvservice::CKolmProductsResp>> lists;
    std::size_t listed = 0;
    for (const auto& product : loadProducts(connection, server, user.institution, accounts)) {
        listed += product->accounts.size();
        if (lists.empty() || listed > MaxListedAccounts) {
            lists.push_back(boost::make_shared<nvservice::CKolmProductsResp>());
            listed = product->accounts.size();
        }
        lists.back()->products.push_back(product);
    }
    if (lists.empty())
        lists.push_back(boost::make_shared<nvservice::CKolmProductsResp>());
    for (const auto& list : lists)
        list->setSystemTag(server.systemTag);
    return replyOf(lists);
}

Reply queryAccounts(Connection& connection, const SubSystem& server, const StoredUser& user)
{
    Reply reply;
    for (const StoredAccount& account : readableAccounts(connection, server, user)) {
        auto record = boost::make_shared<nvservice::CKolmAccountInfo>();
        record->account = account.info;
        record->stateCode = account.stateCode;
        record->excluded = account.excluded;
        record->setSystemTag(server.systemTag);
        reply.records.push_back(record);
    }
    return counted(std::move(reply));
}

Reply queryRiskConfig(Connection& connection, const SubSystem& server, const StoredUser& user, const std::string& key)
{
    const std::int64_t groupId = requireId(key, "风控配置");
    requireRiskRight(user);
    requireGroupInScope(connection, server, user, groupId);
    const std::optional<StoredRiskConfig> config = findRiskConfig(connection, server, groupId);
    if (!config)
        throw Refusal(EErrorCode::NotFound, "账号组没有风控配置");
    return replyOf(std::vector<RiskConfigPtr>{config->record});
}

Reply queryCategories(Connection& connection, const SubSystem& server, const std::string& key)
{
    if (!key.empty() && key != EveryCategory)
        throw Refusal(EErrorCode::InvalidValue, "证券分类查询条件无效");
    return replyOf(loadCategories(connection, server));
}

Reply queryInstitutions(Connection& connection, const SubSystem& server, const StoredUser& user, const std::string& key)
{
    if (!key.empty())
        throw Refusal(EErrorCode::InvalidValue, "机构查询条件无效");
    return replyOf(loadInstitutions(connection, server, user.institution));
}

Reply querySecurities(Connection& connection, const SubSystem& server, const std::string& key)
{
    std::optional<std::int64_t> traderType;
    if (!key.empty())
        traderType = requireId(key, "证券");
    return replyOf(loadSecurities(connection, server, traderType));
}

} // namespace

Reply answerQuery(Connection& connection, const SubSystem& server, const StoredUser& user,
                  const nvservice::CKolmQueryDataReq& request)
{
    namespace DataType = nvservice::DataType;
    switch (request.dataType) {
    case DataType::AccountGroup:
        return queryGroups(connection, server, user, request.queryKey);
    case DataType::Product:
        return queryProducts(connection, server, user);
    case DataType::Account:
        return queryAccounts(connection, server, user);
    case DataType::GroupRiskConfig:
        return queryRiskConfig(connection, server, user, request.queryKey);
    case DataType::Category:
        return queryCategories(connection, server, request.queryKey);
    case DataType::Institution:
        return queryInstitutions(connection, server, user, request.queryKey);
    case DataType::Security:
        return querySecurities(connection, server, request.queryKey);
    default:
        throw Refusal(EErrorCode::Unsupported, "数据服务不支持查询数据类型 " + std::to_string(request.dataType));
    }
}

} // namespace service
