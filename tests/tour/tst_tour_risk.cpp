// SPDX-License-Identifier: Apache-2.0
#include "Hands.h"
#include "OtherDesk.h"
#include "RiskSettings.h"
#include "TourTest.h"

#include <WQ/CMessageTip.h>
#include <WQ/StringConversion.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>

using namespace tour;
using nvservice::EZvTraderType;

namespace
{

const QString Lists = QStringLiteral("黑白名单");
const QString Limits = QStringLiteral("资产组合风控");
const QString ReverseOrder = QStringLiteral("反向单交易设置");
/// A group of the sample data that nobody has configured yet, and one with settings of every kind.
constexpr int PlainGroup = 1;
constexpr int ConfiguredGroup = 2;

/// What is stored of a trade type, as the dialog shows it: "code name list".
QStringList storedEntries(const nvservice::CAccountGroupRCConfig& config, EZvTraderType type)
{
    QStringList lines;
    const nvservice::CTradeLimitList* const list = config.rcRule.findList(type);
    for (std::size_t i = 0; list && i < list->entries.size(); ++i) {
        const nvservice::CTradeLimitEntry& entry = list->entries[i];
        lines << QString("%1 %2 %3")
                     .arg(WQ::sToQs(entry.securityCode), WQ::sToQs(entry.securityName),
                          entry.listKind == nvservice::EZVRCListKind::Black ? "黑名单" : "白名单");
    }
    return lines;
}

} // namespace

/// The risk settings of groups are changed, saved and found again. The steps build on each other, in the order in which
/// they are declared.
class TourRiskTest : public TourTest
{
    Q_OBJECT

private slots:
    void initTestCase() { startAsAdmin("4-risk"); }

    void theFourTabsShowWhatIsStored()
    {
        const nvservice::CAccountGroupRCConfig config = stored(ConfiguredGroup);
        open(ConfiguredGroup, [&](const RiskSettings& settings) {
            QCOMPARE(settings.tabs(), QStringList({Lists, Limits, ReverseOrder, WashTrade}));
            QCOMPARE(settings.tradeTypes(), QStringList({"期货账号", "证券账号", "全国股转账号", "沪港通账号",
                                                         "深港通账号", "期货期权账号", "股票期权账号", "银行间账号"}));
            m_client->pictures("lists-futures");
            QStringList stocks;
            for (const QString& entry : settings.entries("证券账号")) {
                stocks << entry.section(' ', 0, 2);
            }
            QCOMPARE(stocks, storedEntries(config, EZvTraderType::Stock));
            QVERIFY(!stocks.isEmpty());
            m_client->pictures("lists-stocks");
            QCOMPARE(settings.entries("期货账号"), storedEntries(config, EZvTraderType::Future));
            QCOMPARE(settings.entries("全国股转账号"), storedEntries(config, EZvTraderType::Neeq));
            QCOMPARE(settings.entries("银行间账号"), storedEntries(config, EZvTraderType::Interbank));

            QCOMPARE(settings.limits().rowCount(), int(config.assetsRCs.size()));
            QVERIFY(settings.limits().rowCount() > 0);
            for (std::size_t i = 0; i < config.assetsRCs.size(); ++i) {
                QCOMPARE(settings.limit(int(i)).section('|', -1), WQ::sToQs(config.assetsRCs[i].remark));
            }
            m_client->pictures("limits");

            const nvservice::CRatProofSetting& setting = config.ratProofSetting;
            QCOMPARE(settings.exempt(ReverseOrder), categories(setting.reverseOrderExemptCategoryIds));
            QCOMPARE(settings.check(ReverseOrder, "账号组反向单交易检查").isChecked(), setting.reverseOrderCheck);
            QCOMPARE(settings.check(ReverseOrder, " 反向单交易只警告不禁止 ").isChecked(),
                     setting.reverseOrderWarnOnly);
            QCOMPARE(settings.check(ReverseOrder, " 不统计已撤 (无成交) 委托 ").isChecked(),
                     setting.notCountCancelledOrders);
            m_client->pictures("reverse-order");
            QCOMPARE(settings.exempt(WashTrade), categories(setting.washTradeExemptCategoryIds));
            QCOMPARE(settings.check(WashTrade, "账号组禁止对敲交易").isChecked(), setting.washTradeForbidden);
            m_client->pictures("wash-trade");
            settings.close();
        });
    }

