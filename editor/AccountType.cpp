// SPDX-License-Identifier: Apache-2.0
#include "editor/AccountType.h"

#include <QAV/CUserManager.h>
#include <luawrapper/LuaModuleCtrl.h>
#include <luawrapper/ModuleKey.h>
#include <nvservice/EZVBrokerType.h>
#include <nvservice/UserRight.h>
#include <utils/CSingletonT.h>

#include <algorithm>
#include <iterator>

namespace QAV
{

namespace
{

using nvservice::EZVBrokerType;
namespace ModuleKey = luawrapper::ModuleKey;
namespace UserRight = nvservice::UserRight;

const char* const NoModule = nullptr;
constexpr int NoRight = 0;

struct AccountType {
    EZVBrokerType value;
    QString name;
    /// Key of the module below ModuleKey::TradeType.
    const char* module;
    int right;
};

const AccountType* findAccountType(int type)
{
    static const AccountType types[] = {
        {EZVBrokerType::Future, QStringLiteral("期货账号"), ModuleKey::Future, UserRight::FutureAccount},
        {EZVBrokerType::Stock, QStringLiteral("证券账号"), ModuleKey::Stock, UserRight::StockAccount},
        {EZVBrokerType::Credit, QStringLiteral("信用账号"), ModuleKey::Credit, UserRight::CreditAccount},
        {EZVBrokerType::Gold, QStringLiteral("贵金属账号"), ModuleKey::Gold, UserRight::GoldAccount},
        {EZVBrokerType::FutureOption, QStringLiteral("期货期权账号"), ModuleKey::FutureOption,
         UserRight::FutureOptionAccount},
        {EZVBrokerType::StockOption, QStringLiteral("股票期权账号"), ModuleKey::StockOption,
         UserRight::StockOptionAccount},
        {EZVBrokerType::ShanghaiHongKong, QStringLiteral("沪港通账号"), ModuleKey::ShanghaiHongKong,
         UserRight::ShanghaiHongKongAccount},
        {EZVBrokerType::Neeq, QStringLiteral("全国股转账号"), ModuleKey::Neeq, UserRight::NeeqAccount},
        {EZVBrokerType::ShenzhenHongKong, QStringLiteral("深港通账号"), ModuleKey::ShenzhenHongKong,
         UserRight::ShenzhenHongKongAccount},
        {EZVBrokerType::AllBusiness, QStringLiteral("全业务账号"), NoModule, NoRight},
        {EZVBrokerType::WealthManagement, QStringLiteral("理财账号"), NoModule, NoRight},
        {EZVBrokerType::OverseasFuture, QStringLiteral("外盘期货账号"), ModuleKey::OverseasFuture,
         UserRight::OverseasFutureAccount},
        {EZVBrokerType::IbOverseas, QStringLiteral("IB外盘账号"), ModuleKey::IbOverseas, UserRight::IbOverseasAccount},
        {EZVBrokerType::Interbank, QStringLiteral("银行间账号"), ModuleKey::Interbank, UserRight::InterbankAccount},
    };
    const auto* const found = std::find_if(std::begin(types), std::end(types), [type](const AccountType& candidate) {
        return static_cast<int>(candidate.value) == type;
    });
    return found == std::end(types) ? nullptr : found;
}

} // namespace

QString accountTypeName(int type)
{
    const AccountType* const found = findAccountType(type);
    return found ? found->name : QString();
}

bool isAccountTypeOffered(int type)
{
    const AccountType* const found = findAccountType(type);
    return found && found->module &&
           utils::CSingletonT<luawrapper::LuaModuleCtrl>::instance()->checkModule(
               {ModuleKey::TradeType, found->module}) &&
           utils::CSingletonT<CUserManager>::instance()->checkUserAuth(found->right);
}

} // namespace QAV
