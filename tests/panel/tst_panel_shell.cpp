// SPDX-License-Identifier: Apache-2.0
#include "PanelTest.h"
#include "support/TestProgram.h"

#include <QAV/CProductDataManager.h>
#include <utils/CSingletonT.h>

#include <type_traits>

using namespace panel_test;

/// The panel before its client: how it is made, the events that it answers, the state that it keeps.
class PanelShellTest : public PanelTest
{
    Q_OBJECT

    static constexpr int NoEvent = 12345;

private slots:
    void thePanelIsMadeThroughItsMetaObject()
    {
        const QMetaObject& metaObject = QAV::CAccountGroupRiskManagePanel::staticMetaObject;
        QCOMPARE(metaObject.className(), "QAV::CAccountGroupRiskManagePanel");
        QWidget parent;
        QObject* const panel = metaObject.newInstance(Q_ARG(QWidget*, &parent));
        QVERIFY(qobject_cast<QAV::IkolmDockableWidget*>(panel));
        QCOMPARE(panel->parent(), &parent);
        QCOMPARE(panel->objectName(), QString("agr"));
    }

    void thePanelIsADockableWidgetThatReceivesEvents()
    {
        using Panel = QAV::CAccountGroupRiskManagePanel;
        static_assert(std::is_base_of_v<QAV::IkolmDockableWidget, Panel>);
        static_assert(std::is_base_of_v<WQ::IDockableWidget, QAV::IkolmDockableWidget>);
        static_assert(std::is_base_of_v<WQ::CBaseWidget, WQ::IDockableWidget>);
        static_assert(std::is_base_of_v<WQ::CEventWidgetT<QWidget>, WQ::CBaseWidget>);
        static_assert(std::is_base_of_v<WQ::CEventDeliverer, WQ::CBaseWidget>);
        QVERIFY(m_client->createPanel().followsServer());
        // What a control below the panel reports arrives in the panel.
        QVERIFY(WQ::deliverEvent(m_client->table(), WQ::ButtonClicked, 77));
        QVERIFY(!WQ::deliverEvent(m_client->table(), NoEvent, 77));
    }

