// SPDX-License-Identifier: Apache-2.0
#include "TradeLimitEditor.h"
#include "support/TestProgram.h"

#include <QAccessible>
#include <QMenu>

using namespace rule_editor_test;
using nvservice::EZvTraderType;

/// The editor of one black and white list, as a user works with it.
class TradeLimitWidgetTest : public TradeLimitTest
{
    Q_OBJECT

private slots:
    void aTypedCodeIsAddedWithEnterOrWithTheButton()
    {
        type(m_fixture->edit(), "600000");
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        QCOMPARE(m_fixture->edit().text(), QString());
        m_fixture->edit().setText("000001  平安银行");
        m_fixture->window.click("add");
        QCOMPARE(m_fixture->written(), (QStringList{"600000  0 0", "000001 平安银行 0 0"}));
        QCOMPARE(m_fixture->shown(), (QStringList{"600000  黑名单 双向", "000001 平安银行 黑名单 双向"}));
        QCOMPARE(m_fixture->window.part<QLabel>("counts").text(), QString("共2条，黑名单2条，白名单0条"));
    }

    void theChosenListAndDirectionAreTheNewEntrys()
    {
        m_fixture->listCombo().setCurrentIndex(1);
        m_fixture->window.part<WQ::CComboBox>("direction").setCurrentIndex(2);
        type(m_fixture->edit(), "600000");
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        QCOMPARE(m_fixture->shown(), QStringList("600000  白名单 卖出"));
    }

    void aSecurityOnBothListsIsRefusedAtTheEdit()
    {
        m_fixture->load({"600000 浦发银行 1 0"});
        type(m_fixture->edit(), "600000");
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        QCOMPARE(m_fixture->tip(m_fixture->edit()),
                 QString("证券600000已在白名单中，同一证券不能同时在黑名单和白名单中"));
        QCOMPARE(m_fixture->edit().selectedText(), QString("600000"));
        QCOMPARE(m_fixture->written(), QStringList("600000 浦发银行 1 0"));
        takePicture(m_fixture->window, "trade-limit-refusal");
    }

