// SPDX-License-Identifier: Apache-2.0
#include "TradeLimitEditor.h"
#include "support/TestProgram.h"

#include <QAccessible>
#include <QMenu>

using namespace rule_editor_test;
using nvservice::EZvTraderType;

/// The editor of one black and white list, as a user works with it.
class TradeLimitWidgetTest : public support::WatchedTest
{
    Q_OBJECT

private slots:
    void aTypedCodeIsAddedWithEnterOrWithTheButton()
    {
        TradeLimitEditor editor;
        type(editor.edit(), "600000");
        QTest::keyClick(&editor.edit(), Qt::Key_Return);
        QCOMPARE(editor.edit().text(), QString());
        editor.edit().setText("000001  平安银行");
        editor.window.click("add");
        QCOMPARE(editor.written(), (QStringList{"600000  0 0", "000001 平安银行 0 0"}));
        QCOMPARE(editor.shown(), (QStringList{"600000  黑名单 双向", "000001 平安银行 黑名单 双向"}));
        QCOMPARE(editor.window.part<QLabel>("counts").text(), QString("共2条，黑名单2条，白名单0条"));
    }

    void theChosenListAndDirectionAreTheNewEntrys()
    {
        TradeLimitEditor editor;
        editor.listCombo().setCurrentIndex(1);
        editor.window.part<WQ::CComboBox>("direction").setCurrentIndex(2);
        type(editor.edit(), "600000");
        QTest::keyClick(&editor.edit(), Qt::Key_Return);
        QCOMPARE(editor.shown(), QStringList("600000  白名单 卖出"));
    }

    void aSecurityOnBothListsIsRefusedAtTheEdit()
    {
        TradeLimitEditor editor;
        editor.load({"600000 浦发银行 1 0"});
        type(editor.edit(), "600000");
        QTest::keyClick(&editor.edit(), Qt::Key_Return);
        QCOMPARE(editor.tip(editor.edit()), QString("证券600000已在白名单中，同一证券不能同时在黑名单和白名单中"));
        QCOMPARE(editor.edit().selectedText(), QString("600000"));
        QCOMPARE(editor.written(), QStringList("600000 浦发银行 1 0"));
        takePicture(editor.window, "trade-limit-refusal");
    }

    void nothingTypedIsRefused()
    {
        TradeLimitEditor editor;
        editor.window.click("add");
        QCOMPARE(editor.tip(editor.edit()), QString("请输入证券代码"));
        QCOMPARE(editor.written(), QStringList());
    }

    void futuresHaveNoDirection()
    {
        TradeLimitEditor editor(EZvTraderType::Future);
        QVERIFY(!editor.window.findChild<WQ::CComboBox*>("direction"));
        editor.load({"rb2501 螺纹钢 0 1"});
        QCOMPARE(editor.shown(), QStringList("rb2501 螺纹钢 黑名单"));
        // What is not shown is not lost.
        QCOMPARE(editor.written(), QStringList("rb2501 螺纹钢 0 1"));
    }

