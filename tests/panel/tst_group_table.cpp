// SPDX-License-Identifier: Apache-2.0
#include "PanelTest.h"

#include "panel/CAccountGroupRiskMainData.h"
#include "panel/CAccountGroupRiskModel.h"
#include "support/TestProgram.h"

#include <QAV/CProductDataManager.h>
#include <WQ/CUiResourceManager.h>
#include <utils/CSingletonT.h>

#include <QAbstractItemModelTester>
#include <QAbstractItemView>
#include <QScrollBar>

using namespace panel_test;

/// What the table of account groups shows.
class GroupTableTest : public PanelTest
{
    Q_OBJECT

    static QStringList textsOf(const QVector<WQ::ButtonData>& buttons)
    {
        QStringList texts;
        for (const WQ::ButtonData& button : buttons) {
            texts << QString::number(button.id) + button.text + QString::number(button.buttonType);
        }
        return texts;
    }

    static nvservice::IDataPtr makeProducts(std::vector<nvservice::IDataPtr> products)
    {
        const auto reply = boost::make_shared<nvservice::CKolmProductsResp>();
        reply->products = std::move(products);
        return reply;
    }

private slots:
    void init()
    {
        PanelTest::init();
        m_client->addShanghai();
    }

    void aReplyOfTwoServersShowsOnlyTheCurrentOneAndTheProductManagerGetsBoth()
    {
        m_client->addShenzhen();
        m_client->showGroups({makeGroup(1, "沪一组", ShanghaiTag), makeGroup(1, "深一组", ShenzhenTag),
                              makeGroup(2, "沪二组", ShanghaiTag)});
        QCOMPARE(m_client->shown(0), QStringList({"沪一组", "沪二组"}));
        QCOMPARE(m_client->shown(3), QStringList({"上海分系统", "上海分系统"}));
        const auto* const manager = utils::CSingletonT<QAV::CProductDataManager>::instance();
        QCOMPARE(manager->getAccountGroupName(ShanghaiTag, 2), std::string("沪二组"));
        QCOMPARE(manager->getAccountGroupName(ShenzhenTag, 1), std::string("深一组"));
    }

    void withAnEmptyServerNameTheTableStaysEmptyAndTheProductManagerGetsAll()
    {
        m_client->addShenzhen();
        m_client->createPanel().onActive();
        m_client->shenzhen->takeQuery().handler(support::replyWith({makeGroup(5, "深五组", ShenzhenTag)}));
        m_client->answer(*m_client->shanghai, {makeGroup(4, "沪四组", ShanghaiTag)});
        QCOMPARE(m_client->model()->getDataCount(), 0);
        const auto* const manager = utils::CSingletonT<QAV::CProductDataManager>::instance();
        QCOMPARE(manager->getAccountGroupName(ShanghaiTag, 4), std::string("沪四组"));
        QCOMPARE(manager->getAccountGroupName(ShenzhenTag, 5), std::string("深五组"));
    }

    void theUserIsWhereHeWasAfterEachQuery()
    {
        std::vector<nvservice::IDataPtr> groups;
        for (int id = 1; id <= 100; ++id) {
            groups.push_back(makeGroup(id, "组" + std::to_string(id), ShanghaiTag));
        }
        m_client->showGroups(groups);
        QScrollBar& bar = *m_client->table()->view()->verticalScrollBar();
        const QString key = QString::fromStdString(Shanghai) + "|60";
        QVERIFY(m_client->table()->setCurrentKey(key));
        bar.setValue(bar.maximum() / 3);
        const int scrolled = bar.value();
        QVERIFY(scrolled > 0);
        groups.erase(groups.begin());
        m_client->panel->onActive();
        m_client->panel->onActive(); // before the first answer
        m_client->shanghai->takeQuery();
        m_client->answer(*m_client->shanghai, groups);
        QCOMPARE(m_client->table()->currentKey(), key);
        QCOMPARE(m_client->table()->selectedKeys(), QStringList(key));
        QCOMPARE(bar.value(), scrolled);

        groups.erase(groups.begin() + 58);
        m_client->panel->onActive();
        m_client->answer(*m_client->shanghai, groups);
        QCOMPARE(m_client->table()->selectedKeys(), QStringList());
        QCOMPARE(bar.value(), scrolled);
    }

