// SPDX-License-Identifier: Apache-2.0
#include "assets/AssetsChecks.h"

#include <QCoreApplication>
#include <QLocale>

#include <cmath>

namespace QAV
{

namespace
{

using nvservice::EZVRCQuantity;
using nvservice::EZVRCUnit;

/// Larger thresholds are typing errors.
constexpr double MaxPercent = 10000;
constexpr double MaxAmount = 1e13;

bool isKnown(EAssetsColumn column, const nvservice::CAssetsRC& limit)
{
    const AssetsChoiceColumn& choice = *assetsChoiceColumn(column);
    return isKnownChoice(choice, choice.get(limit));
}

AssetsProblem quantityProblem(const nvservice::CAssetsRC& limit)
{
    // Only a later version knows what makes sense for its own values.
    if (!isKnown(AssetsMeasuredColumn, limit) || !isKnown(AssetsBaseColumn, limit) ||
        !isKnown(AssetsUnitColumn, limit)) {
        return {};
    }
    const bool countsShares = limit.measured == EZVRCQuantity::Volume;
    if (limit.base == limit.measured && limit.assetClass == nvservice::EZVRCAssetClass::All) {
        return {AssetsBaseColumn, QCoreApplication::translate("QAV", "全部资产的比较基准不能与监控指标相同")};
    }
    if (limit.base != EZVRCQuantity::None) {
        if (countsShares != (limit.base == EZVRCQuantity::ShareCapital)) {
            return {AssetsBaseColumn, countsShares ? QCoreApplication::translate("QAV", "数量只能与总股本比较")
                                                   : QCoreApplication::translate("QAV", "只有数量能与总股本比较")};
        }
        if (limit.unit != EZVRCUnit::Percent) {
            return {AssetsUnitColumn, QCoreApplication::translate("QAV", "有比较基准时，单位只能是%")};
        }
        return {};
    }
    if (limit.unit == EZVRCUnit::Percent) {
        return {AssetsBaseColumn, QCoreApplication::translate("QAV", "单位为%时，请选择比较基准")};
    }
    if (countsShares != (limit.unit == EZVRCUnit::Share)) {
        return {AssetsUnitColumn, countsShares ? QCoreApplication::translate("QAV", "数量的单位只能是股")
                                               : QCoreApplication::translate("QAV", "金额的单位只能是元或万元")};
    }
    return {};
}

} // namespace

QString thresholdText(double threshold)
{
    // No exponent unless the number would be unreadable.
    const double size = std::abs(threshold);
    const bool isPlain = size == 0 || (size >= 1e-6 && size < 1e16);
    return QLocale::c().toString(threshold, isPlain ? 'f' : 'g', QLocale::FloatingPointShortest);
}

bool parseThreshold(const QString& text, double& threshold)
{
    QString plain = text.normalized(QString::NormalizationForm_KC).simplified();
    if (plain.endsWith(QLatin1Char('%'))) {
        plain.chop(1);
    }
    plain.remove(QLatin1Char(',')).remove(QLatin1Char(' '));
    bool isNumber = false;
    const double value = QLocale::c().toDouble(plain, &isNumber);
    if (!isNumber || !std::isfinite(value)) {
        return false;
    }
    threshold = value;
    return true;
}

AssetsProblem assetsProblem(const nvservice::CAssetsRC& limit, const QString& text, bool typed)
{
    if (limit.assetClass == nvservice::EZVRCAssetClass::ByCategory && limit.categoryId == -1) {
        return {AssetsCategoryColumn, QCoreApplication::translate("QAV", "请选择证券分类")};
    }
    const AssetsProblem quantity = quantityProblem(limit);
    if (!quantity.text.isEmpty()) {
        return quantity;
    }

    double threshold = limit.threshold;
    if (typed) {
        if (text.trimmed().isEmpty()) {
            return {AssetsThresholdColumn, QCoreApplication::translate("QAV", "请输入阈值")};
        }
        if (!parseThreshold(text, threshold)) {
            return {AssetsThresholdColumn, QCoreApplication::translate("QAV", "阈值不是有效的数字")};
        }
    }
    const bool percent = limit.unit == EZVRCUnit::Percent;
    const double most = percent ? MaxPercent : MaxAmount;
    if (threshold < 0 && limit.measured != EZVRCQuantity::FloatingProfit) {
        return {AssetsThresholdColumn, QCoreApplication::translate("QAV", "阈值不能小于0，只有浮动盈亏可以为负")};
    }
    if (!(std::abs(threshold) <= most)) {
        return {AssetsThresholdColumn, percent ? QCoreApplication::translate("QAV", "阈值不能超过10000%")
                                               : QCoreApplication::translate("QAV", "阈值过大")};
    }
    return {};
}

} // namespace QAV