    void theConstructorSendsNoQuery()
    {
        m_client->addShanghai();
        m_client->createPanel();
        QCoreApplication::processEvents();
        QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(0));
        QVERIFY(m_client->mask()->isHidden());
    }

    void anEmptyParameterIsHandedToTheTableAndChangesNothing()
    {
        auto& panel = m_client->createPanel();
        m_client->table()->setColumnWidth(0, 333);
        const QString before = panel.param();
        panel.setParam(QString());
        panel.setParam(";" + before);
        QCOMPARE(panel.param(), before);
    }

    void ofAParameterWithTwoPartsOnlyTheFirstIsLoaded()
    {
        m_client->createPanel();
        m_client->table()->setColumnWidth(0, 111);
        const QString first = m_client->panel->param();
        m_client->table()->setColumnWidth(0, 222);
        const QString second = m_client->panel->param();
        QVERIFY(first != second);
        m_client->panel->setParam(first + ";" + second);
        QCOMPARE(m_client->table()->columnWidth(0), 111);
    }

    void theParameterIsTheTablesLayout()
    {
        m_client->createPanel();
        m_client->table()->setColumnWidth(1, 144);
        const QString layout = m_client->panel->param();
        QCOMPARE(layout, m_client->table()->saveConfigStr());
        QVERIFY(!layout.contains(';'));
        m_client->createPanel().setParam(layout);
        QCOMPARE(m_client->table()->columnWidth(1), 144);
    }

    void theParameterOfAPanelWithoutATableIsEmpty()
    {
        auto& panel = m_client->createPanel();
        delete m_client->table();
        QCOMPARE(panel.param(), QString());
        panel.setParam("anything");
        panel.clear();
    }

    void activationSwitchAndRefreshQueryAnew()
    {
        m_client->addShanghai();
        auto& panel = m_client->openPanel();
        m_client->answer(*m_client->shanghai, {makeGroup(1, "一组", ShanghaiTag)});
        panel.onActive();
        m_client->answer(*m_client->shanghai, {makeGroup(2, "二组", ShanghaiTag)});
        QCOMPARE(m_client->shown(0), QStringList({"二组"}));
        QTest::mouseClick(m_client->button("立即刷新"), Qt::LeftButton);
        m_client->answer(*m_client->shanghai, {makeGroup(3, "三组", ShanghaiTag)});
        QCOMPARE(m_client->shown(0), QStringList({"三组"}));
        QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(0));
    }

    void switchingKeepsTheServersName()
    {
        auto& panel = m_client->createPanel();
        panel.switchSystem(1, QString::fromStdString(Shenzhen));
        QCOMPARE(panel.serverName(), QString::fromStdString(Shenzhen));
        panel.switchSystem(0, QString());
        QCOMPARE(panel.serverName(), QString());
    }

    void theLoadingMaskShowsFromTheQueryToTheProducts()
    {
        m_client->addShanghai();
        auto& panel = m_client->openPanel();
        QVERIFY(m_client->mask()->isVisible());
        QCOMPARE(m_client->mask()->target(), &panel);
        m_client->shanghai->takeQuery().handler(support::replyWith({makeGroup(1, "一组", ShanghaiTag)}));
        QTRY_COMPARE(m_client->model()->getDataCount(), 1);
        QVERIFY(m_client->mask()->isVisible());
        m_client->answerProducts();
        QVERIFY(m_client->mask()->isHidden());
    }

    void enterInTheSearchFieldIsTheSearchAndAClickWithItsIdIsNot()
    {
        m_client->addShanghai();
        auto& panel = m_client->openPanel();
        m_client->answer(*m_client->shanghai, {makeGroup(1, "甲组", ShanghaiTag), makeGroup(2, "乙组", ShanghaiTag)});
        m_client->typeInSearchEdit("乙");
        QVERIFY(panel.handleEvent(WQ::ButtonClicked, 0, 0, QString(), nullptr));
        QCOMPARE(m_client->shown(0), QStringList({"甲组", "乙组"}));
        QTest::keyClick(m_client->searchEdit(), Qt::Key_Return);
        QCOMPARE(m_client->shown(0), QStringList({"乙组"}));
    }

    void bothButtonEventsOfTheRefreshButtonQueryAnew_data()
    {
        const support::DataRows<int> row("type");
        row("a click", 5);
        row("the event of buttons and Enter", 99);
    }
    void bothButtonEventsOfTheRefreshButtonQueryAnew()
    {
        QFETCH(int, type);
        m_client->addShanghai();
        QVERIFY(m_client->createPanel().handleEvent(type, 2, 7, "any text", nullptr));
        QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(1));
        QCOMPARE(m_client->shanghai->takeQuery().request.dataType, 625);
    }

    void eventsThatThePanelKnowsAreHandled_data()
    {
        const support::DataRows<int, int, bool> row("type", "id", "handled");
        row("search", 99, 0, true);
        row("enter, unknown id", 99, 77, true);
        row("click, unknown id", 5, 77, true);
        row("row button", 218, 4, true);
        row("text changed", 97, 0, false);
        row("unknown type", NoEvent, 0, false);
    }
    void eventsThatThePanelKnowsAreHandled()
    {
        QFETCH(int, type);
        QFETCH(int, id);
        QFETCH(bool, handled);
        QCOMPARE(m_client->createPanel().handleEvent(type, id, 0, QString(), nullptr), handled);
    }

    void aRowEventWithAnUnknownKeyIsConsumedWithoutEffect()
    {
        m_client->addShanghai();
        auto& panel = m_client->createPanel();
        for (int button = 0; button < 4; ++button) {
            QVERIFY(panel.handleEvent(218, 4, button, "上海分系统|1", nullptr));
        }
        m_client->table()->setDataModel(nullptr);
        for (int button = 0; button < 4; ++button) {
            QVERIFY(panel.handleEvent(218, 4, button, "上海分系统|1", nullptr));
        }
        QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(0));
    }

    void withoutATableTheReplyStillLeadsToTheProducts()
    {
        m_client->addShanghai();
        m_client->openPanel();
        delete m_client->table();
        m_client->answer(*m_client->shanghai, {makeGroup(8, "八组", ShanghaiTag)});
        const auto* const manager = utils::CSingletonT<QAV::CProductDataManager>::instance();
        QCOMPARE(manager->getAccountGroupName(ShanghaiTag, 8), std::string("八组"));
    }

    void clearingEmptiesEverything()
    {
        m_client->addShanghai();
        auto& panel = m_client->openPanel();
        m_client->answer(*m_client->shanghai, {makeGroup(1, "甲组", ShanghaiTag), makeGroup(2, "乙组", ShanghaiTag)});
        m_client->table()->sortByColumn(0, Qt::DescendingOrder);
        m_client->table()->filterColumn(0, {1, {"甲"}});
        QCOMPARE(m_client->buttons()->itemButtons("上海分系统|1").size(), 3);
        panel.clear();
        QCOMPARE(m_client->model()->getDataCount(), 0);
        QVERIFY(!m_client->model()->isFiltered());
        QCOMPARE(m_client->model()->sortColumn(), -1);
        QCOMPARE(m_client->buttons()->itemButtons("上海分系统|1").size(), 0);
    }
};

TEST_WITH_WIDGETS(PanelShellTest)
#include "tst_panel_shell.moc"
