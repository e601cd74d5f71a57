// SPDX-License-Identifier: Apache-2.0
#include "support/BsonMacros.h"
#include "support/TestProgram.h"

#include <QAV/CAccountRcEmailWidget.h>
#include <QAV/CConfigService.h>
#include <QAV/adaptScreenSize.h>
#include <WQ/CAutoKeyboardLineEdit.h>
#include <WQ/CCheckBox.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/EventType.h>
#include <utils/CSingletonT.h>

#include <thread>

using nvservice::CEmailRC;
using QAV::CAccountRcEmailWidget;
using QAV::CConfigService;

static CEmailRC makeRule(const std::string& key, const std::string& recipient)
{
    CEmailRC rule;
    rule.ruleKind = "2";
    rule.accountKey = "7";
    rule.ruleKey = key;
    rule.recipients = {recipient, "风控; 二组"};
    rule.subject = "主题 " + key;
    rule.unknownFields = BSON("later" << 1);
    return rule;
}

static QMap<QString, CEmailRC> someRules()
{
    return {{"b", makeRule("b", "b@example.com")}, {"a", makeRule("a", "a@example.com")}};
}

/// What the risk settings need beside their editors: the window's size, what the user may use, the e-mail rules.
class RiskHelpersTest : public QObject
{
    Q_OBJECT

private slots:
    void aLargeScreenGivesThePreferredSize()
    {
        QCOMPARE(fitted({1920, 1040}), QSize(1300, 700));
        QCOMPARE(fitted({1380, 780}), QSize(1300, 700));
    }

    void aScreenWithoutAMarginForItGivesLessDownToTheMinimum()
    {
        QCOMPARE(fitted({1366, 728}), QSize(1286, 648));
        QCOMPARE(fitted({1379, 779}), QSize(1299, 699));
        QCOMPARE(fitted({1331, 681}), QSize(1251, 601));
        QCOMPARE(fitted({1330, 680}), QSize(1250, 600));
        QCOMPARE(fitted({1280, 640}), QSize(1250, 600));
        QCOMPARE(fitted({1250, 600}), QSize(1250, 600));
        QCOMPARE(fitted({1249, 599}), QSize(1249, 599));
    }

    void aScreenSmallerThanTheMinimumGivesAllThatItHas() { QCOMPARE(fitted({1024, 560}), QSize(1024, 560)); }

    void eachDirectionIsFittedByItself() { QCOMPARE(fitted({1000, 2000}), QSize(1000, 700)); }

    void untilTheHostHasSaidWhichNoSystemTypeIsAllowed()
    {
        const CConfigService service;
        for (const int sysType : {-1, 0, 1, 2}) {
            QVERIFY(!service.testAuthByCategorySysType(sysType));
        }
    }

    void theHostsSystemTypesReplaceTheFormerOnes()
    {
        CConfigService& service = *utils::CSingletonT<CConfigService>::instance();
        service.setAllowedCategorySysTypes({1, 3});
        QVERIFY(service.testAuthByCategorySysType(1) && service.testAuthByCategorySysType(3));
        QVERIFY(!service.testAuthByCategorySysType(2));
        service.setAllowedCategorySysTypes({2});
        QVERIFY(service.testAuthByCategorySysType(2));
        QVERIFY(!service.testAuthByCategorySysType(1));
        service.setAllowedCategorySysTypes({});
    }

    void systemTypesAreReadWhileTheHostReplacesThem()
    {
        CConfigService service;
        service.setAllowedCategorySysTypes({0, 1});
        std::thread host([&] {
            for (int i = 0; i < 2000; ++i) {
                service.setAllowedCategorySysTypes({0, i});
            }
        });
        bool always = true;
        for (int i = 0; i < 2000; ++i) {
            always = service.testAuthByCategorySysType(0) && always;
        }
        host.join();
        QVERIFY(always);
    }

    void emailRulesAreShownInTheOrderOfTheirKeys()
    {
        CAccountRcEmailWidget widget(nullptr);
        QMap<QString, CEmailRC> rules = someRules();
        widget.setInfo(rules);
        const auto& table = *widget.findChild<WQ::CStandardSimpleTable*>();
        QCOMPARE(table.rowCount(), 2);
        QCOMPARE(table.itemText(table.rowID(0), 0), QString("a"));
        QCOMPARE(table.itemText(table.rowID(1), 0), QString("b"));
    }