    void selectedSecuritiesAreDeletedAndComeBackWithUndo()
    {
        TradeLimitEditor editor;
        const QStringList all{"1 甲 0 0", "2 乙 1 1", "3 丙 0 2", "4 丁 0 0"};
        editor.load(all);
        QVERIFY(!editor.window.part<QPushButton>("remove").isEnabled());
        QVERIFY(!editor.window.part<QPushButton>("undo").isEnabled());
        editor.select({0, 2});
        QTest::keyClick(editor.table().view(), Qt::Key_Delete);
        QCOMPARE(editor.written(), (QStringList{"2 乙 1 1", "4 丁 0 0"}));
        QTest::keyClick(editor.table().view(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(editor.written(), all);
        QTest::keyClick(editor.table().view(), Qt::Key_Y, Qt::ControlModifier);
        QCOMPARE(editor.written(), (QStringList{"2 乙 1 1", "4 丁 0 0"}));
        editor.window.click("undo");
        QCOMPARE(editor.written(), all);
        QCOMPARE(editor.shown().size(), 4);
    }

    void deletingStepsToTheNextRow()
    {
        TradeLimitEditor editor;
        editor.load({"1 甲 0 0", "2 乙 0 0", "3 丙 0 0"});
        editor.select({1});
        QTest::keyClick(editor.table().view(), Qt::Key_Delete);
        QCOMPARE(editor.table().view()->currentIndex().row(), 1);
        QCOMPARE(editor.shown().at(1), QString("3 丙 黑名单 双向"));
    }

    void theMenuChangesAllSelectedSecurities()
    {
        TradeLimitEditor editor;
        editor.load({"1 甲 0 0", "2 乙 0 1", "3 丙 1 0"});
        editor.select({0, 1});
        editor.window.click("change");
        auto* const menu = editor.pane().findChild<QMenu*>("changeMenu");
        QVERIFY(menu && menu->isVisible());
        QStringList texts;
        for (const QAction* action : menu->actions()) {
            texts << action->text();
        }
        QCOMPARE(texts, (QStringList{"改为黑名单", "改为白名单", "", "改为双向", "改为买入", "改为卖出"}));
        takePicture(editor.window, "trade-limit-change");
        menu->actions().at(1)->trigger();
        menu->close();
        QCOMPARE(editor.written(), (QStringList{"1 甲 1 0", "2 乙 1 1", "3 丙 1 0"}));
        editor.window.click("undo");
        QCOMPARE(editor.written(), (QStringList{"1 甲 0 0", "2 乙 0 1", "3 丙 1 0"}));
    }

    void enterOnARowOpensTheMenuByKeyboard()
    {
        TradeLimitEditor editor;
        editor.load({"1 甲 0 0"});
        editor.select({0});
        QTest::keyClick(editor.table().view(), Qt::Key_Return);
        auto* const menu = editor.pane().findChild<QMenu*>("changeMenu");
        QVERIFY(menu && menu->isVisible());
        for (int step = 0; step < 5; ++step) {
            QTest::keyClick(menu, Qt::Key_Down);
        }
        QTest::keyClick(menu, Qt::Key_Return);
        QCOMPARE(editor.written(), QStringList("1 甲 0 2"));
    }

    void theSearchFindsCodesNamesAndPinyin()
    {
        TradeLimitEditor editor;
        editor.load({"600000 浦发银行 0 0", "000001 平安银行 0 0", "600519 贵州茅台 1 0"});
        for (const auto& [typed, found] :
             {std::pair<const char*, int>{"6005", 1}, {"银行", 2}, {"gzmt", 1}, {"zzz", 0}}) {
            editor.searchEdit().clear();
            type(editor.searchEdit(), typed);
            QCOMPARE(editor.shown().size(), found);
        }
        editor.searchEdit().clear();
        QCOMPARE(editor.shown().size(), 3);
        QCOMPARE(editor.written().size(), 3);
    }

    void theSearchStaysWhenARowIsDeleted()
    {
        TradeLimitEditor editor;
        editor.load({"600000 浦发银行 0 0", "000001 平安银行 0 0", "600519 贵州茅台 1 0"});
        type(editor.searchEdit(), "银行");
        editor.select({0});
        QTest::keyClick(editor.table().view(), Qt::Key_Delete);
        QCOMPARE(editor.shown(), QStringList("000001 平安银行 黑名单 双向"));
        QCOMPARE(editor.written().size(), 2);
    }

    void whatIsShownStaysUntilTheRuleOfAnotherGroupComes()
    {
        TradeLimitEditor editor;
        editor.widget().setAccountGroupId(1);
        editor.load({"600000 浦发银行 0 0"});
        editor.select({0});
        editor.window.click("remove");
        editor.widget().setAccountGroupId(2);
        QCOMPARE(editor.widget().accountGroupId(), 2);
        editor.window.click("undo");
        QCOMPARE(editor.shown(), QStringList("600000 浦发银行 黑名单 双向"));
        editor.load({});
        QCOMPARE(editor.written().size(), 0);
        QVERIFY(!editor.window.part<QPushButton>("undo").isEnabled());
        QVERIFY(!editor.window.part<QPushButton>("redo").isEnabled());
    }

    void anotherRuleTakesThePlaceOfTheFirst()
    {
        TradeLimitEditor editor;
        editor.load({"600000 浦发银行 0 0"});
        type(editor.searchEdit(), "zzz");
        editor.load({"600519 贵州茅台 1 0"});
        QCOMPARE(editor.searchEdit().text(), QString());
        QCOMPARE(editor.shown(), QStringList("600519 贵州茅台 白名单 双向"));
    }

    void valuesOfLaterVersionsAreShownByNumber()
    {
        TradeLimitEditor editor;
        editor.load({"600000 浦发银行 7 9"});
        QCOMPARE(editor.shown(), QStringList("600000 浦发银行 7 9"));
        QCOMPARE(editor.written(), QStringList("600000 浦发银行 7 9"));
    }

    void theRuleIsNotAskedOfTheService()
    {
        OneServer server;
        TradeLimitEditor editor;
        editor.load({"600000 浦发银行 0 0"});
        editor.edit().setFocus();
        QVERIFY(server.isSilent());
    }

    void noEventLeavesTheEditor()
    {
        TradeLimitEditor editor;
        editor.load({"1 甲 0 0"});
        type(editor.edit(), "2");
        QTest::keyClick(&editor.edit(), Qt::Key_Return);
        type(editor.searchEdit(), "2");
        editor.listCombo().setCurrentIndex(1);
        editor.select({0});
        editor.window.click("remove");
        editor.window.click("undo");
        QCOMPARE(editor.window.escapedEvents(), 0);
    }

    void everyControlHasAnAccessibleName()
    {
        TradeLimitEditor editor;
        for (QWidget* const widget : editor.window.findChildren<QWidget*>()) {
            if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible()) {
                continue;
            }
            const QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(widget);
            QVERIFY2(interface && !interface->text(QAccessible::Name).isEmpty(),
                     qPrintable(widget->objectName() + widget->metaObject()->className()));
        }
    }

    void hundredThousandEntriesAreShownChangedAndWritten()
    {
        constexpr int Count = 100000;
        TradeLimitEditor editor;
        nvservice::CAccountGroupRCRule rule;
        for (int i = 0; i < Count; ++i) {
            nvservice::CTradeLimitEntry entry;
            entry.securityCode = std::to_string(i);
            entry.securityName = "证券";
            rule.list(EZvTraderType::Stock).entries.push_back(entry);
        }
        QElapsedTimer watch;
        const auto lap = [&](const char* what) {
            QCoreApplication::processEvents();
            qInfo("%s: %lld ms", what, watch.restart());
        };
        watch.start();
        editor.widget().setAccountGroupRCRule(rule);
        lap("load and show");
        editor.select({500});
        lap("select");
        QTest::keyClick(editor.table().view(), Qt::Key_Delete);
        lap("delete one");
        QCOMPARE(editor.table().dataModel()->rowCount(), Count - 1);
        QTest::keyClick(editor.table().view(), Qt::Key_Z, Qt::ControlModifier);
        lap("undo");
        type(editor.edit(), "999999");
        QTest::keyClick(&editor.edit(), Qt::Key_Return);
        lap("add");
        editor.table().view()->selectAll();
        lap("select all");
        editor.window.click("change");
        editor.pane().findChild<QMenu*>("changeMenu")->actions().at(1)->trigger();
        editor.pane().findChild<QMenu*>("changeMenu")->close();
        lap("change all");
        type(editor.searchEdit(), "999");
        lap("search");
        editor.searchEdit().clear();
        lap("search ends");
        editor.widget().updateAccountGroupRCRule(rule);
        lap("write");
        QCOMPARE(rule.findList(EZvTraderType::Stock)->entries.size(), std::size_t(Count + 1));
        QVERIFY(rule.findList(EZvTraderType::Stock)->entries[7].listKind == nvservice::EZVRCListKind::White);
        QCOMPARE(rule.findList(EZvTraderType::Stock)->entries[500].securityCode, std::string("500"));
    }

    void itLooksRightInEveryTheme()
    {
        for (const char* theme : {"dark", "light"}) {
            TradeLimitEditor editor;
            useTheme(theme);
            editor.load({"600000 浦发银行 0 0", "000001 平安银行 1 1", "600519 贵州茅台 0 2", "510300 沪深300ETF 1 0"});
            editor.select({1, 2});
            takePicture(editor.window, "trade-limit");
        }
    }

private:
};

TEST_WITH_WIDGETS(TradeLimitWidgetTest)
#include "tst_trade_limit_widget.moc"
