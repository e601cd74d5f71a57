// SPDX-License-Identifier: Apache-2.0
#include "service/engine/AccountRights.h"
#include "service/engine/DataHandler.h"
#include "service/engine/Refusal.h"
#include "service/store/Securities.h"

#include <nvservice/CKolmProductsResp.h>
#include <utils/Translation.h>

#include <QCoreApplication>

namespace service
{

namespace
{

using utils::EErrorCode;

constexpr char EveryCategory[] = "-1_-1";
// Of the products in one record. With the longest names such a record stays below nvservice::MaxRecordBytes.
constexpr std::size_t MaxListedAccounts = 10000;

} // namespace

Records queryAccounts(const RequestContext& context, const std::string&)
{
    Records records;
    for (const StoredAccount& account : readableAccounts(context)) {
        auto record = boost::make_shared<nvservice::CKolmAccountInfo>();
        record->account = account.info;
        record->stateCode = account.stateCode;
        record->excluded = account.excluded;
        record->setSystemTag(context.server.systemTag);
        records.push_back(record);
    }
    return records;
}

Records queryCategories(const RequestContext& context, const std::string& key)
{
    if (!key.empty() && key != EveryCategory) {
        throw Refusal(EErrorCode::InvalidValue, utils::text("service", "证券分类查询条件无效"));
    }
    const auto categories = loadCategories(context);
    return {categories.begin(), categories.end()};
}

Records queryInstitutions(const RequestContext& context, const std::string& key)
{
    if (!key.empty()) {
        throw Refusal(EErrorCode::InvalidValue, utils::text("service", "机构查询条件无效"));
    }
    const auto institutions = loadInstitutions(context, context.user.institution);
    return {institutions.begin(), institutions.end()};
}

Records queryProducts(const RequestContext& context, const std::string&)
{
    Records records;
    boost::shared_ptr<nvservice::CKolmProductsResp> list;
    std::size_t listed = 0;
    const auto beginList = [&] {
        list = boost::make_shared<nvservice::CKolmProductsResp>();
        list->setSystemTag(context.server.systemTag);
        records.push_back(list);
        listed = 0;
    };
    beginList();
    const AccountsByRow accounts = accountsByRow(readableAccounts(context));
    for (const auto& product : loadProducts(context, context.user.institution, accounts)) {
        if (!list->products.empty() && listed + product->accounts.size() > MaxListedAccounts) {
            beginList();
        }
        listed += product->accounts.size();
        list->products.push_back(product);
    }
    return records;
}

Records querySecurities(const RequestContext& context, const std::string& key)
{
    std::optional<std::int64_t> traderType;
    if (!key.empty()) {
        traderType = requireId(key, QT_TRANSLATE_NOOP("service", "证券"));
    }
    const auto securities = loadSecurities(context, traderType);
    return {securities.begin(), securities.end()};
}

} // namespace service
