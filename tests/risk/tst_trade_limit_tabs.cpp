// SPDX-License-Identifier: Apache-2.0
#include "RiskFixture.h"

#include "risk/CStockTradeLimitWidget.h"
#include "support/TestProgram.h"

using namespace risk_test;
using nvservice::CAccountGroupRCRule;
using nvservice::EZvTraderType;
using QAV::CAccountStockTradeLimit;
using QAV::CStockTradeLimitWidget;

/// The tabs of black and white lists.
class TradeLimitTabsTest : public QObject
{
    Q_OBJECT

private slots:
    void theTabsStandInTheirOwnOrderWhateverTheTypesNumbers()
    {
        const RiskFixture client;
        const auto widget = createTabs();
        QCOMPARE(widget->objectName(), QString("stock_trade_limit"));
        QCOMPARE(tabTexts(*widget), QStringList({"期货账号", "证券账号", "全国股转账号", "沪港通账号", "深港通账号",
                                                 "期货期权账号", "股票期权账号", "银行间账号"}));
        QList<int> types;
        for (const CAccountStockTradeLimit* const table : tablesOf(*widget)) {
            types << int(table->traderType());
        }
        QCOMPARE(types, QList<int>({2, 1, 256, 128, 16384, 1024, 32, 32768}));
    }

    void tradeTypesThatAreSwitchedOffHaveNoTabAndTheOthersKeepTheirOrder()
    {
        const RiskFixture client(QStringList{"mdl_tradetype_option", "mdl_tradetype_stock", "mdl_tradetype_sgt"});
        const auto widget = createTabs();
        QCOMPARE(tabTexts(*widget), QStringList({"证券账号", "深港通账号", "股票期权账号"}));
    }

    void aTabIsGoneWhenTheWholeTradeTypeModuleIsOff()
    {
        const RiskFixture client;
        support::switchModules("return { mdl_tradetype = { on = false, mdl_tradetype_stock = true } }");
        QCOMPARE(tabTexts(*createTabs()), QStringList());
    }

    void withEveryModuleSwitchedOffThereAreNoTabsAndNothingHappens()
    {
        const RiskFixture client{QStringList()};
        const auto widget = createTabs();
        QCOMPARE(tabTexts(*widget), QStringList());
        const CAccountGroupRCRule before = makeConfig(1, "a")->rcRule;
        CAccountGroupRCRule after = before;
        widget->setTradeLimitGroupId(1);
        widget->setTradeLimitRule(before);
        widget->updateTradeLimitRule(after);
        QCOMPARE(nvservice::encodeRecord(after).toString(), nvservice::encodeRecord(before).toString());
    }

    void theTabsStayWhenTheModulesChangeLater()
    {
        const RiskFixture client(QStringList{"mdl_tradetype_stock"});
        const auto widget = createTabs();
        support::switchModules(tradeTypeModules(AllTradeTypes));
        widget->setTradeLimitRule(makeConfig(1, "a")->rcRule);
        QCOMPARE(tabTexts(*widget), QStringList({"证券账号"}));
    }

    void everyTableIsThatOfAnAccountGroupAndFillsItsTab()
    {
        const RiskFixture client;
        const auto widget = createTabs();
        widget->resize(900, 500);
        widget->show();
        for (const CAccountStockTradeLimit* const table : tablesOf(*widget)) {
            QCOMPARE(int(table->tableType()), 3);
        }
        const auto* const tabs = widget->findChild<WQ::CStandardTabControl*>();
        QCOMPARE(tabs->geometry(), widget->rect());
    }

    void everyTableGetsTheGroupId()
    {
        const RiskFixture client;
        const auto widget = createTabs();
        widget->setTradeLimitGroupId(4711);
        for (const CAccountStockTradeLimit* const table : tablesOf(*widget)) {
            QCOMPARE(table->accountGroupId(), 4711);
        }
    }

    void everyTableShowsAndWritesItsOwnPartOfTheRule()
    {
        const RiskFixture client;
        const auto widget = createTabs();
        widget->setTradeLimitRule(makeConfig(1, "新")->rcRule);
        CAccountGroupRCRule one;
        tablesOf(*widget).at(1)->updateAccountGroupRCRule(one);
        QCOMPARE(one.lists.size(), std::size_t(1));
        QCOMPARE(one.lists.front().traderType, EZvTraderType::Stock);
        QCOMPARE(one.lists.front().entries.front().securityCode, std::string("001"));

        CAccountGroupRCRule rule = makeConfig(1, "旧")->rcRule;
        widget->updateTradeLimitRule(rule);
        QCOMPARE(rule.lists.size(), std::size_t(8));
        for (const nvservice::CTradeLimitList& list : rule.lists) {
            QCOMPARE(list.entries.size(), std::size_t(1));
            QCOMPARE(list.entries.front().securityCode, "00" + std::to_string(int(list.traderType)));
            QCOMPARE(list.entries.front().securityName, std::string("新"));
        }
    }

    void aPartWithoutATabIsNeitherShownNorTouched()
    {
        const RiskFixture client(QStringList{"mdl_tradetype_stock"});
        const auto widget = createTabs();
        widget->setTradeLimitRule(makeConfig(1, "新")->rcRule);
        CAccountGroupRCRule rule = makeConfig(1, "旧")->rcRule;
        rule.list(EZvTraderType(64)).entries.push_back({"600000", "没有页签的类型", {}, {}, {}});
        widget->updateTradeLimitRule(rule);
        for (const nvservice::CTradeLimitList& list : rule.lists) {
            const std::string expected = list.traderType == EZvTraderType::Stock ? "新"
                                         : list.traderType == EZvTraderType(64)  ? "没有页签的类型"
                                                                                 : "旧";
            QCOMPARE(list.entries.front().securityName, expected);
        }
    }

private:
    std::unique_ptr<CStockTradeLimitWidget> createTabs() { return std::make_unique<CStockTradeLimitWidget>(nullptr); }

    static QList<CAccountStockTradeLimit*> tablesOf(const CStockTradeLimitWidget& widget)
    {
        const auto* const tabs = widget.findChild<WQ::CStandardTabControl*>();
        QList<CAccountStockTradeLimit*> tables;
        for (int i = 0; i < tabs->count(); ++i) {
            tables << dynamic_cast<CAccountStockTradeLimit*>(tabs->tabWidget(i));
        }
        return tables;
    }

    static QStringList tabTexts(const CStockTradeLimitWidget& widget)
    {
        const auto* const tabs = widget.findChild<WQ::CStandardTabControl*>();
        QStringList texts;
        for (int i = 0; i < tabs->count(); ++i) {
            texts << tabs->tabText(i);
        }
        return texts;
    }
};

TEST_WITH_WIDGETS(TradeLimitTabsTest)
#include "tst_trade_limit_tabs.moc"
