#include "service/engine/AccountRights.h"

#include <nvservice/TypeManager.h>
#include <nvservice/UserRight.h>

#include <algorithm>

namespace service
{

using nvservice::CAccountInfo;
using nvservice::EZVBrokerType;

namespace
{

const std::string StandInPrefix = "无权查看#";

} // namespace

int rightOfAccountType(EZVBrokerType type)
{
    namespace UserRight = nvservice::UserRight;
    switch (type) {
    case EZVBrokerType::Future:
        return UserRight::FutureAccount;
    case EZVBrokerType::Stock:
        return UserRight::StockAccount;
    case EZVBrokerType::Credit:
        return UserRight::CreditAccount;
    case EZVBrokerType::Gold:
        return UserRight::GoldAccount;
    case EZVBrokerType::FutureOption:
        return UserRight::FutureOptionAccount;
    case EZVBrokerType::StockOption:
        return UserRight::StockOptionAccount;
    case EZVBrokerType::ShanghaiHongKong:
        return UserRight::ShanghaiHongKongAccount;
    case EZVBrokerType::Neeq:
        return UserRight::NeeqAccount;
    case EZVBrokerType::ShenzhenHongKong:
        return UserRight::ShenzhenHongKongAccount;
    case EZVBrokerType::OverseasFuture:
        return UserRight::OverseasFutureAccount;
    case EZVBrokerType::IbOverseas:
        return UserRight::IbOverseasAccount;
    case EZVBrokerType::Interbank:
        return UserRight::InterbankAccount;
    case EZVBrokerType::Unknown:
    case EZVBrokerType::AllBusiness:
    case EZVBrokerType::WealthManagement:
        break;
    }
    return 0;
}

std::string nameOfAccountType(EZVBrokerType type)
{
    return nvservice::TypeManager::getEnumItemName("nvservice::EZVBrokerType", static_cast<int>(type), 1);
}

bool mayRead(const StoredUser& user, EZVBrokerType type)
{
    const int right = rightOfAccountType(type);
    return right == 0 || user.has(right);
}

std::vector<StoredAccount> readableAccounts(const RequestContext& context)
{
    std::vector<StoredAccount> accounts = loadAccounts(context.connection, context.server, context.user.institution);
    const auto end = std::remove_if(accounts.begin(), accounts.end(), [&context](const StoredAccount& each) {
        return !mayRead(context.user, each.info->brokerType);
    });
    accounts.erase(end, accounts.end());
    return accounts;
}

boost::shared_ptr<CAccountInfo> accountShownTo(const StoredUser& user, std::int64_t row,
                                               const boost::shared_ptr<CAccountInfo>& account)
{
    if (mayRead(user, account->brokerType))
        return account;
    auto standIn = boost::make_shared<CAccountInfo>();
    standIn->brokerType = account->brokerType;
    standIn->accountId = StandInPrefix + std::to_string(row);
    standIn->setSystemTag(account->getSystemTag());
    return standIn;
}

bool isStandInId(const std::string& accountId)
{
    return accountId.compare(0, StandInPrefix.size(), StandInPrefix) == 0;
}

nvservice::CAccountGroup withoutStandIns(const nvservice::CAccountGroup& sent, const StoredGroup& stored)
{
    std::unordered_map<std::string, boost::shared_ptr<CAccountInfo>> members;
    for (std::size_t i = 0; i < stored.accountRows.size(); ++i)
        members.emplace(StandInPrefix + std::to_string(stored.accountRows[i]), stored.record->accounts[i]);
    nvservice::CAccountGroup group = sent;
    for (auto& account : group.accounts) {
        const auto member = members.find(account->accountId);
        if (member != members.end())
            account = member->second;
    }
    return group;
}

} // namespace service