    void nothingTypedIsRefused()
    {
        m_fixture->window.click("add");
        QCOMPARE(m_fixture->tip(m_fixture->edit()), QString("请输入证券代码"));
        QCOMPARE(m_fixture->written(), QStringList());
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
        const QStringList all{"1 甲 0 0", "2 乙 1 1", "3 丙 0 2", "4 丁 0 0"};
        m_fixture->load(all);
        QVERIFY(!m_fixture->window.part<QPushButton>("remove").isEnabled());
        QVERIFY(!m_fixture->window.part<QPushButton>("undo").isEnabled());
        m_fixture->select({0, 2});
        QTest::keyClick(m_fixture->table().view(), Qt::Key_Delete);
        QCOMPARE(m_fixture->written(), (QStringList{"2 乙 1 1", "4 丁 0 0"}));
        QTest::keyClick(m_fixture->table().view(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_fixture->written(), all);
        QTest::keyClick(m_fixture->table().view(), Qt::Key_Y, Qt::ControlModifier);
        QCOMPARE(m_fixture->written(), (QStringList{"2 乙 1 1", "4 丁 0 0"}));
        m_fixture->window.click("undo");
        QCOMPARE(m_fixture->written(), all);
        QCOMPARE(m_fixture->shown().size(), 4);
    }

    void deletingStepsToTheNextRow()
    {
        m_fixture->load({"1 甲 0 0", "2 乙 0 0", "3 丙 0 0"});
        m_fixture->select({1});
        QTest::keyClick(m_fixture->table().view(), Qt::Key_Delete);
        QCOMPARE(m_fixture->table().view()->currentIndex().row(), 1);
        QCOMPARE(m_fixture->shown().at(1), QString("3 丙 黑名单 双向"));
    }

    void theMenuChangesAllSelectedSecurities()
    {
        m_fixture->load({"1 甲 0 0", "2 乙 0 1", "3 丙 1 0"});
        m_fixture->select({0, 1});
        m_fixture->window.click("change");
        auto* const menu = m_fixture->pane().findChild<QMenu*>("changeMenu");
        QVERIFY(menu && menu->isVisible());
        QStringList texts;
        for (const QAction* action : menu->actions()) {
            texts << action->text();
        }
        QCOMPARE(texts, (QStringList{"改为黑名单", "改为白名单", "", "改为双向", "改为买入", "改为卖出"}));
        takePicture(m_fixture->window, "trade-limit-change");
        menu->actions().at(1)->trigger();
        menu->close();
        QCOMPARE(m_fixture->written(), (QStringList{"1 甲 1 0", "2 乙 1 1", "3 丙 1 0"}));
        m_fixture->window.click("undo");
        QCOMPARE(m_fixture->written(), (QStringList{"1 甲 0 0", "2 乙 0 1", "3 丙 1 0"}));
    }

    void enterOnARowOpensTheMenuByKeyboard()
    {
        m_fixture->load({"1 甲 0 0"});
        m_fixture->select({0});
        QTest::keyClick(m_fixture->table().view(), Qt::Key_Return);
        auto* const menu = m_fixture->pane().findChild<QMenu*>("changeMenu");
        QVERIFY(menu && menu->isVisible());
        for (int step = 0; step < 5; ++step) {
            QTest::keyClick(menu, Qt::Key_Down);
        }
        QTest::keyClick(menu, Qt::Key_Return);
        QCOMPARE(m_fixture->written(), QStringList("1 甲 0 2"));
    }

    void theSearchFindsCodesNamesAndPinyin()
    {
        m_fixture->load({"600000 浦发银行 0 0", "000001 平安银行 0 0", "600519 贵州茅台 1 0"});
        for (const auto& [typed, found] :
             {std::pair<const char*, int>{"6005", 1}, {"银行", 2}, {"gzmt", 1}, {"zzz", 0}}) {
            m_fixture->searchEdit().clear();
            type(m_fixture->searchEdit(), typed);
            QCOMPARE(m_fixture->shown().size(), found);
        }
        m_fixture->searchEdit().clear();
        QCOMPARE(m_fixture->shown().size(), 3);
        QCOMPARE(m_fixture->written().size(), 3);
    }

    void theSearchStaysWhenARowIsDeleted()
    {
        m_fixture->load({"600000 浦发银行 0 0", "000001 平安银行 0 0", "600519 贵州茅台 1 0"});
        type(m_fixture->searchEdit(), "银行");
        m_fixture->select({0});
        QTest::keyClick(m_fixture->table().view(), Qt::Key_Delete);
        QCOMPARE(m_fixture->shown(), QStringList("000001 平安银行 黑名单 双向"));
        QCOMPARE(m_fixture->written().size(), 2);
    }

    void whatIsShownStaysUntilTheRuleOfAnotherGroupComes()
    {
        m_fixture->widget().setAccountGroupId(1);
        m_fixture->load({"600000 浦发银行 0 0"});
        m_fixture->select({0});
        m_fixture->window.click("remove");
        m_fixture->widget().setAccountGroupId(2);
        QCOMPARE(m_fixture->widget().accountGroupId(), 2);
        m_fixture->window.click("undo");
        QCOMPARE(m_fixture->shown(), QStringList("600000 浦发银行 黑名单 双向"));
        m_fixture->load({});
        QCOMPARE(m_fixture->written().size(), 0);
        QVERIFY(!m_fixture->window.part<QPushButton>("undo").isEnabled());
        QVERIFY(!m_fixture->window.part<QPushButton>("redo").isEnabled());
    }

    void anotherRuleTakesThePlaceOfTheFirst()
    {
        m_fixture->load({"600000 浦发银行 0 0"});
        type(m_fixture->searchEdit(), "zzz");
        m_fixture->load({"600519 贵州茅台 1 0"});
        QCOMPARE(m_fixture->searchEdit().text(), QString());
        QCOMPARE(m_fixture->shown(), QStringList("600519 贵州茅台 白名单 双向"));
    }

    void valuesOfLaterVersionsAreShownByNumber()
    {
        m_fixture->load({"600000 浦发银行 7 9"});
        QCOMPARE(m_fixture->shown(), QStringList("600000 浦发银行 7 9"));
        QCOMPARE(m_fixture->written(), QStringList("600000 浦发银行 7 9"));
    }

    void theRuleIsNotAskedOfTheService()
    {
        OneServer server;
        m_fixture->load({"600000 浦发银行 0 0"});
        m_fixture->edit().setFocus();
        QVERIFY(server.isSilent());
    }

    void noEventLeavesTheEditor()
    {
        m_fixture->load({"1 甲 0 0"});
        type(m_fixture->edit(), "2");
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        type(m_fixture->searchEdit(), "2");
        m_fixture->listCombo().setCurrentIndex(1);
        m_fixture->select({0});
        m_fixture->window.click("remove");
        m_fixture->window.click("undo");
        QCOMPARE(m_fixture->window.escapedEvents(), 0);
    }

    void everyControlHasAnAccessibleName()
    {
        for (QWidget* const widget : m_fixture->window.findChildren<QWidget*>()) {
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
        m_fixture->widget().setAccountGroupRCRule(rule);
        lap("load and show");
        m_fixture->select({500});
        lap("select");
        QTest::keyClick(m_fixture->table().view(), Qt::Key_Delete);
        lap("delete one");
        QCOMPARE(m_fixture->table().dataModel()->rowCount(), Count - 1);
        QTest::keyClick(m_fixture->table().view(), Qt::Key_Z, Qt::ControlModifier);
        lap("undo");
        type(m_fixture->edit(), "999999");
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        lap("add");
        m_fixture->table().view()->selectAll();
        lap("select all");
        m_fixture->window.click("change");
        m_fixture->pane().findChild<QMenu*>("changeMenu")->actions().at(1)->trigger();
        m_fixture->pane().findChild<QMenu*>("changeMenu")->close();
        lap("change all");
        type(m_fixture->searchEdit(), "999");
        lap("search");
        m_fixture->searchEdit().clear();
        lap("search ends");
        m_fixture->widget().updateAccountGroupRCRule(rule);
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
