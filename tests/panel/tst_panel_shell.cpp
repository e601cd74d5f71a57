#include "PanelFixture.h"

#include "support/UnexpectedLog.h"

#include <QAV/CProductDataManager.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/EventType.h>
#include <utils/CSingletonT.h>

#include <QtTest>

#include <type_traits>

using namespace panel_test;

namespace
{

constexpr int NoEvent = 12345;

bool hasColumn(const WQ::CStandardHpfTable& table, int column)
{
    return !table.isColumnRemoved(column) && table.isColumnVisible(column) && !table.header()->isSectionHidden(column);
}

} // namespace

/// The frame of the panel: what it is made of, the events that it answers, the state that it keeps.
class TestPanelShell : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void thePanelIsMadeThroughItsMetaObject();
    void thePanelIsADockableWidgetThatReceivesEvents();
    void theConstructorSendsNoQuery();
    void theTopBarHoldsLabelSearchFieldAndButtons();
    void theTableFillsThePanelBelowTheTopBar();
    void aUserWithoutTheRightToEditSeesNoAddButtonButTheSpaceBeforeRefreshStays();
    void theServerColumnIsShownToUnboundUsersOfSeveralServersOnly_data();
    void theServerColumnIsShownToUnboundUsersOfSeveralServersOnly();
    void withoutThePortalModulesThereIsNoInstitutionColumn_data();
    void withoutThePortalModulesThereIsNoInstitutionColumn();
    void aStoredLayoutBringsNoColumnBackThatIsNotForTheUser();
    void onlyCountInstitutionAndServerCanBeFiltered();
    void wholeRowsAreSelected();
    void anEmptyParameterIsHandedToTheTableAndChangesNothing();
    void ofAParameterWithTwoPartsOnlyTheFirstIsLoaded();
    void theParameterIsTheTablesLayout();
    void theParameterOfAPanelWithoutATableIsEmpty();
    void activationSwitchAndRefreshQueryAnew();
    void switchingKeepsTheServersName();
    void theLoadingMaskShowsFromTheQueryToTheProducts();
    void enterInTheSearchFieldIsTheSearchAndAClickWithItsIdIsNot();
    void bothButtonEventsOfTheRefreshButtonQueryAnew_data();
    void bothButtonEventsOfTheRefreshButtonQueryAnew();
    void eventsThatThePanelKnowsAreHandled_data();
    void eventsThatThePanelKnowsAreHandled();
    void aRowEventWithAnUnknownKeyIsConsumedWithoutEffect();
    void withoutATableTheReplyStillLeadsToTheProducts();
    void clearingEmptiesEverything();
    void everyControlHasAnAccessibleName();

private:
    std::unique_ptr<support::UnexpectedLog> m_log;
    std::unique_ptr<PanelFixture> m_client;
};

void TestPanelShell::init()
{
    m_log = std::make_unique<support::UnexpectedLog>();
    m_client = std::make_unique<PanelFixture>();
}

void TestPanelShell::cleanup()
{
    m_client.reset();
    const QStringList unexpected = m_log->unexpected();
    m_log.reset();
    QCOMPARE(unexpected, QStringList());
}

void TestPanelShell::thePanelIsMadeThroughItsMetaObject()
{
    const QMetaObject& metaObject = QAV::CAccountGroupRiskManagePanel::staticMetaObject;
    QCOMPARE(metaObject.className(), "QAV::CAccountGroupRiskManagePanel");
    QWidget parent;
    QObject* const panel = metaObject.newInstance(Q_ARG(QWidget*, &parent));
    QVERIFY(qobject_cast<QAV::IkolmDockableWidget*>(panel));
    QCOMPARE(panel->parent(), &parent);
    QCOMPARE(panel->objectName(), QString("agr"));
}

void TestPanelShell::thePanelIsADockableWidgetThatReceivesEvents()
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

void TestPanelShell::theConstructorSendsNoQuery()
{
    m_client->addShanghai();
    m_client->createPanel();
    QCoreApplication::processEvents();
    QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(0));
    QVERIFY(m_client->mask()->isHidden());
}

