// SPDX-License-Identifier: Apache-2.0
#include "risk/CStockTradeLimitWidget.h"

#include <QAV/CAccountStockTradeLimit.h>
#include <WQ/CStandardTabControl.h>
#include <luawrapper/LuaModuleCtrl.h>
#include <luawrapper/ModuleKey.h>
#include <utils/CSingletonT.h>

namespace QAV
{

namespace
{

namespace ModuleKey = luawrapper::ModuleKey;

struct TradeTypeTab {
    const char* moduleKey;
    QString text;
    nvservice::EZvTraderType traderType;
};

bool isTradeTypeOn(const char* moduleKey)
{
    return utils::CSingletonT<luawrapper::LuaModuleCtrl>::instance()->checkModule({ModuleKey::TradeType, moduleKey});
}

} // namespace

CStockTradeLimitWidget::CStockTradeLimitWidget(QWidget* parent)
    : CBaseWidget(QStringLiteral("stock_trade_limit"), false, parent)
{
    using nvservice::EZvTraderType;
    const TradeTypeTab tabs[] = {
        {ModuleKey::Future, QStringLiteral("期货账号"), EZvTraderType::Future},
        {ModuleKey::Stock, QStringLiteral("证券账号"), EZvTraderType::Stock},
        {ModuleKey::Neeq, QStringLiteral("全国股转账号"), EZvTraderType::Neeq},
        {ModuleKey::ShanghaiHongKong, QStringLiteral("沪港通账号"), EZvTraderType::ShanghaiHongKong},
        {ModuleKey::ShenzhenHongKong, QStringLiteral("深港通账号"), EZvTraderType::ShenzhenHongKong},
        {ModuleKey::FutureOption, QStringLiteral("期货期权账号"), EZvTraderType::FutureOption},
        {ModuleKey::StockOption, QStringLiteral("股票期权账号"), EZvTraderType::StockOption},
        {ModuleKey::Interbank, QStringLiteral("银行间账号"), EZvTraderType::Interbank},
    };

    auto* const tabControl = new WQ::CStandardTabControl(this);
    setInnerStretchWidget(tabControl, 0, 0, 0, 0);
    for (const TradeTypeTab& tab : tabs) {
        if (!isTradeTypeOn(tab.moduleKey)) {
            continue;
        }
        auto* const table = new CAccountStockTradeLimit(EStockLimitTableType::AccountGroup, tab.traderType, tabControl);
        tabControl->addTabWidget(tab.text, table);
        m_tradeLimitTables.push_back(table);
    }
}

void CStockTradeLimitWidget::setTradeLimitGroupId(int groupId)
{
    for (CAccountStockTradeLimit* const table : m_tradeLimitTables) {
        if (table) {
            table->setAccountGroupId(groupId);
        }
    }
}

void CStockTradeLimitWidget::setTradeLimitRule(const nvservice::CAccountGroupRCRule& rule)
{
    for (CAccountStockTradeLimit* const table : m_tradeLimitTables) {
        if (table) {
            table->setAccountGroupRCRule(rule);
        }
    }
}

void CStockTradeLimitWidget::updateTradeLimitRule(nvservice::CAccountGroupRCRule& rule)
{
    for (CAccountStockTradeLimit* const table : m_tradeLimitTables) {
        if (table) {
            table->updateAccountGroupRCRule(rule);
        }
    }
}

} // namespace QAV
