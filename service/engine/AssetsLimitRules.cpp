// SPDX-License-Identifier: Apache-2.0
#include "service/engine/AssetsLimitRules.h"
#include "service/engine/Objections.h"
#include "service/engine/TextRules.h"

#include <utils/Translation.h>

#include <QCoreApplication>
#include <QString>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <unordered_map>

namespace service
{

namespace
{

using nvservice::CAssetsRC;
using nvservice::EZVRCAssetClass;
using nvservice::EZVRCQuantity;
using nvservice::EZVRCUnit;
using utils::EErrorCode;

using Value = int (*)(const CAssetsRC&);

/// A choice of a limit: its name and its valid values.
struct Choice {
    const char* name;
    Value value;
    std::vector<int> known;
};

template <auto Member>
int valueOf(const CAssetsRC& limit)
{
    return static_cast<int>(limit.*Member);
}

const std::vector<Choice>& choices()
{
    static const std::vector<Choice> all = {
        {QT_TRANSLATE_NOOP("service", "监控范围"), &valueOf<&CAssetsRC::scope>, {0, 1, 2}},
        {QT_TRANSLATE_NOOP("service", "资产类别"), &valueOf<&CAssetsRC::assetClass>, {0, 1, 2, 3, 4, 5, 6, 7, 100}},
        {QT_TRANSLATE_NOOP("service", "监控指标"), &valueOf<&CAssetsRC::measured>, {1, 2, 3, 4, 5, 6, 8}},
        {QT_TRANSLATE_NOOP("service", "比较基准"), &valueOf<&CAssetsRC::base>, {0, 1, 2, 4, 5, 6, 7}},
        {QT_TRANSLATE_NOOP("service", "比较方式"), &valueOf<&CAssetsRC::comparison>, {0, 1, 2, 3}},
        {QT_TRANSLATE_NOOP("service", "单位"), &valueOf<&CAssetsRC::unit>, {0, 1, 2, 3}},
        {QT_TRANSLATE_NOOP("service", "触发动作"), &valueOf<&CAssetsRC::action>, {0, 1}}};
    return all;
}

bool isKnown(const Choice& choice, const CAssetsRC& limit)
{
    return std::find(choice.known.begin(), choice.known.end(), choice.value(limit)) != choice.known.end();
}

bool hasUnknownChoice(const CAssetsRC& limit)
{
    return std::any_of(choices().begin(), choices().end(),
                       [&limit](const Choice& choice) { return !isKnown(choice, limit); });
}

/// Why the quantities cannot be compared in this unit; empty if they can.
std::string quantityProblem(const CAssetsRC& limit)
{
    const bool countsShares = limit.measured == EZVRCQuantity::Volume;
    if (limit.base == limit.measured && limit.assetClass == EZVRCAssetClass::All) {
        return utils::text("service", "全部资产的比较基准不能与监控指标相同");
    }
    if (limit.base != EZVRCQuantity::None) {
        if (countsShares != (limit.base == EZVRCQuantity::ShareCapital)) {
            return countsShares ? utils::text("service", "数量只能与总股本比较")
                                : utils::text("service", "只有数量能与总股本比较");
        }
        return limit.unit == EZVRCUnit::Percent ? std::string() : utils::text("service", "有比较基准时，单位只能是%");
    }
    if (limit.unit == EZVRCUnit::Percent) {
        return utils::text("service", "单位为%时，请选择比较基准");
    }
    if (countsShares != (limit.unit == EZVRCUnit::Share)) {
        return countsShares ? utils::text("service", "数量的单位只能是股")
                            : utils::text("service", "金额的单位只能是元或万元");
    }
    return {};
}

std::string thresholdProblem(const CAssetsRC& limit)
{
    if (!std::isfinite(limit.threshold)) {
        return utils::text("service", "阈值不是有效的数字");
    }
    if (limit.threshold < 0 && limit.measured != EZVRCQuantity::FloatingProfit) {
        return utils::text("service", "阈值不能小于0，只有浮动盈亏可以为负");
    }
    const bool isPercent = limit.unit == EZVRCUnit::Percent;
    if (std::abs(limit.threshold) > (isPercent ? MaxThresholdPercent : MaxThresholdAmount)) {
        return isPercent ? utils::text("service", "阈值不能超过10000%") : utils::text("service", "阈值过大");
    }
    return {};
}

std::string remarkProblem(const CAssetsRC& limit)
{
    const QString remark = QString::fromStdString(limit.remark);
    if (remark.size() > MaxRemarkLength) {
        return utils::filled(utils::text("service", "备注不能超过%1个字符"), MaxRemarkLength);
    }
    if (std::any_of(remark.begin(), remark.end(), [](QChar c) { return c.category() == QChar::Other_Control; })) {
        return utils::text("service", "备注含有控制字符");
    }
    return {};
}

/// `before` is the limit as it is stored, null for a new one.
void requireValidLimit(const CAssetsRC& limit, const CAssetsRC* before, CategoryRules& categories,
                       const std::string& place)
{
    const auto refuse = [&place](const std::string& why) {
        throw Refusal(EErrorCode::InvalidValue, utils::filled(utils::text("service", "%1：%2"), place, why));
    };
    for (const Choice& choice : choices()) {
        const bool isKept = before && choice.value(*before) == choice.value(limit);
        if (!isKnown(choice, limit) && !isKept) {
            refuse(utils::filled(utils::text("service", "%1（%2）无效"), utils::text("service", choice.name),
                                 choice.value(limit)));
        }
    }
    if (limit.assetClass == EZVRCAssetClass::ByCategory) {
        if (limit.categoryId == -1) {
            refuse(utils::text("service", "请选择证券分类"));
        }
        const bool isKept = before && before->categoryId == limit.categoryId;
        if (!isKept) {
            categories.require(limit.categoryId, place);
        }
    }
    // Values of a later version cannot be checked here.
    if (!hasUnknownChoice(limit)) {
        const std::string quantity = quantityProblem(limit);
        if (!quantity.empty()) {
            refuse(quantity);
        }
    }
    for (const std::string& problem : {thresholdProblem(limit), remarkProblem(limit)}) {
        if (!problem.empty()) {
            refuse(problem);
        }
    }
}

} // namespace

void requireValidAssetsLimits(const std::vector<CAssetsRC>& sent, const std::vector<CAssetsRC>& stored,
                              CategoryRules& categories)
{
    std::unordered_map<std::int64_t, const CAssetsRC*> byId;
    for (const CAssetsRC& limit : stored) {
        byId.emplace(limit.ruleId, &limit);
    }
    for (std::size_t i = 0; i < sent.size(); ++i) {
        const auto before = byId.find(sent[i].ruleId);
        require(categories.context(), [&] {
            requireValidLimit(sent[i], before == byId.end() ? nullptr : before->second, categories,
                              utils::filled(utils::text("service", "资产组合风控第%1条"), i + 1));
        });
    }
}

} // namespace service