    void everyTradeTypeGetsBlackAndWhiteLists()
    {
        QVERIFY(stored(PlainGroup).rcRule.lists.empty());
        open(PlainGroup, [&](const RiskSettings& settings) {
            settings.addEntry("期货账号", "mh", "CF2603", "黑名单");
            settings.addEntry("期货账号", "CF2604", "CF2604", "白名单");
            settings.addEntry("期货账号", "CF2605", "CF2605", "黑名单");
            settings.removeEntry("期货账号", "CF2605");
            QCOMPARE(settings.entries("期货账号"), QStringList({"CF2603 棉花2603 黑名单", "CF2604 棉花2604 白名单"}));
            settings.addEntry("证券账号", "栖梧股份", "510001", "黑名单");
            settings.addEntry("全国股转账号", "830000", "830000", "黑名单");
            settings.addEntry("沪港通账号", "00001", "00001", "白名单");
            settings.addEntry("深港通账号", "00002", "00002", "黑名单");
            settings.addEntry("期货期权账号", "CF2603C", "CF2603C4000", "黑名单");
            settings.addEntry("股票期权账号", "10006001", "10006001", "黑名单");
            settings.addEntry("银行间账号", "240001", "240001", "白名单");
            m_client->picture("lists-interbank");
            // Nothing is stored before the user saves.
            QVERIFY(stored(PlainGroup).rcRule.lists.empty());
            saveSuccessfully(settings, PlainGroup);
            settings.close();
        });
        const nvservice::CAccountGroupRCConfig config = stored(PlainGroup);
        QCOMPARE(storedEntries(config, EZvTraderType::Future),
                 QStringList({"CF2603 棉花2603 黑名单", "CF2604 棉花2604 白名单"}));
        const std::map<EZvTraderType, QString> begins = {{EZvTraderType::Stock, "510001 栖梧股份 黑名单"},
                                                         {EZvTraderType::Neeq, "830000 "},
                                                         {EZvTraderType::ShanghaiHongKong, "00001 "},
                                                         {EZvTraderType::ShenzhenHongKong, "00002 "},
                                                         {EZvTraderType::FutureOption, "CF2603C4000 "},
                                                         {EZvTraderType::StockOption, "10006001 "},
                                                         {EZvTraderType::Interbank, "240001 "}};
        for (const auto& [type, begin] : begins) {
            const QStringList entries = storedEntries(config, type);
            QCOMPARE(entries.size(), 1);
            QVERIFY2(entries[0].startsWith(begin), qPrintable(entries[0]));
        }
        QCOMPARE(database().riskConfigState(Shanghai, PlainGroup), QString("2|admin"));
    }

    void aSecurityOnBothListsIsRefusedWhereItIsEntered()
    {
        open(PlainGroup, [&](const RiskSettings& settings) {
            const QStringList before = settings.entries("期货账号");
            settings.addEntry("期货账号", "CF2603", "CF2603", "白名单");
            const QWidget& edit = *settings.tradeType("期货账号").findChild<QLineEdit*>("security");
            const WQ::CMessageTip* const tip = WQ::CMessageTip::tipOf(&edit);
            QVERIFY(tip);
            QVERIFY2(tip->text().contains("CF2603") && tip->text().contains("黑名单"), qPrintable(tip->text()));
            QTRY_COMPARE(tip->opacity(), 1.0);
            m_client->pictures("security-on-both-lists");
            QCOMPARE(settings.entries("期货账号"), before);
            settings.close();
        });
    }

