// SPDX-License-Identifier: Apache-2.0
#include "history/RecordText.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/DataType.h>
#include <nvservice/TypeManager.h>

#include <QDateTime>
#include <QStringList>

namespace QAV
{

namespace
{

using nvservice::CAccountGroup;
using nvservice::CAccountGroupRCConfig;
using nvservice::EZvTraderType;

template <typename Enum>
QString nameOf(const char* type, Enum value, EZvTraderType traderType = EZvTraderType::None)
{
    return WQ::sToQs(nvservice::TypeManager::getEnumItemName(std::string("nvservice::") + type, static_cast<int>(value),
                                                             static_cast<int>(traderType)));
}

QString switchText(bool isOn)
{
    return isOn ? QStringLiteral("开") : QStringLiteral("关");
}

QString disabledText(bool isEnabled)
{
    return isEnabled ? QString() : QStringLiteral("（停用）");
}

QString accountText(const boost::shared_ptr<nvservice::CAccountInfo>& account)
{
    if (!account) {
        return {};
    }
    QStringList parts{nameOf("EZVBrokerType", account->brokerType), WQ::sToQs(nvservice::accountDisplayID(account)),
                      WQ::sToQs(account->accountName)};
    parts.removeAll(QString());
    return parts.join(QLatin1Char(' '));
}

QString entryText(const nvservice::CTradeLimitEntry& entry, EZvTraderType traderType)
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(nameOf("EZVRCListKind", entry.listKind), WQ::sToQs(entry.securityCode), WQ::sToQs(entry.securityName),
             nameOf("EZVRCDirection", entry.direction, traderType));
}

QString categoryText(std::int32_t id, const CategoryNames& categories)
{
    const auto known = categories.find(id);
    return known == categories.end() ? QStringLiteral("分类%1").arg(id) : known->second;
}

QString limitText(const nvservice::CAssetsRC& limit, const CategoryNames& categories)
{
    const QString subject = limit.assetClass == nvservice::EZVRCAssetClass::ByCategory
                                ? categoryText(limit.categoryId, categories)
                                : nameOf("EZVRCAssetClass", limit.assetClass);
    QString measured = nameOf("EZVRCQuantity", limit.measured);
    if (limit.base != nvservice::EZVRCQuantity::None) {
        measured += QLatin1Char('/') + nameOf("EZVRCQuantity", limit.base);
    }
    const QString remark = limit.remark.empty() ? QString() : QStringLiteral("，%1").arg(WQ::sToQs(limit.remark));
    return QStringLiteral("%1 %2 %3 %4%5：%6%7%8")
        .arg(subject, measured, nameOf("EZVRCComparison", limit.comparison), QString::number(limit.threshold, 'g', 15),
             nameOf("EZVRCUnit", limit.unit), nameOf("EZVRCAction", limit.action), disabledText(limit.enabled), remark);
}

QString ruleText(const nvservice::CEmailRC& rule)
{
    QStringList recipients;
    for (const std::string& recipient : rule.recipients) {
        recipients << WQ::sToQs(recipient);
    }
    return QStringLiteral("%1%2：%3 %4")
        .arg(WQ::sToQs(rule.ruleKey), disabledText(rule.enabled), recipients.join(QStringLiteral("、")),
             WQ::sToQs(rule.subject));
}

/// The text of the item in a row; empty if there is none.
template <typename Items, typename Text>
QString itemText(const Items& items, int row, Text text)
{
    return row < 0 || row >= static_cast<int>(items.size()) ? QString() : text(items[static_cast<std::size_t>(row)]);
}

QString groupText(const DiffLine& line, const CAccountGroup& group, int row)
{
    switch (line.area) {
    case EArea::GroupName:
        return WQ::sToQs(group.groupName);
    case EArea::Institution:
        return group.institutionName.empty() ? QStringLiteral("主经纪商") : WQ::sToQs(group.institutionName);
    case EArea::Accounts:
        return itemText(group.accounts, row, accountText);
    default:
        return QStringLiteral("见原始记录");
    }
}

QString configText(const DiffLine& line, const CAccountGroupRCConfig& config, int row, const CategoryNames& categories)
{
    const nvservice::CRatProofSetting& setting = config.ratProofSetting;
    const auto category = [&](std::int32_t id) { return categoryText(id, categories); };
    switch (line.area) {
    case EArea::TradeLimits: {
        const nvservice::CTradeLimitList* const list = config.rcRule.findList(line.traderType);
        return list ? itemText(list->entries, row, [&](const auto& entry) { return entryText(entry, line.traderType); })
                    : QString();
    }
    case EArea::AssetLimits:
        return itemText(config.assetsRCs, row, [&](const auto& limit) { return limitText(limit, categories); });
    case EArea::ReverseOrderCheck:
        return switchText(setting.reverseOrderCheck);
    case EArea::ReverseOrderWarnOnly:
        return switchText(setting.reverseOrderWarnOnly);
    case EArea::NotCountCancelledOrders:
        return switchText(setting.notCountCancelledOrders);
    case EArea::ReverseOrderCategories:
        return itemText(setting.reverseOrderExemptCategoryIds, row, category);
    case EArea::WashTradeForbidden:
        return switchText(setting.washTradeForbidden);
    case EArea::WashTradeCategories:
        return itemText(setting.washTradeExemptCategoryIds, row, category);
    case EArea::EmailRules:
        return itemText(config.emailRCs, row, ruleText);
    default:
        return QStringLiteral("见原始记录");
    }
}

} // namespace

