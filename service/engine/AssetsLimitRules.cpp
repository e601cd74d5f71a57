// SPDX-License-Identifier: Apache-2.0
#include "service/engine/AssetsLimitRules.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"

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
        {"监控范围", &valueOf<&CAssetsRC::scope>, {0, 1, 2}},
        {"资产类别", &valueOf<&CAssetsRC::assetClass>, {0, 1, 2, 3, 4, 5, 6, 7, 100}},
        {"监控指标", &valueOf<&CAssetsRC::measured>, {1, 2, 3, 4, 5, 6, 8}},
        {"比较基准", &valueOf<&CAssetsRC::base>, {0, 1, 2, 4, 5, 6, 7}},
        {"比较方式", &valueOf<&CAssetsRC::comparison>, {0, 1, 2, 3}},
        {"单位", &valueOf<&CAssetsRC::unit>, {0, 1, 2, 3}},
        {"触发动作", &valueOf<&CAssetsRC::action>, {0, 1}}};
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
        return "全部资产的比较基准不能与监控指标相同";
    }
    if (limit.base != EZVRCQuantity::None) {
        if (countsShares != (limit.base == EZVRCQuantity::ShareCapital)) {
            return countsShares ? "数量只能与总股本比较" : "只有数量能与总股本比较";
        }
        return limit.unit == EZVRCUnit::Percent ? "" : "有比较基准时，单位只能是%";
    }
    if (limit.unit == EZVRCUnit::Percent) {
        return "单位为%时，请选择比较基准";
    }
    if (countsShares != (limit.unit == EZVRCUnit::Share)) {
        return countsShares ? "数量的单位只能是股" : "金额的单位只能是元或万元";
    }
    return {};
}

std::string thresholdProblem(const CAssetsRC& limit)
{
    if (!std::isfinite(limit.threshold)) {
        return "阈值不是有效的数字";
    }
    if (limit.threshold < 0 && limit.measured != EZVRCQuantity::FloatingProfit) {
        return "阈值不能小于0，只有浮动盈亏可以为负";
    }
    const bool isPercent = limit.unit == EZVRCUnit::Percent;
    if (std::abs(limit.threshold) > (isPercent ? MaxThresholdPercent : MaxThresholdAmount)) {
        return isPercent ? "阈值不能超过10000%" : "阈值过大";
    }
    return {};
}

std::string remarkProblem(const CAssetsRC& limit)
{
    const QString remark = QString::fromStdString(limit.remark);
    if (remark.size() > MaxRemarkLength) {
        return "备注不能超过" + std::to_string(MaxRemarkLength) + "个字符";
    }
    if (std::any_of(remark.begin(), remark.end(), [](QChar c) { return c.category() == QChar::Other_Control; })) {
        return "备注含有控制字符";
    }
    return {};
}

/// `before` is the limit as it is stored, null for a new one.
void requireValidLimit(const CAssetsRC& limit, const CAssetsRC* before, CategoryRules& categories,
                       const std::string& place)
{
    const auto refuse = [&place](const std::string& why) {
        throw Refusal(EErrorCode::InvalidValue, place + "：" + why);
    };
    for (const Choice& choice : choices()) {
        const bool isKept = before && choice.value(*before) == choice.value(limit);
        if (!isKnown(choice, limit) && !isKept) {
            refuse(choice.name + std::string("（") + std::to_string(choice.value(limit)) + "）无效");
        }
    }
    if (limit.assetClass == EZVRCAssetClass::ByCategory) {
        if (limit.categoryId == -1) {
            refuse("请选择证券分类");
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
        requireValidLimit(sent[i], before == byId.end() ? nullptr : before->second, categories,
                          "资产组合风控第" + std::to_string(i + 1) + "条");
    }
}

} // namespace service