void TestPanelShell::theTopBarHoldsLabelSearchFieldAndButtons()
{
    const auto& panel = m_client->createPanel();
    QStringList labels;
    for (const auto* const label : panel.findChildren<WQ::CSimpleTextWidget*>())
        labels << label->text();
    QVERIFY(labels.contains("查询组名: "));

    const WQ::CLineEdit* const search = m_client->searchEdit();
    QCOMPARE(search->width(), 190);
    QCOMPARE(search->emptyHintText(), QString("请输入账号组名, 按Enter键查询"));
    QCOMPARE(search->emptyHintColor(), WQ::CUiResourceManager::instance()->colour("clr_lineedit_empty_hint"));
    const QPushButton* const add = m_client->button("添加账号组");
    const QPushButton* const refresh = m_client->button("立即刷新");
    QVERIFY(add && refresh);
    QCOMPARE(add->size(), QSize(70, 26));
    QCOMPARE(refresh->size(), QSize(71, 26));
    QCOMPARE(add->x() - (search->x() + search->width()), 15);
    QCOMPARE(refresh->x() - (add->x() + add->width()), 20);
    QCOMPARE(refresh->parentWidget()->height(), 36);
    QCOMPARE(refresh->parentWidget()->minimumWidth(), 950);
    QCOMPARE(m_client->table()->tableId(), 1274);
    QCOMPARE(m_client->table()->menuFlags(), 255);
    QCOMPARE(m_client->mask()->text(), QString("正在加载基础数据"));
}

void TestPanelShell::theTableFillsThePanelBelowTheTopBar()
{
    const auto& panel = m_client->createPanel();
    const QWidget* const topBar = m_client->searchEdit()->parentWidget();
    const QWidget* const add = m_client->button("添加账号组");
    QCOMPARE(topBar->mapTo(&panel, QPoint()), QPoint(0, 0));
    QCOMPARE(add->y(), 5);
    const QWidget* label = nullptr;
    for (const auto* const text : topBar->findChildren<WQ::CSimpleTextWidget*>()) {
        if (text->text() == "查询组名: ")
            label = text;
    }
    QVERIFY(label);
    QCOMPARE(label->x(), 3);
    QCOMPARE(m_client->searchEdit()->x(), label->x() + label->width());
    QCOMPARE(m_client->table()->mapTo(&panel, QPoint()), QPoint(0, 36));
    QCOMPARE(m_client->table()->size(), panel.size() - QSize(0, 36));
}

void TestPanelShell::aUserWithoutTheRightToEditSeesNoAddButtonButTheSpaceBeforeRefreshStays()
{
    m_client->logIn({10719, 10721});
    m_client->createPanel();
    QVERIFY(!m_client->button("添加账号组"));
    const QPushButton* const refresh = m_client->button("立即刷新");
    QVERIFY(refresh);
    QCOMPARE(refresh->x() - (m_client->searchEdit()->x() + m_client->searchEdit()->width()), 15 + 20);
}

void TestPanelShell::theServerColumnIsShownToUnboundUsersOfSeveralServersOnly_data()
{
    QTest::addColumn<bool>("severalServers");
    QTest::addColumn<int>("institution");
    QTest::addColumn<bool>("shown");
    QTest::newRow("several servers, unbound user") << true << 2147483647 << true;
    QTest::newRow("several servers, bound user") << true << 12 << false;
    QTest::newRow("several servers, institution -1") << true << -1 << false;
    QTest::newRow("one server, unbound user") << false << 2147483647 << false;
    QTest::newRow("one server, bound user") << false << 12 << false;
}

void TestPanelShell::theServerColumnIsShownToUnboundUsersOfSeveralServersOnly()
{
    QFETCH(bool, severalServers);
    QFETCH(int, institution);
    QFETCH(bool, shown);
    m_client->addShanghai();
    if (severalServers)
        m_client->addShenzhen();
    m_client->logIn(AllRights, institution);
    m_client->createPanel();
    QCOMPARE(hasColumn(*m_client->table(), 3), shown);
    if (shown)
        QCOMPARE(m_client->table()->columnWidth(3), 200);
}

void TestPanelShell::withoutThePortalModulesThereIsNoInstitutionColumn_data()
{
    QTest::addColumn<QString>("modules");
    QTest::addColumn<bool>("present");
    QTest::newRow("both") << "return { mdl_portal = { mdl_portal_pb = true } }" << true;
    QTest::newRow("institutions off") << "return { mdl_portal = { mdl_portal_pb = false } }" << false;
    QTest::newRow("portal off") << "return { mdl_portal = { on = false, mdl_portal_pb = true } }" << false;
    QTest::newRow("neither") << "return {}" << false;
}

