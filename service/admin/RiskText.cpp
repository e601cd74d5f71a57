// SPDX-License-Identifier: Apache-2.0
#include "service/admin/RiskText.h"
#include "service/admin/Table.h"
#include "service/engine/TradeLimitRules.h"

#include <nvservice/TypeManager.h>

#include <QCoreApplication>
#include <QStringList>

namespace service
{

using namespace nvservice;

namespace
{

template <typename Enum>
QString nameOf(const char* type, Enum value, EZvTraderType traderType = EZvTraderType::None)
{
    const std::string name = TypeManager::getEnumItemName(std::string("nvservice::") + type, static_cast<int>(value),
                                                          static_cast<int>(traderType));
    return QString::fromStdString(name);
}

QString categoriesOf(const std::vector<std::int32_t>& ids)
{
    QStringList texts;
    for (const std::int32_t id : ids) {
        texts << QString::number(id);
    }
    return texts.isEmpty() ? QCoreApplication::translate("service", "无")
                           : texts.join(QCoreApplication::translate("service", "、"));
}

QString lineOf(const CTradeLimitList& list)
{
    QString text =
        QCoreApplication::translate("service", "%1黑白名单（%2条）\n")
            .arg(QString::fromStdString(nameOfTraderType(list.traderType)), QString::number(list.entries.size()));
    for (const CTradeLimitEntry& entry : list.entries) {
        text += QStringLiteral("  %1 %2 %3 %4\n")
                    .arg(nameOf("EZVRCListKind", entry.listKind), shown(entry.securityCode), shown(entry.securityName),
                         nameOf("EZVRCDirection", entry.direction, list.traderType));
    }
    return text;
}

QString lineOf(const CAssetsRC& limit)
{
    QString subject = nameOf("EZVRCAssetClass", limit.assetClass);
    if (limit.assetClass == EZVRCAssetClass::ByCategory) {
        subject += QCoreApplication::translate("service", "（编号%1）").arg(limit.categoryId);
    }
    QString measured = nameOf("EZVRCQuantity", limit.measured);
    if (limit.base != EZVRCQuantity::None) {
        measured += '/' + nameOf("EZVRCQuantity", limit.base);
    }
    return QCoreApplication::translate("service", "  %1 %2 %3 %4 %5%6：%7%8%9\n")
        .arg(QString::number(limit.ruleId), subject, measured, nameOf("EZVRCComparison", limit.comparison),
             QString::number(limit.threshold, 'g', 15), nameOf("EZVRCUnit", limit.unit),
             nameOf("EZVRCAction", limit.action),
             limit.enabled ? QString() : QCoreApplication::translate("service", "（停用）"),
             limit.remark.empty() ? QString()
                                  : QCoreApplication::translate("service", "，%1").arg(shown(limit.remark)));
}

QString lineOf(const CRatProofSetting& setting)
{
    const auto flag = [](bool isOn) { return shown(isOn); };
    return QCoreApplication::translate(
               "service", "反向单交易检查 %1，仅警告 %2，不计已撤单 %3，豁免分类 %4\n对敲交易禁止 %5，豁免分类 %6\n")
        .arg(flag(setting.reverseOrderCheck), flag(setting.reverseOrderWarnOnly), flag(setting.notCountCancelledOrders),
             categoriesOf(setting.reverseOrderExemptCategoryIds), flag(setting.washTradeForbidden),
             categoriesOf(setting.washTradeExemptCategoryIds));
}

QString lineOf(const CEmailRC& rule)
{
    QStringList recipients;
    for (const std::string& recipient : rule.recipients) {
        recipients << shown(recipient);
    }
    return QCoreApplication::translate("service", "  %1%2：%3 %4\n")
        .arg(shown(rule.ruleKey), rule.enabled ? QString() : QCoreApplication::translate("service", "（停用）"),
             recipients.join(QCoreApplication::translate("service", "、")), shown(rule.subject));
}

} // namespace

QString configText(const CAccountGroupRCConfig& config)
{
    QString text;
    for (const CTradeLimitList& list : config.rcRule.lists) {
        text += lineOf(list);
    }
    if (!config.assetsRCs.empty()) {
        text += QCoreApplication::translate("service", "资产组合风控（%1条）\n").arg(config.assetsRCs.size());
    }
    for (const CAssetsRC& limit : config.assetsRCs) {
        text += lineOf(limit);
    }
    text += lineOf(config.ratProofSetting);
    if (!config.emailRCs.empty()) {
        text += QCoreApplication::translate("service", "邮件规则（%1条）\n").arg(config.emailRCs.size());
    }
    for (const CEmailRC& rule : config.emailRCs) {
        text += lineOf(rule);
    }
    return text;
}

} // namespace service
