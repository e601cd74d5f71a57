// SPDX-License-Identifier: Apache-2.0
#include <nvservice/TypeManager.h>

#include <nvservice/EZVBrokerType.h>
#include <nvservice/EZvDataOperation.h>
#include <nvservice/EZvTraderType.h>
#include <nvservice/RiskEnums.h>
#include <utils/Translation.h>

#include <QCoreApplication>

#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

namespace nvservice
{

namespace
{

struct ItemName {
    template <typename Enum>
    ItemName(Enum item, const char* itemName, const char* stockOptionName = nullptr)
        : value(static_cast<int>(item)), name(itemName), optionName(stockOptionName ? stockOptionName : itemName)
    {
    }
    int value;
    const char* name;
    const char* optionName; ///< the name in the trade of stock options
};

using NameTable = std::map<std::string_view, std::vector<ItemName>>;

const NameTable& nameTable()
{
    static const NameTable table = {
        {"nvservice::EZVBrokerType",
         {{EZVBrokerType::Future, QT_TRANSLATE_NOOP("nvservice", "期货账号")},
          {EZVBrokerType::Stock, QT_TRANSLATE_NOOP("nvservice", "证券账号")},
          {EZVBrokerType::Credit, QT_TRANSLATE_NOOP("nvservice", "信用账号")},
          {EZVBrokerType::Gold, QT_TRANSLATE_NOOP("nvservice", "贵金属账号")},
          {EZVBrokerType::FutureOption, QT_TRANSLATE_NOOP("nvservice", "期货期权账号")},
          {EZVBrokerType::StockOption, QT_TRANSLATE_NOOP("nvservice", "股票期权账号")},
          {EZVBrokerType::ShanghaiHongKong, QT_TRANSLATE_NOOP("nvservice", "沪港通账号")},
          {EZVBrokerType::Neeq, QT_TRANSLATE_NOOP("nvservice", "全国股转账号")},
          {EZVBrokerType::ShenzhenHongKong, QT_TRANSLATE_NOOP("nvservice", "深港通账号")},
          {EZVBrokerType::AllBusiness, QT_TRANSLATE_NOOP("nvservice", "全业务账号")},
          {EZVBrokerType::WealthManagement, QT_TRANSLATE_NOOP("nvservice", "理财账号")},
          {EZVBrokerType::OverseasFuture, QT_TRANSLATE_NOOP("nvservice", "外盘期货账号")},
          {EZVBrokerType::IbOverseas, QT_TRANSLATE_NOOP("nvservice", "IB外盘账号")},
          {EZVBrokerType::Interbank, QT_TRANSLATE_NOOP("nvservice", "银行间账号")}}},
        {"nvservice::EZvTraderType",
         {{EZvTraderType::Stock, QT_TRANSLATE_NOOP("nvservice", "证券")},
          {EZvTraderType::Future, QT_TRANSLATE_NOOP("nvservice", "期货")},
          {EZvTraderType::StockOption, QT_TRANSLATE_NOOP("nvservice", "股票期权")},
          {EZvTraderType::ShanghaiHongKong, QT_TRANSLATE_NOOP("nvservice", "沪港通")},
          {EZvTraderType::Neeq, QT_TRANSLATE_NOOP("nvservice", "全国股转")},
          {EZvTraderType::FutureOption, QT_TRANSLATE_NOOP("nvservice", "期货期权")},
          {EZvTraderType::ShenzhenHongKong, QT_TRANSLATE_NOOP("nvservice", "深港通")},
          {EZvTraderType::Interbank, QT_TRANSLATE_NOOP("nvservice", "银行间")}}},
        {"nvservice::EZvDataOperation",
         {{EZvDataOperation::Modify, QT_TRANSLATE_NOOP("nvservice", "编辑")},
          {EZvDataOperation::Add, QT_TRANSLATE_NOOP("nvservice", "添加")},
          {EZvDataOperation::Delete, QT_TRANSLATE_NOOP("nvservice", "删除")}}},
        {"nvservice::EZVRCScopeType",
         {{EZVRCScopeType::Account, QT_TRANSLATE_NOOP("nvservice", "账号")},
          {EZVRCScopeType::AccountGroup, QT_TRANSLATE_NOOP("nvservice", "账号组")},
          {EZVRCScopeType::Product, QT_TRANSLATE_NOOP("nvservice", "产品")}}},
        {"nvservice::EZVRCListKind",
         {{EZVRCListKind::Black, QT_TRANSLATE_NOOP("nvservice", "黑名单")},
          {EZVRCListKind::White, QT_TRANSLATE_NOOP("nvservice", "白名单")}}},
        {"nvservice::EZVRCDirection",
         {{EZVRCDirection::Both, QT_TRANSLATE_NOOP("nvservice", "双向")},
          {EZVRCDirection::Buy, QT_TRANSLATE_NOOP("nvservice", "买入"), QT_TRANSLATE_NOOP("nvservice", "买")},
          {EZVRCDirection::Sell, QT_TRANSLATE_NOOP("nvservice", "卖出"), QT_TRANSLATE_NOOP("nvservice", "卖")}}},
        {"nvservice::EZVRCAssetClass",
         {{EZVRCAssetClass::All, QT_TRANSLATE_NOOP("nvservice", "全部资产")},
          {EZVRCAssetClass::Stock, QT_TRANSLATE_NOOP("nvservice", "股票")},
          {EZVRCAssetClass::Bond, QT_TRANSLATE_NOOP("nvservice", "债券")},
          {EZVRCAssetClass::Fund, QT_TRANSLATE_NOOP("nvservice", "基金")},
          {EZVRCAssetClass::Repo, QT_TRANSLATE_NOOP("nvservice", "回购")},
          {EZVRCAssetClass::Future, QT_TRANSLATE_NOOP("nvservice", "期货")},
          {EZVRCAssetClass::Option, QT_TRANSLATE_NOOP("nvservice", "期权")},
          {EZVRCAssetClass::Cash, QT_TRANSLATE_NOOP("nvservice", "现金")},
          {EZVRCAssetClass::ByCategory, QT_TRANSLATE_NOOP("nvservice", "证券分类")}}},
        {"nvservice::EZVRCQuantity",
         {{EZVRCQuantity::None, QT_TRANSLATE_NOOP("nvservice", "无")},
          {EZVRCQuantity::MarketValue, QT_TRANSLATE_NOOP("nvservice", "市值")},
          {EZVRCQuantity::Cost, QT_TRANSLATE_NOOP("nvservice", "成本")},
          {EZVRCQuantity::Volume, QT_TRANSLATE_NOOP("nvservice", "数量")},
          {EZVRCQuantity::Margin, QT_TRANSLATE_NOOP("nvservice", "保证金")},
          {EZVRCQuantity::NetAssets, QT_TRANSLATE_NOOP("nvservice", "净资产")},
          {EZVRCQuantity::TotalAssets, QT_TRANSLATE_NOOP("nvservice", "总资产")},
          {EZVRCQuantity::ShareCapital, QT_TRANSLATE_NOOP("nvservice", "总股本")},
          {EZVRCQuantity::FloatingProfit, QT_TRANSLATE_NOOP("nvservice", "浮动盈亏")}}},
        {"nvservice::EZVRCComparison",
         {{EZVRCComparison::Greater, QT_TRANSLATE_NOOP("nvservice", "大于")},
          {EZVRCComparison::GreaterOrEqual, QT_TRANSLATE_NOOP("nvservice", "大于等于")},
          {EZVRCComparison::Less, QT_TRANSLATE_NOOP("nvservice", "小于")},
          {EZVRCComparison::LessOrEqual, QT_TRANSLATE_NOOP("nvservice", "小于等于")}}},
        {"nvservice::EZVRCUnit",
         {{EZVRCUnit::Percent, "%"},
          {EZVRCUnit::Yuan, QT_TRANSLATE_NOOP("nvservice", "元")},
          {EZVRCUnit::TenThousandYuan, QT_TRANSLATE_NOOP("nvservice", "万元")},
          {EZVRCUnit::Share, QT_TRANSLATE_NOOP("nvservice", "股")}}},
        {"nvservice::EZVRCAction",
         {{EZVRCAction::Warn, QT_TRANSLATE_NOOP("nvservice", "警告")},
          {EZVRCAction::Forbid, QT_TRANSLATE_NOOP("nvservice", "禁止")}}},
    };
    return table;
}

/// The names of account and trade types are also words of files, and of the texts of plug-ins.
bool hasFixedNames(const std::string& typeName)
{
    return typeName == "nvservice::EZVBrokerType" || typeName == "nvservice::EZvTraderType";
}

} // namespace

std::string TypeManager::getEnumItemName(const std::string& typeName, int value, int traderType)
{
    const auto names = nameTable().find(typeName);
    if (names == nameTable().end()) {
        return {};
    }
    const auto item = std::find_if(names->second.begin(), names->second.end(),
                                   [value](const ItemName& candidate) { return candidate.value == value; });
    if (item == names->second.end()) {
        return std::to_string(value);
    }
    const char* const name = traderType == static_cast<int>(EZvTraderType::StockOption) ? item->optionName : item->name;
    return hasFixedNames(typeName) ? name : utils::text("nvservice", name);
}

} // namespace nvservice
