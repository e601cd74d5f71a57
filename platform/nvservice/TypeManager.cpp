// SPDX-License-Identifier: Apache-2.0
#include <nvservice/TypeManager.h>

#include <nvservice/EZVBrokerType.h>
#include <nvservice/EZvDataOperation.h>
#include <nvservice/EZvTraderType.h>
#include <nvservice/RiskEnums.h>

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
         {{EZVBrokerType::Future, "期货账号"},
          {EZVBrokerType::Stock, "证券账号"},
          {EZVBrokerType::Credit, "信用账号"},
          {EZVBrokerType::Gold, "贵金属账号"},
          {EZVBrokerType::FutureOption, "期货期权账号"},
          {EZVBrokerType::StockOption, "股票期权账号"},
          {EZVBrokerType::ShanghaiHongKong, "沪港通账号"},
          {EZVBrokerType::Neeq, "全国股转账号"},
          {EZVBrokerType::ShenzhenHongKong, "深港通账号"},
          {EZVBrokerType::AllBusiness, "全业务账号"},
          {EZVBrokerType::WealthManagement, "理财账号"},
          {EZVBrokerType::OverseasFuture, "外盘期货账号"},
          {EZVBrokerType::IbOverseas, "IB外盘账号"},
          {EZVBrokerType::Interbank, "银行间账号"}}},
        {"nvservice::EZvTraderType",
         {{EZvTraderType::Stock, "证券"},
          {EZvTraderType::Future, "期货"},
          {EZvTraderType::StockOption, "股票期权"},
          {EZvTraderType::ShanghaiHongKong, "沪港通"},
          {EZvTraderType::Neeq, "全国股转"},
          {EZvTraderType::FutureOption, "期货期权"},
          {EZvTraderType::ShenzhenHongKong, "深港通"},
          {EZvTraderType::Interbank, "银行间"}}},
        {"nvservice::EZvDataOperation",
         {{EZvDataOperation::Modify, "编辑"}, {EZvDataOperation::Add, "添加"}, {EZvDataOperation::Delete, "删除"}}},
        {"nvservice::EZVRCScopeType",
         {{EZVRCScopeType::Account, "账号"},
          {EZVRCScopeType::AccountGroup, "账号组"},
          {EZVRCScopeType::Product, "产品"}}},
        {"nvservice::EZVRCListKind", {{EZVRCListKind::Black, "黑名单"}, {EZVRCListKind::White, "白名单"}}},
        {"nvservice::EZVRCDirection",
         {{EZVRCDirection::Both, "双向"}, {EZVRCDirection::Buy, "买入", "买"}, {EZVRCDirection::Sell, "卖出", "卖"}}},
        {"nvservice::EZVRCAssetClass",
         {{EZVRCAssetClass::All, "全部资产"},
          {EZVRCAssetClass::Stock, "股票"},
          {EZVRCAssetClass::Bond, "债券"},
          {EZVRCAssetClass::Fund, "基金"},
          {EZVRCAssetClass::Repo, "回购"},
          {EZVRCAssetClass::Future, "期货"},
          {EZVRCAssetClass::Option, "期权"},
          {EZVRCAssetClass::Cash, "现金"},
          {EZVRCAssetClass::ByCategory, "证券分类"}}},
        {"nvservice::EZVRCQuantity",
         {{EZVRCQuantity::None, "无"},
          {EZVRCQuantity::MarketValue, "市值"},
          {EZVRCQuantity::Cost, "成本"},
          {EZVRCQuantity::Volume, "数量"},
          {EZVRCQuantity::Margin, "保证金"},
          {EZVRCQuantity::NetAssets, "净资产"},
          {EZVRCQuantity::TotalAssets, "总资产"},
          {EZVRCQuantity::ShareCapital, "总股本"},
          {EZVRCQuantity::FloatingProfit, "浮动盈亏"}}},
        {"nvservice::EZVRCComparison",
         {{EZVRCComparison::Greater, "大于"},
          {EZVRCComparison::GreaterOrEqual, "大于等于"},
          {EZVRCComparison::Less, "小于"},
          {EZVRCComparison::LessOrEqual, "小于等于"}}},
        {"nvservice::EZVRCUnit",
         {{EZVRCUnit::Percent, "%"},
          {EZVRCUnit::Yuan, "元"},
          {EZVRCUnit::TenThousandYuan, "万元"},
          {EZVRCUnit::Share, "股"}}},
        {"nvservice::EZVRCAction", {{EZVRCAction::Warn, "警告"}, {EZVRCAction::Forbid, "禁止"}}},
    };
    return table;
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
    return traderType == static_cast<int>(EZvTraderType::StockOption) ? item->optionName : item->name;
}

} // namespace nvservice
