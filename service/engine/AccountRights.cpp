// SPDX-License-Identifier: Apache-2.0
#include "service/engine/AccountRights.h"

#include <nvservice/TypeManager.h>
#include <nvservice/UserRight.h>
#include <utils/Translation.h>

#include <algorithm>

namespace service
{

using nvservice::CAccountInfo;
using nvservice::EZVBrokerType;

namespace
{

const std::string StandInPrefix = "无权查看#";

} // namespace

const std::vector<AccountRight>& accountRights()
{
    namespace UserRight = nvservice::UserRight;
    static const std::vector<AccountRight> rights = {
        {EZVBrokerType::Future, UserRight::FutureAccount, "future-account"},
        {EZVBrokerType::Stock, UserRight::StockAccount, "stock-account"},
        {EZVBrokerType::Credit, UserRight::CreditAccount, "credit-account"},
        {EZVBrokerType::Gold, UserRight::GoldAccount, "gold-account"},
        {EZVBrokerType::FutureOption, UserRight::FutureOptionAccount, "future-option-account"},
        {EZVBrokerType::StockOption, UserRight::StockOptionAccount, "stock-option-account"},
        {EZVBrokerType::ShanghaiHongKong, UserRight::ShanghaiHongKongAccount, "shanghai-hong-kong-account"},
        {EZVBrokerType::Neeq, UserRight::NeeqAccount, "neeq-account"},
        {EZVBrokerType::ShenzhenHongKong, UserRight::ShenzhenHongKongAccount, "shenzhen-hong-kong-account"},
        {EZVBrokerType::OverseasFuture, UserRight::OverseasFutureAccount, "overseas-future-account"},
        {EZVBrokerType::IbOverseas, UserRight::IbOverseasAccount, "ib-overseas-account"},
        {EZVBrokerType::Interbank, UserRight::InterbankAccount, "interbank-account"}};
    return rights;
}

std::string nameOfAccountType(EZVBrokerType type)
{
    return utils::text("nvservice", wordOfAccountType(type).c_str());
}

std::string wordOfAccountType(EZVBrokerType type)
{
    return nvservice::TypeManager::getEnumItemName("nvservice::EZVBrokerType", static_cast<int>(type), 1);
}

bool mayRead(const StoredUser& user, EZVBrokerType type)
{
    return std::none_of(accountRights().begin(), accountRights().end(),
                        [&user, type](const AccountRight& each) { return each.type == type && !user.has(each.right); });
}

std::vector<StoredAccount> readableAccounts(const RequestContext& context)
{
    std::vector<StoredAccount> accounts = loadAccounts(context, context.user.institution);
    const auto end = std::remove_if(accounts.begin(), accounts.end(), [&context](const StoredAccount& each) {
        return !mayRead(context.user, each.info->brokerType);
    });
    accounts.erase(end, accounts.end());
    return accounts;
}

boost::shared_ptr<CAccountInfo> accountShownTo(const StoredUser& user, std::int64_t row,
                                               const boost::shared_ptr<CAccountInfo>& account)
{
    return mayRead(user, account->brokerType) ? account : standInFor(row, *account);
}

boost::shared_ptr<CAccountInfo> standInFor(std::int64_t row, const CAccountInfo& account)
{
    auto standIn = boost::make_shared<CAccountInfo>();
    standIn->brokerType = account.brokerType;
    standIn->accountId = StandInPrefix + std::to_string(row);
    standIn->setSystemTag(account.getSystemTag());
    return standIn;
}

bool isStandInId(const std::string& accountId)
{
    return accountId.compare(0, StandInPrefix.size(), StandInPrefix) == 0;
}

nvservice::CAccountGroup withoutStandIns(const nvservice::CAccountGroup& sent, const StoredGroup& stored)
{
    std::unordered_map<std::string, boost::shared_ptr<CAccountInfo>> members;
    for (std::size_t i = 0; i < stored.accountRows.size(); ++i) {
        members.emplace(StandInPrefix + std::to_string(stored.accountRows[i]), stored.record->accounts[i]);
    }
    nvservice::CAccountGroup group = sent;
    for (auto& account : group.accounts) {
        const auto member = members.find(account->accountId);
        if (member != members.end()) {
            account = member->second;
        }
    }
    return group;
}

} // namespace service
