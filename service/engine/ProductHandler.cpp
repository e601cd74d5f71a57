// SPDX-License-Identifier: Apache-2.0
#include "service/engine/AccountRights.h"
#include "service/engine/DataHandler.h"

#include <nvservice/CKolmProductsResp.h>

namespace service
{

// Of the products in one record. With the longest names such a record stays below nvservice::MaxRecordBytes.
constexpr std::size_t MaxListedAccounts = 10000;

Records queryProducts(const RequestContext& context, const std::string&)
{
    const AccountsByRow accounts = accountsByRow(readableAccounts(context));
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
    for (const auto& product : loadProducts(context.connection, context.server, context.user.institution, accounts)) {
        if (!list->products.empty() && listed + product->accounts.size() > MaxListedAccounts) {
            beginList();
        }
        listed += product->accounts.size();
        list->products.push_back(product);
    }
    return records;
}

} // namespace service