void TestPanelShell::withoutThePortalModulesThereIsNoInstitutionColumn()
{
    QFETCH(QString, modules);
    QFETCH(bool, present);
    m_client->addShanghai();
    m_client->addShenzhen();
    support::switchModules(modules);
    m_client->createPanel();
    const WQ::CStandardHpfTable& table = *m_client->table();
    QCOMPARE(hasColumn(table, 2), present);
    QTRY_VERIFY(table.header()->sectionSize(1) > 0);
    const int endOfCount = table.header()->sectionViewportPosition(1) + table.header()->sectionSize(1);
    const int startOfServer = table.header()->sectionViewportPosition(3);
    if (present)
        QVERIFY(startOfServer > endOfCount);
    else
        QCOMPARE(startOfServer, endOfCount);
}

void TestPanelShell::aStoredLayoutBringsNoColumnBackThatIsNotForTheUser()
{
    m_client->addShanghai();
    m_client->addShenzhen();
    const QString layout = m_client->createPanel().param();
    QVERIFY(hasColumn(*m_client->table(), 2));
    QVERIFY(hasColumn(*m_client->table(), 3));
    m_client->logIn(AllRights, 12);
    support::switchModules("return {}");
    m_client->createPanel().setParam(layout);
    QVERIFY(!hasColumn(*m_client->table(), 2));
    QVERIFY(!hasColumn(*m_client->table(), 3));
}

void TestPanelShell::onlyCountInstitutionAndServerCanBeFiltered()
{
    m_client->createPanel();
    QVector<bool> filterable;
    for (int column = 0; column < 5; ++column)
        filterable << m_client->table()->isColumnFilterable(column);
    QCOMPARE(filterable, QVector<bool>({false, true, true, true, false}));
}

void TestPanelShell::wholeRowsAreSelected()
{
    m_client->createPanel();
    const WQ::CStandardHpfTable fresh(1, nullptr, 255);
    QCOMPARE(m_client->table()->flags(), fresh.flags() & ~8);
    QVERIFY((fresh.flags() & 8) != 0);
}

void TestPanelShell::anEmptyParameterIsHandedToTheTableAndChangesNothing()
{
    auto& panel = m_client->createPanel();
    m_client->table()->setColumnWidth(0, 333);
    const QString before = panel.param();
    panel.setParam(QString());
    panel.setParam(";" + before);
    QCOMPARE(panel.param(), before);
}

void TestPanelShell::ofAParameterWithTwoPartsOnlyTheFirstIsLoaded()
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

void TestPanelShell::theParameterIsTheTablesLayout()
{
    m_client->createPanel();
    m_client->table()->setColumnWidth(1, 144);
    const QString layout = m_client->panel->param();
    QCOMPARE(layout, m_client->table()->saveConfigStr());
    QVERIFY(!layout.contains(';'));
    m_client->createPanel().setParam(layout);
    QCOMPARE(m_client->table()->columnWidth(1), 144);
}

void TestPanelShell::theParameterOfAPanelWithoutATableIsEmpty()
{
    auto& panel = m_client->createPanel();
    delete m_client->table();
    QCOMPARE(panel.param(), QString());
    panel.setParam("anything");
    panel.clear();
}

void TestPanelShell::activationSwitchAndRefreshQueryAnew()
{
    m_client->addShanghai();
    auto& panel = m_client->createPanel();
    panel.switchSystem(0, QString::fromStdString(Shanghai));
    m_client->answer(*m_client->shanghai, {makeGroup(1, "一组", ShanghaiTag)});
    panel.onActive();
    m_client->answer(*m_client->shanghai, {makeGroup(2, "二组", ShanghaiTag)});
    QCOMPARE(m_client->shown(0), QStringList({"二组"}));
    QTest::mouseClick(m_client->button("立即刷新"), Qt::LeftButton);
    m_client->answer(*m_client->shanghai, {makeGroup(3, "三组", ShanghaiTag)});
    QCOMPARE(m_client->shown(0), QStringList({"三组"}));
    QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(0));
}

void TestPanelShell::switchingKeepsTheServersName()
{
    auto& panel = m_client->createPanel();
    panel.switchSystem(1, QString::fromStdString(Shenzhen));
    QCOMPARE(panel.serverName(), QString::fromStdString(Shenzhen));
    panel.switchSystem(0, QString());
    QCOMPARE(panel.serverName(), QString());
}

void TestPanelShell::theLoadingMaskShowsFromTheQueryToTheProducts()
{
    m_client->addShanghai();
    auto& panel = m_client->createPanel();
    panel.switchSystem(0, QString::fromStdString(Shanghai));
    QVERIFY(m_client->mask()->isVisible());
    QCOMPARE(m_client->mask()->target(), &panel);
    m_client->shanghai->takeQuery().handler(support::replyWith({makeGroup(1, "一组", ShanghaiTag)}));
    QTRY_COMPARE(m_client->model()->getDataCount(), 1);
    QVERIFY(m_client->mask()->isVisible());
    m_client->answerProducts();
    QVERIFY(m_client->mask()->isHidden());
}

