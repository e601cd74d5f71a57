// SPDX-License-Identifier: Apache-2.0
#include "assets/AssetsChecks.h"
#include "support/TestProgram.h"

using namespace QAV;
using namespace nvservice;

namespace
{

/// A limit with which nothing is wrong: market value of all stocks above 5 % of the net assets.
CAssetsRC validLimit()
{
    CAssetsRC limit;
    limit.assetClass = EZVRCAssetClass::Stock;
    limit.base = EZVRCQuantity::NetAssets;
    limit.threshold = 5;
    return limit;
}

struct Case {
    const char* name;
    void (*spoil)(CAssetsRC&);
    const char* typed; ///< null: not typed
    int column;
    const char* text;
};

const Case cases[] = {
    {"sound", [](CAssetsRC&) {}, nullptr, AssetsColumnCount, ""},
    {"an amount", [](CAssetsRC& l) { l.base = EZVRCQuantity::None, l.unit = EZVRCUnit::TenThousandYuan; }, "1,000.5",
     AssetsColumnCount, ""},
    {"shares of the capital",
     [](CAssetsRC& l) { l.measured = EZVRCQuantity::Volume, l.base = EZVRCQuantity::ShareCapital; }, "4.99%",
     AssetsColumnCount, ""},
    {"a loss", [](CAssetsRC& l) { l.measured = EZVRCQuantity::FloatingProfit; }, "-5", AssetsColumnCount, ""},
    {"nothing at all", [](CAssetsRC& l) { l.threshold = 0; }, "0", AssetsColumnCount, ""},
    {"quantities of a later version", [](CAssetsRC& l) { l.measured = EZVRCQuantity(77), l.unit = EZVRCUnit::Yuan; },
     nullptr, AssetsColumnCount, ""},
    {"no category", [](CAssetsRC& l) { l.assetClass = EZVRCAssetClass::ByCategory; }, nullptr, AssetsCategoryColumn,
     "请选择证券分类"},
    {"percent of nothing", [](CAssetsRC& l) { l.base = EZVRCQuantity::None; }, nullptr, AssetsBaseColumn,
     "单位为%时，请选择比较基准"},
    {"an amount of a base", [](CAssetsRC& l) { l.unit = EZVRCUnit::Yuan; }, nullptr, AssetsUnitColumn,
     "有比较基准时，单位只能是%"},
    {"everything of itself",
     [](CAssetsRC& l) { l.assetClass = EZVRCAssetClass::All, l.base = EZVRCQuantity::MarketValue; }, nullptr,
     AssetsBaseColumn, "全部资产的比较基准不能与监控指标相同"},
    {"money of shares", [](CAssetsRC& l) { l.base = EZVRCQuantity::ShareCapital; }, nullptr, AssetsBaseColumn,
     "只有数量能与总股本比较"},
    {"shares of money", [](CAssetsRC& l) { l.measured = EZVRCQuantity::Volume; }, nullptr, AssetsBaseColumn,
     "数量只能与总股本比较"},
    {"money in shares", [](CAssetsRC& l) { l.base = EZVRCQuantity::None, l.unit = EZVRCUnit::Share; }, nullptr,
     AssetsUnitColumn, "金额的单位只能是元或万元"},
    {"shares in money",
     [](CAssetsRC& l) { l.measured = EZVRCQuantity::Volume, l.base = EZVRCQuantity::None, l.unit = EZVRCUnit::Yuan; },
     nullptr, AssetsUnitColumn, "数量的单位只能是股"},
    {"no threshold", [](CAssetsRC&) {}, " ", AssetsThresholdColumn, "请输入阈值"},
    {"no number", [](CAssetsRC&) {}, "五", AssetsThresholdColumn, "阈值不是有效的数字"},
    {"no finite number", [](CAssetsRC&) {}, "inf", AssetsThresholdColumn, "阈值不是有效的数字"},
    {"below nothing", [](CAssetsRC&) {}, "-1", AssetsThresholdColumn, "阈值不能小于0，只有浮动盈亏可以为负"},
    {"too many percent", [](CAssetsRC&) {}, "10000.01", AssetsThresholdColumn, "阈值不能超过10000%"},
    {"too much", [](CAssetsRC& l) { l.base = EZVRCQuantity::None, l.unit = EZVRCUnit::Yuan; }, "1e14",
     AssetsThresholdColumn, "阈值过大"},
};

} // namespace

/// What makes sense as a limit.
class AssetsChecksTest : public QObject
{
    Q_OBJECT

private slots:
    void eachProblemIsFoundAtItsCell_data()
    {
        const support::DataRows<int> row("number");
        for (std::size_t i = 0; i < std::size(cases); ++i) {
            row(cases[i].name, int(i));
        }
    }
    void eachProblemIsFoundAtItsCell()
    {
        QFETCH(int, number);
        const Case& test = cases[number];
        CAssetsRC limit = validLimit();
        test.spoil(limit);
        const AssetsProblem problem = assetsProblem(limit, QString::fromUtf8(test.typed), test.typed != nullptr);
        QCOMPARE(problem.text, QString::fromUtf8(test.text));
        QCOMPARE(int(problem.column), test.column);
    }

    void thresholdsAreReadAsPeopleWriteThem_data()
    {
        const support::DataRows<QString, bool, double> row("text", "isNumber", "value");
        row("plain", "12.5", true, 12.5);
        row("thousands", "1,234,567.8", true, 1234567.8);
        row("blanks and percent", " 5 % ", true, 5.0);
        row("full width", "１２．５％", true, 12.5);
        row("negative", "-3", true, -3.0);
        row("exponent", "1e3", true, 1000.0);
        row("empty", "", false, 0.0);
        row("letters", "5x", false, 0.0);
        row("nan", "nan", false, 0.0);
    }
    void thresholdsAreReadAsPeopleWriteThem()
    {
        QFETCH(QString, text);
        QFETCH(bool, isNumber);
        QFETCH(double, value);
        double read = 77;
        QCOMPARE(parseThreshold(text, read), isNumber);
        QCOMPARE(read, isNumber ? value : 77.0);
    }

    void aThresholdIsShownAsTheVeryNumber()
    {
        for (const double threshold : {0.0, 12.5, 0.1, 1.0 / 3, -5.0, 123456789.25, 1e13}) {
            double read = 0;
            QVERIFY(parseThreshold(thresholdText(threshold), read));
            QCOMPARE(read, threshold);
        }
        QCOMPARE(thresholdText(12.5), QString("12.5"));
        QCOMPARE(thresholdText(20000000), QString("20000000"));
    }

    void everyValueHasAName()
    {
        for (const AssetsChoiceColumn& column : assetsChoiceColumns()) {
            for (const int value : column.values) {
                QVERIFY(assetsChoiceName(column, value) != QString::number(value));
            }
            QCOMPARE(assetsChoiceName(column, 4711), QString("4711"));
        }
    }
};

TEST_WITHOUT_WIDGETS(AssetsChecksTest)
#include "tst_assets_checks.moc"
