// SPDX-License-Identifier: Apache-2.0
#include "service/engine/RecordView.h"
#include "service/engine/AccountRights.h"
#include "service/engine/GroupScope.h"

#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/CProductInfo.h>
#include <nvservice/CustomEmailRC.h>
#include <nvservice/UserRight.h>

#include <algorithm>

namespace service
{

namespace
{

using nvservice::CAccountInfo;
using Accounts = std::vector<boost::shared_ptr<CAccountInfo>>;

bool maySee(const StoredUser& user, const CAccountInfo& account)
{
    return mayRead(user, account.brokerType) && isInScope(user, institutionOf(account.institutionId));
}

/// Returns false if an account was hidden.
bool hideAccounts(const RequestContext& context, Accounts& accounts, bool isStored)
{
    Accounts hidden;
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < accounts.size(); ++i) {
        if (!maySee(context.user, *accounts[i])) {
            hidden.push_back(accounts[i]);
            positions.push_back(i);
        }
    }
    std::vector<std::optional<StoredAccount>> stored(hidden.size());
    if (isStored) {
        stored = findAccounts(context, hidden);
    }
    for (std::size_t i = 0; i < hidden.size(); ++i) {
        const auto position = static_cast<std::int64_t>(positions[i]);
        accounts[positions[i]] = standInFor(stored[i] ? stored[i]->row : -1 - position, *hidden[i]);
    }
    return hidden.empty();
}

} // namespace

RecordView viewOf(const RequestContext& context, const nvservice::IDataPtr& record, bool isStored)
{
    const StoredUser& user = context.user;
    const RecordView nothing{nullptr, false};
    if (const auto group = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(record)) {
        if (!isInScope(user, institutionOf(group->institutionId))) {
            return nothing;
        }
        const bool isWhole = hideAccounts(context, group->accounts, isStored);
        return {group, isWhole};
    }
    if (const auto product = boost::dynamic_pointer_cast<nvservice::CProductInfo>(record)) {
        const bool isWhole = hideAccounts(context, product->accounts, isStored);
        return {product, isWhole};
    }
    if (const auto account = boost::dynamic_pointer_cast<nvservice::CKolmAccountInfo>(record)) {
        return account->account && maySee(user, *account->account) ? RecordView{record} : nothing;
    }
    const bool isRisk = boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(record) ||
                        boost::dynamic_pointer_cast<nvservice::CustomEmailRC>(record);
    if (isRisk && !user.has(nvservice::UserRight::SetAccountGroupRisk)) {
        return nothing;
    }
    return {record};
}

} // namespace service