void TestPanelShell::enterInTheSearchFieldIsTheSearchAndAClickWithItsIdIsNot()
{
    m_client->addShanghai();
    auto& panel = m_client->createPanel();
    panel.switchSystem(0, QString::fromStdString(Shanghai));
    m_client->answer(*m_client->shanghai, {makeGroup(1, "甲组", ShanghaiTag), makeGroup(2, "乙组", ShanghaiTag)});
    m_client->typeInSearchEdit("乙");
    QVERIFY(panel.handleEvent(WQ::ButtonClicked, 0, 0, QString(), nullptr));
    QCOMPARE(m_client->shown(0), QStringList({"甲组", "乙组"}));
    QTest::keyClick(m_client->searchEdit(), Qt::Key_Return);
    QCOMPARE(m_client->shown(0), QStringList({"乙组"}));
}

void TestPanelShell::bothButtonEventsOfTheRefreshButtonQueryAnew_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("a click") << 5;
    QTest::newRow("the event of buttons and Enter") << 99;
}

void TestPanelShell::bothButtonEventsOfTheRefreshButtonQueryAnew()
{
    QFETCH(int, type);
    m_client->addShanghai();
    QVERIFY(m_client->createPanel().handleEvent(type, 2, 7, "any text", nullptr));
    QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(1));
    QCOMPARE(m_client->shanghai->takeQuery().request.dataType, 625);
}

void TestPanelShell::eventsThatThePanelKnowsAreHandled_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("id");
    QTest::addColumn<bool>("handled");
    QTest::newRow("search") << 99 << 0 << true;
    QTest::newRow("enter, unknown id") << 99 << 77 << true;
    QTest::newRow("click, unknown id") << 5 << 77 << true;
    QTest::newRow("row button") << 218 << 4 << true;
    QTest::newRow("text changed") << 97 << 0 << false;
    QTest::newRow("unknown type") << NoEvent << 0 << false;
}

void TestPanelShell::eventsThatThePanelKnowsAreHandled()
{
    QFETCH(int, type);
    QFETCH(int, id);
    QFETCH(bool, handled);
    QCOMPARE(m_client->createPanel().handleEvent(type, id, 0, QString(), nullptr), handled);
}

void TestPanelShell::aRowEventWithAnUnknownKeyIsConsumedWithoutEffect()
{
    m_client->addShanghai();
    auto& panel = m_client->createPanel();
    for (int button = 0; button < 4; ++button)
        QVERIFY(panel.handleEvent(218, 4, button, "上海分系统|1", nullptr));
    m_client->table()->setDataModel(nullptr);
    for (int button = 0; button < 4; ++button)
        QVERIFY(panel.handleEvent(218, 4, button, "上海分系统|1", nullptr));
    QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(0));
}

void TestPanelShell::withoutATableTheReplyStillLeadsToTheProducts()
{
    m_client->addShanghai();
    m_client->createPanel().switchSystem(0, QString::fromStdString(Shanghai));
    delete m_client->table();
    m_client->answer(*m_client->shanghai, {makeGroup(8, "八组", ShanghaiTag)});
    const auto* const manager = utils::CSingletonT<QAV::CProductDataManager>::instance();
    QCOMPARE(manager->getAccountGroupName(ShanghaiTag, 8), std::string("八组"));
}

void TestPanelShell::clearingEmptiesEverything()
{
    m_client->addShanghai();
    auto& panel = m_client->createPanel();
    panel.switchSystem(0, QString::fromStdString(Shanghai));
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

void TestPanelShell::everyControlHasAnAccessibleName()
{
    const auto& panel = m_client->createPanel();
    QStringList nameless;
    for (const QWidget* const widget : panel.findChildren<QWidget*>()) {
        if (widget->isVisible() && widget->focusPolicy() != Qt::NoFocus && !widget->isHidden()) {
            QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
            if (face && face->text(QAccessible::Name).isEmpty())
                nameless << QString("%1 %2").arg(widget->metaObject()->className(), widget->objectName());
        }
    }
    QCOMPARE(nameless, QStringList());
}

QTEST_MAIN(TestPanelShell)
#include "tst_panel_shell.moc"