    void aLimitThatMakesNoSenseIsShownAndNotSaved()
    {
        open(PlainGroup, [&](const RiskSettings& settings) {
            const int row = settings.addLimit();
            settings.chooseInLimit(row, LimitClass, "股票");
            settings.typeIntoLimit(row, LimitRemark, "股票仓位");
            settings.page(Lists);
            settings.save();
            // The user is taken to the cell.
            const auto tipAt = [&](LimitColumn column) {
                const WQ::CMessageTip* const tip = WQ::CMessageTip::tipOf(&settings.limitCell(row, column));
                return tip ? tip->text() : QString();
            };
            QCOMPARE(tipAt(LimitThreshold), QString("请输入阈值"));
            QTRY_COMPARE(WQ::CMessageTip::tipOf(&settings.limitCell(row, LimitThreshold))->opacity(), 1.0);
            m_client->pictures("limit-without-threshold");
            settings.typeIntoLimit(row, LimitThreshold, "-3");
            settings.save();
            QCOMPARE(tipAt(LimitThreshold), QString("阈值不能小于0，只有浮动盈亏可以为负"));
            settings.typeIntoLimit(row, LimitThreshold, "80");
            settings.chooseInLimit(row, LimitUnit, "万元");
            settings.save();
            QCOMPARE(tipAt(LimitUnit), QString("有比较基准时，单位只能是%"));
            QVERIFY(stored(PlainGroup).assetsRCs.empty());
            settings.chooseInLimit(row, LimitUnit, "%");
            settings.chooseInLimit(row, LimitAction, "禁止");

            const int second = settings.addLimit();
            settings.chooseInLimit(second, LimitClass, "证券分类");
            settings.typeIntoLimit(second, LimitThreshold, "10");
            settings.save();
            QCOMPARE(WQ::CMessageTip::tipOf(&settings.limitCell(second, LimitCategory))->text(),
                     QString("请选择证券分类"));
            settings.lookUpInLimit(second, LimitCategory, "mrhl", "A股 / 美容护理");
            QCOMPARE(qobject_cast<QLineEdit*>(&settings.limitCell(second, LimitCategory))->text(),
                     QString("A股 / 美容护理"));
            m_client->pictures("limits-filled-in");
            saveSuccessfully(settings, PlainGroup);
            settings.close();
        });
        const std::vector<nvservice::CAssetsRC> limits = stored(PlainGroup).assetsRCs;
        QCOMPARE(limits.size(), std::size_t(2));
        QCOMPARE(limits[0].assetClass, nvservice::EZVRCAssetClass::Stock);
        QCOMPARE(limits[0].threshold, 80.0);
        QCOMPARE(limits[0].action, nvservice::EZVRCAction::Forbid);
        QCOMPARE(limits[0].remark, std::string("股票仓位"));
        QCOMPARE(categories({limits[1].categoryId}), QStringList("美容护理"));
        QVERIFY(limits[0].ruleId > 0 && limits[1].ruleId > limits[0].ruleId);
    }

