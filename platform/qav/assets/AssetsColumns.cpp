// SPDX-License-Identifier: Apache-2.0
#include "assets/AssetsColumns.h"

#include <WQ/StringConversion.h>
#include <nvservice/TypeManager.h>

#include <QCoreApplication>

#include <algorithm>

namespace QAV
{

namespace
{

using nvservice::CAssetsRC;

template <auto Member>
int getChoice(const CAssetsRC& limit)
{
    return static_cast<int>(limit.*Member);
}

template <auto Member>
void setChoice(CAssetsRC& limit, int value)
{
    limit.*Member = static_cast<std::decay_t<decltype(limit.*Member)>>(value);
}

template <auto Member, typename Enum>
AssetsChoiceColumn makeColumn(EAssetsColumn column, const char* typeName, std::initializer_list<Enum> values)
{
    AssetsChoiceColumn made{column, typeName, {}, getChoice<Member>, setChoice<Member>};
    for (const Enum value : values) {
        made.values.push_back(static_cast<int>(value));
    }
    return made;
}

} // namespace

QString assetsColumnName(int column)
{
    static const QStringList names{
        QCoreApplication::translate("QAV", "启用"),     QCoreApplication::translate("QAV", "监控范围"),
        QCoreApplication::translate("QAV", "资产类别"), QCoreApplication::translate("QAV", "证券分类"),
        QCoreApplication::translate("QAV", "监控指标"), QCoreApplication::translate("QAV", "比较基准"),
        QCoreApplication::translate("QAV", "比较"),     QCoreApplication::translate("QAV", "阈值"),
        QCoreApplication::translate("QAV", "单位"),     QCoreApplication::translate("QAV", "触发动作"),
        QCoreApplication::translate("QAV", "备注"),     QCoreApplication::translate("QAV", "操作")};
    return names.value(column);
}

const std::vector<AssetsChoiceColumn>& assetsChoiceColumns()
{
    using namespace nvservice;
    static const std::vector<AssetsChoiceColumn> columns = {
        makeColumn<&CAssetsRC::scope>(AssetsScopeColumn, "nvservice::EZVRCScopeType",
                                      {EZVRCScopeType::Account, EZVRCScopeType::AccountGroup, EZVRCScopeType::Product}),
        makeColumn<&CAssetsRC::assetClass>(AssetsClassColumn, "nvservice::EZVRCAssetClass",
                                           {EZVRCAssetClass::All, EZVRCAssetClass::Stock, EZVRCAssetClass::Bond,
                                            EZVRCAssetClass::Fund, EZVRCAssetClass::Repo, EZVRCAssetClass::Future,
                                            EZVRCAssetClass::Option, EZVRCAssetClass::Cash,
                                            EZVRCAssetClass::ByCategory}),
        makeColumn<&CAssetsRC::measured>(AssetsMeasuredColumn, "nvservice::EZVRCQuantity",
                                         {EZVRCQuantity::MarketValue, EZVRCQuantity::Cost, EZVRCQuantity::Volume,
                                          EZVRCQuantity::Margin, EZVRCQuantity::NetAssets, EZVRCQuantity::TotalAssets,
                                          EZVRCQuantity::FloatingProfit}),
        makeColumn<&CAssetsRC::base>(AssetsBaseColumn, "nvservice::EZVRCQuantity",
                                     {EZVRCQuantity::None, EZVRCQuantity::NetAssets, EZVRCQuantity::TotalAssets,
                                      EZVRCQuantity::MarketValue, EZVRCQuantity::Cost, EZVRCQuantity::Margin,
                                      EZVRCQuantity::ShareCapital}),
        makeColumn<&CAssetsRC::comparison>(AssetsComparisonColumn, "nvservice::EZVRCComparison",
                                           {EZVRCComparison::Greater, EZVRCComparison::GreaterOrEqual,
                                            EZVRCComparison::Less, EZVRCComparison::LessOrEqual}),
        makeColumn<&CAssetsRC::unit>(
            AssetsUnitColumn, "nvservice::EZVRCUnit",
            {EZVRCUnit::Percent, EZVRCUnit::Yuan, EZVRCUnit::TenThousandYuan, EZVRCUnit::Share}),
        makeColumn<&CAssetsRC::action>(AssetsActionColumn, "nvservice::EZVRCAction",
                                       {EZVRCAction::Warn, EZVRCAction::Forbid})};
    return columns;
}

const AssetsChoiceColumn* assetsChoiceColumn(int column)
{
    const auto& columns = assetsChoiceColumns();
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [column](const AssetsChoiceColumn& choice) { return choice.column == column; });
    return found == columns.end() ? nullptr : &*found;
}

QString assetsChoiceName(const AssetsChoiceColumn& column, int value)
{
    return WQ::sToQs(nvservice::TypeManager::getEnumItemName(column.typeName, value, 0));
}

bool isKnownChoice(const AssetsChoiceColumn& column, int value)
{
    return std::find(column.values.begin(), column.values.end(), value) != column.values.end();
}

} // namespace QAV