    void aPlaceBelongsToItsServer()
    {
        m_client->addShenzhen();
        std::vector<nvservice::IDataPtr> shanghai;
        std::vector<nvservice::IDataPtr> shenzhen;
        for (int id = 1; id <= 100; ++id) {
            shanghai.push_back(makeGroup(id, "组" + std::to_string(id), ShanghaiTag));
            shenzhen.push_back(makeGroup(id, "组" + std::to_string(id), ShenzhenTag));
        }
        m_client->showGroups(shanghai);
        QScrollBar& bar = *m_client->table()->view()->verticalScrollBar();
        bar.setValue(bar.maximum());
        m_client->panel->switchSystem(1, QString::fromStdString(Shenzhen));
        m_client->answer(*m_client->shenzhen, shenzhen);
        QCOMPARE(bar.value(), 0);
    }

    void ofTwoQueriesUnderWayAtOnceTheLaterOneCounts_data()
    {
        const support::DataRows<bool> row("inOrder");
        row("answered in order", true);
        row("the later one is answered first", false);
    }
    void ofTwoQueriesUnderWayAtOnceTheLaterOneCounts()
    {
        QFETCH(bool, inOrder);
        auto& panel = m_client->openPanel();
        panel.onActive();
        const auto first = m_client->shanghai->takeQuery();
        const auto second = m_client->shanghai->takeQuery();
        const auto answerFirst = [&] {
            first.handler(support::replyWith({makeGroup(1, "旧名", ShanghaiTag), makeGroup(2, "已删除", ShanghaiTag)}));
        };
        if (inOrder) {
            answerFirst();
        }
        second.handler(support::replyWith({makeGroup(1, "新名", ShanghaiTag), makeGroup(3, "新组", ShanghaiTag)}));
        m_client->answerProducts();
        if (!inOrder) {
            answerFirst();
            // Whatever the first answer leads to is there once the next query has been answered.
            panel.queryProduct();
            m_client->answerProducts();
            QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(0));
        }
        QCOMPARE(m_client->shown(0), QStringList({"新名", "新组"}));
        QCOMPARE(m_client->buttons()->itemButtons("上海分系统|2").size(), 0);
        QCOMPARE(m_client->buttons()->itemButtons("上海分系统|3").size(), 3);
    }

    void aLateReplyOfAnotherServerLeavesTheTableAlone()
    {
        m_client->addShenzhen();
        auto& panel = m_client->openPanel();
        panel.switchSystem(1, QString::fromStdString(Shenzhen));
        const auto late = m_client->shanghai->takeQuery();
        m_client->answer(*m_client->shenzhen, {makeGroup(1, "深一组", ShenzhenTag)});
        late.handler(support::replyWith({makeGroup(1, "沪一组", ShanghaiTag)}));
        panel.queryProduct();
        m_client->answerProducts();
        QCOMPARE(m_client->shown(0), QStringList({"深一组"}));
    }

    void aGroupWithoutAnInstitutionShowsTheMainBroker()
    {
        m_client->showGroups(
            {makeGroup(1, "一组", ShanghaiTag, 1, ""), makeGroup(2, "二组", ShanghaiTag, 1, "远山基金")});
        QCOMPARE(m_client->shown(2), QStringList({"主经纪商", "远山基金"}));
    }

    void aGroupWithoutAccountsShowsZero()
    {
        m_client->showGroups({makeGroup(1, "空组", ShanghaiTag, 0), makeGroup(2, "三个", ShanghaiTag, 3)});
        QCOMPARE(m_client->shown(1), QStringList({"0", "3"}));
    }

    void rowKeysOfTwoServersNeverCollide()
    {
        m_client->addShenzhen();
        auto& panel = m_client->createPanel();
        panel.addAccountGroupInTable(makeGroup(17, "沪", ShanghaiTag));
        panel.addAccountGroupInTable(makeGroup(17, "深", ShenzhenTag));
        QCOMPARE(m_client->model()->getDataByIndex(0)->getKey(), QString("上海分系统|17"));
        QCOMPARE(m_client->model()->getDataByIndex(1)->getKey(), QString("深圳分系统|17"));
        QCOMPARE(m_client->model()->getDataIndexByKey("深圳分系统|17"), 1);
        QCOMPARE(m_client->model()->getDataIndexByKey("深圳分系统|18"), -1);
    }

    void rowsAlternateTheTwoBackgroundColours()
    {
        m_client->showGroups(
            {makeGroup(1, "一", ShanghaiTag), makeGroup(2, "二", ShanghaiTag), makeGroup(3, "三", ShanghaiTag)});
        QStringList keys;
        for (int row = 0; row < 3; ++row) {
            keys << m_client->model()->getRowBackgroundKey(row);
        }
        QCOMPARE(keys, QStringList({"clr_table_background", "clr_table_background2", "clr_table_background"}));
        QCOMPARE(m_client->model()->getRowBackgroundKey(-1), QString("clr_table_background"));
    }

    void rowButtonsFollowTheRights_data()
    {
        const support::DataRows<QList<int>, QStringList> row("rights", "buttons");
        const QString risk = "0风控设置1";
        const QString edit = "1编辑1";
        const QString remove = "2删除1";
        row("none", {}, {});
        row("risk", QList<int>({10719}), QStringList({risk}));
        row("edit", QList<int>({10717}), QStringList({edit}));
        row("delete", QList<int>({10721}), QStringList({remove}));
        row("risk, edit", QList<int>({10717, 10719}), QStringList({risk, edit}));
        row("risk, delete", QList<int>({10721, 10719}), QStringList({risk, remove}));
        row("edit, delete", QList<int>({10721, 10717}), QStringList({edit, remove}));
        row("all", QList<int>({10721, 10717, 10719}), QStringList({risk, edit, remove}));
    }
    void rowButtonsFollowTheRights()
    {
        QFETCH(QList<int>, rights);
        QFETCH(QStringList, buttons);
        m_client->logIn(std::set<int>(rights.begin(), rights.end()));
        m_client->showGroups({makeGroup(1, "一组", ShanghaiTag)});
        QCOMPARE(textsOf(m_client->buttons()->itemButtons("上海分系统|1")), buttons);
    }

    void aClickOnARowButtonReachesThePanelWithKeyAndButton()
    {
        m_client->showGroups({makeGroup(1, "一组", ShanghaiTag), makeGroup(2, "二组", ShanghaiTag)});
        m_boxes->expectQuestion(QMessageBox::Question, "提示", "确定要删除该项?", QMessageBox::Yes);
        QCoreApplication::processEvents();
        QAbstractItemView* const view = m_client->table()->view();
        const QModelIndex cell = m_client->model()->index(1, 4);
        view->scrollTo(cell);
        const QRect rect = view->visualRect(cell);
        const QRect button = m_client->buttons()->buttonRect(cell, rect, 2);
        QVERIFY(view->viewport()->rect().contains(button.center()));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, button.center());
        QVERIFY(m_boxes->failures().isEmpty());
        const auto operation = m_client->shanghai->takeOperation();
        QCOMPARE(operation.request.operation, nvservice::EZvDataOperation::Delete);
        QCOMPARE(boost::dynamic_pointer_cast<nvservice::CAccountGroup>(operation.request.data)->groupId, 2);
    }

    void withoutTheButtonDelegateNoRowIsAdded()
    {
        auto& panel = m_client->createPanel();
        m_client->table()->setColumnDelegate(4, nullptr);
        panel.addAccountGroupInTable(makeGroup(1, "一组", ShanghaiTag));
        QCOMPARE(m_client->model()->getDataCount(), 0);
    }

    void rowsCanBeSortedAndFilteredByTheUser()
    {
        m_client->showGroups({makeGroup(1, "重庆一组", ShanghaiTag, 2), makeGroup(2, "北京一组", ShanghaiTag, 10),
                              makeGroup(3, "上海一组", ShanghaiTag, 9)});
        m_client->table()->sortByColumn(0, Qt::AscendingOrder);
        QCOMPARE(m_client->shown(0), QStringList({"北京一组", "重庆一组", "上海一组"}));
        m_client->table()->sortByColumn(1, Qt::DescendingOrder);
        QCOMPARE(m_client->shown(1), QStringList({"10", "9", "2"}));
        m_client->table()->filterColumn(1, {WQ::FilterOneOf, {"9", "2"}});
        QCOMPARE(m_client->shown(1), QStringList({"9", "2"}));
    }

    void anInvalidUtf8NameIsShownNotDropped()
    {
        m_client->showGroups({makeGroup(1, "坏\xff名", ShanghaiTag)});
        QCOMPARE(m_client->shown(0), QStringList({QString("坏") + QChar(0xfffd) + "名"}));
    }

    void productRepliesOfAnyShapeEndTheLoading_data()
    {
        using Records = std::vector<nvservice::IDataPtr>;
        const support::DataRows<Records> row("products");
        const auto product = boost::make_shared<nvservice::CProductInfo>();
        product->accounts = makeGroup(1, "", ShanghaiTag, 2)->accounts;
        const auto excluded = boost::make_shared<nvservice::CProductInfo>(*product);
        excluded->excluded = true;
        row("none", {});
        row("a record of another class", Records({makeGroup(1, "组", ShanghaiTag)}));
        row("products", Records({makeProducts({product, excluded})}));
        row("foreign records among the products", Records({makeProducts({makeGroup(1, "组", ShanghaiTag), product})}));
    }
    void productRepliesOfAnyShapeEndTheLoading()
    {
        QFETCH(std::vector<nvservice::IDataPtr>, products);
        m_client->openPanel();
        QVERIFY(m_client->mask()->isVisible());
        m_client->answer(*m_client->shanghai, {makeGroup(1, "一组", ShanghaiTag)}, products);
        QVERIFY(m_client->mask()->isHidden());
        QCOMPARE(m_client->shown(0), QStringList({"一组"}));
    }

    void theModelDescribesItsColumns()
    {
        const QAV::CAccountGroupRiskModel model;
        QStringList headers;
        QVector<int> kinds;
        QVector<bool> listed;
        for (int column = -1; column <= model.getColumnCount(); ++column) {
            headers << model.getHeaderText(column);
            kinds << model.getValueKind(column);
            listed << (model.getColumnEntry(column).kind == WQ::HpfColumnEntry::Default);
            QCOMPARE(model.getHeaderTip(column), QString());
            QCOMPARE(model.isColumnWidthFixed(column), false);
            QCOMPARE(model.getColumnFlags(column), 0);
        }
        QCOMPARE(model.getColumnCount(), 5);
        QCOMPARE(headers, QStringList({"", "账号组名", "账号数量", "所属机构", "分系统", "操作", ""}));
        QCOMPARE(kinds, QVector<int>({0, 10, 2, 10, 10, 2, 0}));
        QCOMPARE(listed, QVector<bool>({true, true, true, true, true, false, true}));
    }

    void aRowAnswersEveryColumn()
    {
        QAV::CAccountGroupRiskMainData row;
        QCOMPARE(row.groupId, -1);
        QCOMPARE(row.accountCount, 0);
        row.groupId = 17;
        row.groupName = "组";
        row.accountCount = 3;
        row.institutionName = "机构";
        row.serverName = "A";
        QStringList display;
        QStringList strings;
        QVector<int> integers;
        for (int column = -1; column <= 5; ++column) {
            display << row.getDisplayQString(column);
            strings << row.getQStringValue(column);
            integers << row.getIntValue(column);
            QCOMPARE(row.getDoubleValue(column), WQ::IBaseHpfTableData::InvalidDouble);
            QCOMPARE(row.getInt64Value(column), std::int64_t(9223372036854775807));
            QCOMPARE(row.getTextColor(column), WQ::CUiResourceManager::instance()->colour("cle_default"));
        }
        QCOMPARE(display, QStringList({"", "组", "3", "机构", "A", "", ""}));
        QCOMPARE(strings, QStringList({"", "组", "", "机构", "A", "", ""}));
        const int none = 2147483647;
        QCOMPARE(integers, QVector<int>({none, none, 3, none, none, none, none}));
        QCOMPARE(row.getKey(), QString("A|17"));
    }

    void theModelKeepsTheRulesOfItemModels()
    {
        m_client->showGroups({});
        const QAbstractItemModelTester tester(m_client->model(),
                                              QAbstractItemModelTester::FailureReportingMode::QtTest);
        for (int round = 0; round < 3; ++round) {
            m_client->panel->onActive();
            std::vector<nvservice::IDataPtr> groups;
            for (int i = 0; i < 50; ++i) {
                groups.push_back(makeGroup(i, "组" + std::to_string(i), ShanghaiTag, i % 7));
            }
            m_client->answer(*m_client->shanghai, groups);
            m_client->table()->sortByColumn(round, Qt::DescendingOrder);
            m_client->table()->filterColumn(0, {WQ::FilterContains, {"4"}});
            QCOMPARE(m_client->model()->rowCount(), 14);
        }
    }
};

TEST_WITH_WIDGETS(GroupTableTest)
#include "tst_group_table.moc"