    void exemptCategoriesArePickedFoundByPinyinAndDeleted()
    {
        open(PlainGroup, [&](const RiskSettings& settings) {
            click(settings.check(ReverseOrder, "账号组反向单交易检查"), QPoint(8, 8));
            click(settings.check(ReverseOrder, " 不统计已撤 (无成交) 委托 "), QPoint(8, 8));
            settings.pickExempt(ReverseOrder, [&](QWidget& opened) {
                const CategoryPicker picker(opened);
                const int offered = picker.offered().size();
                QCOMPARE(offered, 300);
                for (const QString& hidden : QStringList({"内部研究分类", "场外衍生品", "核心池", "收益互换"})) {
                    QVERIFY2(!picker.offered().contains(hidden), qPrintable(hidden));
                }
                m_client->pictures("exempt-picker");
                retype(picker.search(), "meirong");
                QCOMPARE(picker.offered(),
                         QStringList({"美容护理", "美容护理-大盘", "美容护理-中盘", "美容护理-小盘"}));
                picker.take({"美容护理"});
                retype(picker.search(), "gt");
                QVERIFY(picker.offered().contains("钢铁"));
                QCOMPARE(picker.chosen(), QStringList("美容护理"));
                picker.take({"钢铁"});
                m_client->pictures("exempt-picker-search");
                QTest::keyClick(&picker.search(), Qt::Key_A, Qt::ControlModifier);
                QTest::keyClick(&picker.search(), Qt::Key_Delete);
                QCOMPARE(picker.offered().size(), offered - 2);
                picker.take({"煤炭", "环保"});
                // In the order of the offered list.
                QCOMPARE(picker.chosen(), QStringList({"钢铁", "煤炭", "环保", "美容护理"}));
                picker.giveBack({"煤炭"});
                m_client->picture("exempt-picker-moved");
                clickButton(opened, "保存");
            });
            // In the order in which they were chosen.
            QCOMPARE(settings.exempt(ReverseOrder), QStringList({"美容护理", "钢铁", "环保"}));
            settings.pickExempt(ReverseOrder, [&](QWidget& opened) {
                const CategoryPicker picker(opened);
                picker.giveBack({"钢铁", "环保"});
                clickButton(opened, "关闭");
            });
            settings.removeExempt(ReverseOrder, "钢铁", "否");
            QCOMPARE(settings.exempt(ReverseOrder), QStringList({"美容护理", "钢铁", "环保"}));
            settings.removeExempt(ReverseOrder, "美容护理", "是");
            settings.removeExempt(ReverseOrder, "环保", "是");
            QCOMPARE(settings.exempt(ReverseOrder), QStringList({"钢铁"}));
            m_client->picture("reverse-order-filled-in");

            click(settings.check(WashTrade, "账号组禁止对敲交易"), QPoint(8, 8));
            settings.pickExempt(WashTrade, [&](QWidget& opened) {
                const CategoryPicker picker(opened);
                picker.take({"农林牧渔", "银行"});
                clickButton(opened, "保存");
            });
            m_client->picture("wash-trade-filled-in");
            saveSuccessfully(settings, PlainGroup);
            // The dialog stays open, and may save again.
            saveSuccessfully(settings, PlainGroup);
            settings.close();
        });
        const nvservice::CRatProofSetting setting = stored(PlainGroup).ratProofSetting;
        QVERIFY(setting.reverseOrderCheck && setting.notCountCancelledOrders && !setting.reverseOrderWarnOnly);
        QVERIFY(setting.washTradeForbidden);
        QCOMPARE(categories(setting.reverseOrderExemptCategoryIds), QStringList("钢铁"));
        QCOMPARE(categories(setting.washTradeExemptCategoryIds), QStringList({"农林牧渔", "银行"}));
    }

    void whatWasSavedIsThereWhenTheDialogIsOpenedAgain()
    {
        // Another group in between leaves nothing behind.
        open(ConfiguredGroup, [&](const RiskSettings& settings) {
            QCOMPARE(settings.exempt(WashTrade),
                     categories(stored(ConfiguredGroup).ratProofSetting.washTradeExemptCategoryIds));
            settings.close();
        });
        open(PlainGroup, [&](const RiskSettings& settings) {
            QCOMPARE(settings.entries("期货账号"), QStringList({"CF2603 棉花2603 黑名单", "CF2604 棉花2604 白名单"}));
            QCOMPARE(settings.limits().rowCount(), 2);
            QVERIFY(settings.limit(0).endsWith("|80|%|禁止|股票仓位"));
            QCOMPARE(settings.exempt(ReverseOrder), QStringList("钢铁"));
            QCOMPARE(settings.exempt(WashTrade), QStringList({"农林牧渔", "银行"}));
            QVERIFY(settings.check(WashTrade, "账号组禁止对敲交易").isChecked());
            settings.close();
        });
    }