QString areaText(const DiffLine& line)
{
    switch (line.area) {
    case EArea::GroupName:
        return QStringLiteral("账号组名");
    case EArea::Institution:
        return QStringLiteral("所属机构");
    case EArea::Accounts:
        return QStringLiteral("账号");
    case EArea::TradeLimits:
        return QStringLiteral("黑白名单（%1）").arg(nameOf("EZvTraderType", line.traderType));
    case EArea::AssetLimits:
        return QStringLiteral("资产组合风控");
    case EArea::ReverseOrderCheck:
        return QStringLiteral("反向单交易检查");
    case EArea::ReverseOrderWarnOnly:
        return QStringLiteral("反向单只警告不禁止");
    case EArea::NotCountCancelledOrders:
        return QStringLiteral("不统计已撤委托");
    case EArea::ReverseOrderCategories:
        return QStringLiteral("反向单豁免分类");
    case EArea::WashTradeForbidden:
        return QStringLiteral("禁止对敲交易");
    case EArea::WashTradeCategories:
        return QStringLiteral("对敲豁免分类");
    case EArea::EmailRules:
        return QStringLiteral("邮件规则");
    case EArea::Other:
        return QStringLiteral("其他内容");
    }
    return {};
}

QString changeText(EChange change)
{
    switch (change) {
    case EChange::Unchanged:
        return QStringLiteral("未变");
    case EChange::Added:
        return QStringLiteral("新增");
    case EChange::Removed:
        return QStringLiteral("移除");
    case EChange::Changed:
        return QStringLiteral("修改");
    case EChange::Moved:
        return QStringLiteral("移动");
    }
    return {};
}

QColor changeColour(EChange change)
{
    const QLatin1String key = change == EChange::Added       ? WQ::key::Link
                              : change == EChange::Removed   ? WQ::key::Warning
                              : change == EChange::Unchanged ? WQ::key::TextWeak
                                                             : WQ::key::Text;
    return WQ::CUiResourceManager::instance()->colour(key);
}

QString valueText(const DiffLine& line, const nvservice::IData* record, int row, const CategoryNames& categories)
{
    if (const auto* const group = dynamic_cast<const CAccountGroup*>(record)) {
        return groupText(line, *group, row);
    }
    if (const auto* const config = dynamic_cast<const CAccountGroupRCConfig*>(record)) {
        return configText(line, *config, row, categories);
    }
    return {};
}

QString timeText(std::int64_t at)
{
    return QDateTime::fromMSecsSinceEpoch(at).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QString userText(const std::string& userId, const std::string& userName)
{
    const QString id = WQ::sToQs(userId);
    return userName.empty() ? id : QStringLiteral("%1（%2）").arg(WQ::sToQs(userName), id);
}

QString operationText(nvservice::EZvDataOperation operation)
{
    return nameOf("EZvDataOperation", operation);
}

QString dataTypeText(std::int32_t dataType)
{
    switch (dataType) {
    case 0:
        return QStringLiteral("系统管理");
    case nvservice::DataType::AccountGroup:
        return QStringLiteral("账号组");
    case nvservice::DataType::GroupRiskConfig:
        return QStringLiteral("风控配置");
    case nvservice::DataType::EmailRule:
        return QStringLiteral("邮件规则");
    case nvservice::DataType::GroupRestore:
        return QStringLiteral("账号组恢复");
    case nvservice::DataType::Category:
        return QStringLiteral("证券分类");
    case nvservice::DataType::Account:
        return QStringLiteral("账号");
    case nvservice::DataType::Product:
        return QStringLiteral("产品");
    case nvservice::DataType::Security:
        return QStringLiteral("证券");
    case nvservice::DataType::Institution:
        return QStringLiteral("机构");
    default:
        return QString::number(dataType);
    }
}

} // namespace QAV