    void untouchedEmailRulesComeBackAsTheyWentIn()
    {
        QWidget window;
        CAccountRcEmailWidget widget(&window);
        QMap<QString, CEmailRC> rules = someRules();
        widget.setInfo(rules);
        window.show();
        std::vector<CEmailRC> filled;
        widget.fillDatas(filled);
        QCOMPARE(filled.size(), std::size_t(2));
        QCOMPARE(filled[0].recipients, std::vector<std::string>({"a@example.com", "风控; 二组"}));
        QCOMPARE(filled[0].subject, std::string("主题 a"));
        QCOMPARE(filled[0].accountKey, std::string("7"));
        QVERIFY(filled[0].enabled);
        QCOMPARE(filled[1].unknownFields.toString(), BSON("later" << 1).toString());
    }

    void editedEmailRulesCarryWhatTheUserTyped()
    {
        QWidget window;
        CAccountRcEmailWidget widget(&window);
        QMap<QString, CEmailRC> rules = someRules();
        widget.setInfo(rules);
        window.show();
        const auto& table = *widget.findChild<WQ::CStandardSimpleTable*>();
        const auto edit = [&](int column) {
            return dynamic_cast<WQ::CAutoKeyboardLineEdit*>(table.itemWidget(table.rowID(1), column));
        };
        edit(1)->selectAll();
        QTest::keyClicks(edit(1), "x@example.com; y@example.com ,z@example.com");
        edit(2)->selectAll();
        QTest::keyClicks(edit(2), "new");
        QTest::keyClick(table.itemWidget(table.rowID(1), 3), Qt::Key_Space);
        std::vector<CEmailRC> filled;
        widget.fillDatas(filled);
        QCOMPARE(filled[1].recipients, std::vector<std::string>({"x@example.com", "y@example.com", "z@example.com"}));
        QCOMPARE(filled[1].subject, std::string("new"));
        QVERIFY(!filled[1].enabled);
        QCOMPARE(filled[0].subject, std::string("主题 a"));
        QCOMPARE(rules["b"].subject, std::string("主题 b"));
    }

    void everyEmailRuleCarriesTheAccountKey()
    {
        CAccountRcEmailWidget widget(nullptr);
        widget.setAccountKey("4711");
        QCOMPARE(widget.accountKey(), std::string("4711"));
        QMap<QString, CEmailRC> rules = someRules();
        widget.setInfo(rules);
        std::vector<CEmailRC> filled{makeRule("before", "c@example.com")};
        widget.fillDatas(filled);
        QCOMPARE(filled.size(), std::size_t(3));
        QCOMPARE(filled[0].accountKey, std::string("7"));
        QCOMPARE(filled[1].accountKey, std::string("4711"));
        QCOMPARE(filled[2].accountKey, std::string("4711"));
    }

    void eventsOfTheEmailRulesEndInTheirWidget()
    {
        CAccountRcEmailWidget widget(nullptr);
        QVERIFY(widget.handleEvent(WQ::ButtonClicked, 0, 1, QString(), nullptr));
    }

    void newEmailRulesReplaceTheFormerOnes()
    {
        QWidget window;
        CAccountRcEmailWidget widget(&window);
        QMap<QString, CEmailRC> rules = someRules();
        widget.setInfo(rules);
        window.show();
        rules = {{"c", makeRule("c", "c@example.com")}};
        widget.setInfo(rules);
        std::vector<CEmailRC> filled;
        widget.fillDatas(filled);
        QCOMPARE(filled.size(), std::size_t(1));
        QCOMPARE(filled[0].ruleKey, std::string("c"));
    }

private:
    static QSize fitted(const QSize& available)
    {
        int width = 0;
        int height = 0;
        QAV::adaptScreenSize(available, 1250, 600, 1300, 700, width, height);
        return {width, height};
    }
};

TEST_WITH_WIDGETS(RiskHelpersTest)
#include "tst_risk_helpers.moc"