    void whatWasSavedIsThereAfterARestart()
    {
        m_client->start("admin", "admin123");
        whatWasSavedIsThereWhenTheDialogIsOpenedAgain();
    }

    void closingWithoutSavingChangesNothing()
    {
        const QString state = database().riskConfigState(Shanghai, PlainGroup);
        open(PlainGroup, [&](const RiskSettings& settings) {
            settings.removeEntry("期货账号", "CF2603");
            settings.addLimit();
            settings.removeExempt(ReverseOrder, "钢铁", "是");
            settings.close();
        });
        QCOMPARE(database().riskConfigState(Shanghai, PlainGroup), state);
        whatWasSavedIsThereWhenTheDialogIsOpenedAgain();
    }

    void categoriesThatNoLongerExistGoWithTheNextSave()
    {
        const nvservice::CAccountGroupRCConfig before = stored(ConfiguredGroup);
        const auto has = [](const std::vector<std::int32_t>& ids, std::int32_t id) {
            return std::find(ids.begin(), ids.end(), id) != ids.end();
        };
        QVERIFY(has(before.ratProofSetting.reverseOrderExemptCategoryIds, 990001));
        QVERIFY(!before.emailRCs.empty());
        open(ConfiguredGroup, [&](const RiskSettings& settings) {
            saveSuccessfully(settings, ConfiguredGroup);
            settings.close();
        });
        const nvservice::CAccountGroupRCConfig after = stored(ConfiguredGroup);
        QVERIFY(!has(after.ratProofSetting.reverseOrderExemptCategoryIds, 990001));
        QVERIFY(after.emailRCs.empty());
        QCOMPARE(categories(after.ratProofSetting.reverseOrderExemptCategoryIds),
                 categories(before.ratProofSetting.reverseOrderExemptCategoryIds));
        QCOMPARE(storedEntries(after, EZvTraderType::Stock), storedEntries(before, EZvTraderType::Stock));
        QCOMPARE(after.assetsRCs.size(), before.assetsRCs.size());
    }

private:
    nvservice::CAccountGroupRCConfig stored(int group) { return database().riskConfig(Shanghai, group); }

    QString nameOf(int group)
    {
        return database()
            .value("SELECT g.name FROM account_group g JOIN sub_system s ON s.id = g.server_id"
                   " WHERE s.name = ? AND g.group_id = ?",
                   {Shanghai, group})
            .toString();
    }

    /// Opens the risk settings of a group and plays `act`, which closes them.
    void open(int group, const std::function<void(const RiskSettings&)>& act)
    {
        playRiskSettings(*m_client, nameOf(group), act);
    }

    void saveSuccessfully(const RiskSettings& settings, int group)
    {
        play([&] { settings.save(); }, {box("提示", "保存成功", "确定")});
        // The e-mail rules go with an operation of their own, whose answer nobody waits for.
        QTRY_COMPARE_WITH_TIMEOUT(database().newAuditRows(), 2, 60000);
        const QString key = QString("SH01|%1|0|").arg(group);
        QCOMPARE(database().newAudit(), QStringList({"SH01|admin|0|7131|" + key, "SH01|admin|3|23460|" + key}));
    }

    QStringList categories(const std::vector<std::int32_t>& ids)
    {
        QStringList names;
        for (const std::int32_t id : ids) {
            const QVariant name =
                database().value("SELECT c.name FROM category c JOIN sub_system s ON s.id = c.server_id"
                                 " WHERE s.name = ? AND c.category_id = ?",
                                 {Shanghai, id});
            if (!name.isNull()) {
                names << name.toString();
            }
        }
        return names;
    }
};

TEST_WITH_WIDGETS(TourRiskTest)
#include "tst_tour_risk.moc"
