// SPDX-License-Identifier: Apache-2.0
#include "HistoryFixture.h"

#include "history/Changes.h"
#include "support/TestProgram.h"
#include "support/qav/ServiceThread.h"
#include "support/wq/Widgets.h"

#include <WQ/CComboBox.h>
#include <WQ/CLineEdit.h>

#include <QAbstractButton>
#include <QAbstractItemModelTester>
#include <QScrollBar>

#include <boost/make_shared.hpp>

using namespace history_test;
namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;

/// The table of changes and its search.
class HistoryChangesTest : public HistoryTest
{
    Q_OBJECT

private slots:
    void theAuditIsShownNewestFirst()
    {
        m_fixture->open();
        const auto query = m_fixture->take(DataType::Audit);
        QVERIFY(!m_fixture->conditionsOf(query).has(QueryCondition::Group));
        const auto refused = makeEntry(2, 8);
        refused->outcome = 7;
        refused->outcomeText = "没有权限";
        m_fixture->answer(query, {makeEntry(3), refused});
        QTRY_COMPARE(m_fixture->shown(m_fixture->changes(), QAV::GroupColumn), QStringList({"组7", "组8"}));
        QCOMPARE(m_fixture->shown(m_fixture->changes(), QAV::OutcomeColumn), QStringList({"成功", "被拒绝"}));
        QCOMPARE(m_fixture->shown(m_fixture->changes(), QAV::UserColumn), QStringList({"李岚（lan）", "李岚（lan）"}));
        QCOMPARE(m_fixture->shown(m_fixture->changes(), QAV::RemarkColumn), QStringList({"", "没有权限"}));
        QVERIFY(m_fixture->isRead("共2条"));
    }

    void withoutTheRightTheHistoryOfTheChosenGroupIsShown()
    {
        m_fixture->open(NoAudit);
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        QCOMPARE(m_fixture->waiting(DataType::GroupHistory), 0);
        QCOMPARE(m_fixture->emptyText(m_fixture->changes()), QString("请在左侧选择一个账号组"));
        type("账号组", "wenjian");
        const auto query = m_fixture->take(DataType::GroupHistory);
        QCOMPARE(m_fixture->conditionsOf(query).number(QueryCondition::Group), std::optional<std::int64_t>(7));
        QVERIFY(!m_fixture->conditionsOf(query).has(QueryCondition::Outcome));
        m_fixture->answer(query, {makeChange(5), makeChange(4, 7, DataType::GroupRiskConfig)});
        QTRY_COMPARE(m_fixture->shown(m_fixture->changes(), QAV::KindColumn), QStringList({"账号组", "风控配置"}));
        QVERIFY(!m_fixture->control("结果").isVisible());
    }

    void withoutTheRightTheKindIsSortedOutHere()
    {
        m_fixture->open(NoAudit);
        type("账号组", "wenjian");
        choose("类型", "风控配置");
        m_fixture->take(DataType::GroupHistory); // overtaken
        const auto query = m_fixture->take(DataType::GroupHistory);
        QVERIFY(!m_fixture->conditionsOf(query).has(QueryCondition::RecordType));
        m_fixture->answer(query, {makeChange(5), makeChange(4, 7, DataType::GroupRiskConfig)});
        QTRY_COMPARE(m_fixture->shown(m_fixture->changes(), QAV::KindColumn), QStringList({"风控配置"}));
    }

    void eachConditionIsAskedForAsItIsChosen()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, {makeEntry(3)});
        QTRY_VERIFY(m_fixture->isRead("共1条"));
        choose("类型", "风控配置");
        QCOMPARE(lastAsked().number(QueryCondition::RecordType),
                 std::optional<std::int64_t>(DataType::GroupRiskConfig));
        choose("结果", "被拒绝");
        QCOMPARE(lastAsked().value(QueryCondition::Outcome), std::string("refused"));
        choose("结果", "成功");
        QCOMPARE(lastAsked().value(QueryCondition::Outcome), std::string("ok"));
        choose("时间", "最近7天");
        const std::int64_t since = QDate::currentDate().addDays(-6).startOfDay().toMSecsSinceEpoch();
        QCOMPARE(lastAsked().number(QueryCondition::Since), std::optional<std::int64_t>(since));
        edit("截止时间").setText("2026-01-05 09:30");
        const std::int64_t until = QDateTime({2026, 1, 5}, {9, 30, 59, 999}).toMSecsSinceEpoch();
        const nvservice::CQueryKey asked = lastAsked();
        QCOMPARE(asked.number(QueryCondition::Until), std::optional<std::int64_t>(until));
        QCOMPARE(asked.number(QueryCondition::Since), std::optional<std::int64_t>(since));
        QCOMPARE(static_cast<WQ::CComboBox&>(m_fixture->control("时间")).currentText(), QString("自定义"));
        choose("时间", "全部时间");
        QVERIFY(!lastAsked().has(QueryCondition::Since));
        type("账号组", "xiamen");
        QCOMPARE(lastAsked().number(QueryCondition::Group), std::optional<std::int64_t>(9));
    }

    void usersAreFoundByPinyinAndByTheirLogInName()
    {
        m_fixture->open();
        const auto other = makeEntry(2);
        other->userId = "chen";
        other->userName = "陈重";
        m_fixture->answer(DataType::Audit, {makeEntry(3), other});
        QTRY_VERIFY(m_fixture->isRead("共2条"));
        type("用户", "lilan");
        QCOMPARE(lastAsked().value(QueryCondition::User), std::string("lan"));
        edit("用户").clear();
        type("用户", "nobody");
        QTest::keyClick(&edit("用户"), Qt::Key_Return);
        QCOMPARE(lastAsked().value(QueryCondition::User), std::string("nobody"));
    }

    void moreIsLoadedAsTheUserScrolls()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, makeEntries(300, 201), "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        m_fixture->changes().setCurrentKey(m_fixture->changes().dataModel()->getDataByRow(30)->getKey());
        QScrollBar& bar = *m_fixture->changes().view()->verticalScrollBar();
        bar.setValue(bar.maximum());
        const auto query = m_fixture->take(DataType::Audit);
        QCOMPARE(m_fixture->conditionsOf(query).value(QueryCondition::Cursor), std::string("c1"));
        const int place = bar.value();
        const QString current = m_fixture->changes().currentKey();
        m_fixture->answer(query, makeEntries(205, 101)); // some of them for the second time
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 200);
        QCOMPARE(bar.value(), place);
        QCOMPARE(m_fixture->changes().currentKey(), current);
        bar.setValue(bar.maximum());
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0); // that was the last page
    }

    void pagesWithoutRecordsAreFollowedByTheNext()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, {}, "c1");
        m_fixture->answer(DataType::Audit, {}, "c2");
        const auto query = m_fixture->take(DataType::Audit);
        QCOMPARE(m_fixture->conditionsOf(query).value(QueryCondition::Cursor), std::string("c2"));
        m_fixture->answer(query, {makeEntry(1)});
        QTRY_VERIFY(m_fixture->isRead("共1条"));
    }

    void nothingFoundIsSaid()
    {
        m_fixture->open();
        QCOMPARE(m_fixture->emptyText(m_fixture->changes()), QString("正在加载…"));
        m_fixture->answer(DataType::Audit, {});
        QTRY_COMPARE(m_fixture->emptyText(m_fixture->changes()), QString("没有符合条件的修改记录"));
    }

    void aPageAfterAFailedRefreshLeavesTheReasonOfTheFailure()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, makeEntries(300, 201), "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        m_fixture->click("刷新");
        const auto newest = m_fixture->take(DataType::Audit);
        QScrollBar& bar = *m_fixture->changes().view()->verticalScrollBar();
        bar.setValue(bar.maximum());
        m_fixture->fail(newest, "断线");
        QTRY_VERIFY(m_fixture->isRead("查询失败：断线"));
        m_fixture->answer(DataType::Audit, makeEntries(200, 101), "c2");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 200);
        QVERIFY(m_fixture->isRead("查询失败：断线"));
    }

    void aFailureIsSaidAndCanBeTriedAgain()
    {
        m_fixture->open();
        m_fixture->fail(m_fixture->take(DataType::Audit), "服务端忙");
        QTRY_COMPARE(m_fixture->emptyText(m_fixture->changes()), QString("查询失败：服务端忙"));
        m_fixture->click("重试");
        m_fixture->answer(DataType::Audit, makeEntries(300, 201), "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        QVERIFY(!m_fixture->button("重试").isVisible());
        // A later page fails: what is there stays, and the same page is asked for again.
        QScrollBar& bar = *m_fixture->changes().view()->verticalScrollBar();
        bar.setValue(bar.maximum());
        m_fixture->fail(m_fixture->take(DataType::Audit), "断线");
        QTRY_VERIFY(m_fixture->isRead("查询失败：断线"));
        QCOMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        m_fixture->click("重试");
        QCOMPARE(m_fixture->conditionsOf(m_fixture->take(DataType::Audit)).value(QueryCondition::Cursor),
                 std::string("c1"));
    }

    void aRefreshPutsNewChangesAboveAndKeepsThePlace()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, makeEntries(300, 201), "c1");
        WQ::CStandardHpfTable& table = m_fixture->changes();
        QTRY_COMPARE(table.dataModel()->rowCount(), 100);
        table.setCurrentKey("SH|250");
        table.view()->scrollTo(table.dataModel()->index(45, 0), QAbstractItemView::PositionAtTop);
        const auto topRow = [&] {
            return table.dataModel()->getDataByRow(table.view()->indexAt({1, 1}).row())->getKey();
        };
        const QString top = topRow();
        m_fixture->click("刷新");
        const auto query = m_fixture->take(DataType::Audit);
        QCOMPARE(table.dataModel()->rowCount(), 100);
        m_fixture->answer(query, makeEntries(310, 211), "c9");
        QTRY_COMPARE(table.dataModel()->rowCount(), 110);
        QCOMPARE(table.dataModel()->getDataByRow(0)->getKey(), QString("SH|310"));
        QCOMPARE(table.currentKey(), QString("SH|250"));
        QCOMPARE(topRow(), top);
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        // The end is where it was.
        table.view()->verticalScrollBar()->setValue(table.view()->verticalScrollBar()->maximum());
        QCOMPARE(lastAsked().value(QueryCondition::Cursor), std::string("c1"));
    }

    void aRefreshAfterVeryManyChangesBeginsAgain()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, makeEntries(300, 201), "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        m_fixture->click("刷新");
        m_fixture->answer(DataType::Audit, makeEntries(600, 501), "c2");
        m_fixture->answer(DataType::Audit, makeEntries(600, 501), "c2");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        QCOMPARE(m_fixture->changes().dataModel()->getDataByRow(0)->getKey(), QString("SH|600"));
    }

    void aRefreshThatFindsEverythingReplacesWhatIsShown()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, makeEntries(20, 1));
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 20);
        m_fixture->click("刷新");
        m_fixture->answer(DataType::Audit, makeEntries(22, 15)); // the administrator has removed old ones
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 8);
        QVERIFY(m_fixture->isRead("共8条"));
        m_fixture->click("刷新");
        m_fixture->answer(DataType::Audit, makeEntries(26, 24)); // all others
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 3);
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
    }

    void aFilterOfTheTableStaysOverARefresh()
    {
        m_fixture->open();
        auto entries = makeEntries(300, 251, 7);
        const auto others = makeEntries(250, 201, 8);
        entries.insert(entries.end(), others.begin(), others.end());
        m_fixture->answer(DataType::Audit, entries);
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        m_fixture->changes().filterColumn(QAV::GroupColumn, {WQ::FilterOneOf, {"组8"}});
        m_fixture->click("刷新");
        m_fixture->answer(DataType::Audit, makeEntries(301, 290, 8), "c2");
        QTRY_COMPARE(m_fixture->changes().dataModel()->getDataCount(), 101);
        QCOMPARE(m_fixture->changes().dataModel()->rowCount(), 62);
    }

    void anOvertakenAnswerHasNoEffect()
    {
        m_fixture->open();
        const auto old = m_fixture->take(DataType::Audit);
        choose("结果", "成功");
        const auto latest = m_fixture->take(DataType::Audit);
        m_fixture->answer(old, {makeEntry(1)});
        m_fixture->answer(latest, {makeEntry(2)});
        m_fixture->answer(latest, {makeEntry(3)}); // doubled
        QTRY_VERIFY(m_fixture->isRead("共1条"));
        support::settleCallbacks();
        QCOMPARE(m_fixture->changes().dataModel()->getDataByRow(0)->getKey(), QString("SH|2"));
        QCOMPARE(m_fixture->changes().dataModel()->rowCount(), 1);
    }

    void aNoticeSaysWhoChangedSomethingAndMovesNothing()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, makeEntries(300, 201), "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        m_fixture->changes().setCurrentKey("SH|290");
        const QRect place = m_fixture->changes().geometry();
        m_fixture->panel->onChanged("别的分系统", {makeChange(400)}, true);
        QVERIFY(!m_fixture->isRead("有新的修改"));
        m_fixture->panel->onChanged(QString::fromStdString(Shanghai), {makeChange(400)}, true);
        QVERIFY(m_fixture->isRead("有新的修改：李岚（lan）"));
        QCoreApplication::processEvents();
        QCOMPARE(m_fixture->changes().geometry(), place);
        QCOMPARE(m_fixture->changes().currentKey(), QString("SH|290"));
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0); // the user decides
        m_fixture->click("刷新");
        QVERIFY(!m_fixture->isRead("有新的修改"));
        m_fixture->answer(DataType::Audit, makeEntries(301, 202), "c1");
        m_fixture->panel->onChanged(QString::fromStdString(Shanghai), {}, false);
        QVERIFY(m_fixture->isRead("可能有新的修改"));
    }

    void whatTheTableShowsAlreadyIsNoNews()
    {
        m_fixture->open();
        const auto refused = makeEntry(11);
        refused->outcome = 7;
        m_fixture->answer(DataType::Audit, {refused, makeEntry(10), makeEntry(9, 8), makeEntry(8)});
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 4);
        const QString server = QString::fromStdString(Shanghai);
        m_fixture->panel->onChanged(server, {makeChange(10), makeChange(9, 8), makeChange(8)}, true);
        QVERIFY(!m_fixture->isRead("有新的修改"));
        m_fixture->panel->onChanged(server, {makeChange(10, 8)}, true); // another group at the same time
        QVERIFY(m_fixture->isRead("有新的修改"));
        m_fixture->click("刷新");
        QVERIFY(!m_fixture->isRead("有新的修改"));
        m_fixture->panel->onChanged(server, {makeChange(11)}, true); // that one was refused
        QVERIFY(m_fixture->isRead("有新的修改"));
        m_fixture->panel->onChanged(server, {makeChange(12)}, true);
        m_fixture->answer(DataType::Audit, {makeEntry(12), refused, makeEntry(10)}, "c2"); // which is in the answer
        QTRY_VERIFY(!m_fixture->isRead("有新的修改"));
        choose("结果", "成功");
        m_fixture->panel->onChanged(server, {makeChange(13)}, true); // before the first page
        QVERIFY(m_fixture->isRead("有新的修改"));
        m_fixture->answer(DataType::Audit, {makeEntry(13)});
        QTRY_VERIFY(!m_fixture->isRead("有新的修改"));
    }

    void theLatestOfSeveralChangesIsSaid()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, {makeEntry(1)});
        QTRY_VERIFY(m_fixture->isRead("共1条"));
        const auto other = makeChange(402);
        other->userId = "chen";
        other->userName = "陈重";
        m_fixture->panel->onChanged(QString::fromStdString(Shanghai), {makeChange(400), other, makeChange(401)}, true);
        QVERIFY(m_fixture->isRead("有新的修改：陈重（chen） " + QAV::timeText(other->changedAt)));
    }

    void aNoticeOfAnotherGroupThanTheChosenOneIsNone()
    {
        m_fixture->open();
        type("账号组", "wenjian");
        m_fixture->panel->onChanged(QString::fromStdString(Shanghai), {makeChange(400, 8)}, true);
        QVERIFY(!m_fixture->isRead("有新的修改"));
        m_fixture->panel->onChanged(QString::fromStdString(Shanghai), {makeChange(400, 7)}, true);
        QVERIFY(m_fixture->isRead("有新的修改"));
    }

    void anotherServerBeginsWithASearchOfItsOwn()
    {
        m_fixture->addShenzhen();
        m_fixture->open();
        m_fixture->answer(DataType::Audit, {makeEntry(1)});
        QTRY_VERIFY(m_fixture->isRead("共1条"));
        type("账号组", "wenjian");
        m_fixture->take(DataType::Audit);
        m_fixture->panel->switchSystem(2, QString::fromStdString(Shenzhen));
        QCOMPARE(m_fixture->changes().dataModel()->getDataCount(), 0);
        QVERIFY(!lastAsked().has(QueryCondition::Group));
        m_fixture->panel->switchSystem(0, {});
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        QCOMPARE(m_fixture->emptyText(m_fixture->changes()), QString());
    }

    void aHiddenPanelAsksWhenItIsActivated()
    {
        m_fixture->addShenzhen();
        m_fixture->open();
        m_fixture->answer(DataType::Audit, {makeEntry(1)});
        QTRY_VERIFY(m_fixture->isRead("共1条"));
        m_fixture->panel->hide();
        m_fixture->panel->switchSystem(2, QString::fromStdString(Shenzhen));
        QCOMPARE(m_fixture->changes().dataModel()->getDataCount(), 0);
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        m_fixture->panel->show();
        m_fixture->panel->onActive();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 1);
    }

    void theActivationAfterTheSwitchAsksOnce()
    {
        m_fixture->open();
        m_fixture->panel->onActive();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 1);
    }

    void theModelKeepsTheRulesOfItsViews()
    {
        m_fixture->open();
        const QAbstractItemModelTester tester(m_fixture->changes().dataModel(),
                                              QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_fixture->answer(DataType::Audit, makeEntries(300, 201), "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        m_fixture->click("刷新");
        m_fixture->answer(DataType::Audit, makeEntries(310, 211), "c2");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 110);
        choose("结果", "成功");
        m_fixture->answer(DataType::Audit, {});
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 0);
    }

    void theFirstEditIsTheSearchAndTheFirstTableTheChanges()
    {
        m_fixture->open();
        const QList<QLineEdit*> edits = m_fixture->panel->findChildren<QLineEdit*>();
        const auto first = std::find_if(edits.begin(), edits.end(), [](QLineEdit* edit) { return edit->isVisible(); });
        QCOMPARE((*first)->accessibleName(), QString("账号组"));
        QCOMPARE(m_fixture->panel->findChildren<WQ::CStandardHpfTable*>().first(), &m_fixture->changes());
    }

    void whatIsSeenIsExported()
    {
        m_fixture->open();
        const auto refused = makeEntry(2, 8);
        refused->outcome = 7;
        refused->outcomeText = "没有权限，\"只读\"";
        m_fixture->answer(DataType::Audit, {makeEntry(3), refused, makeEntry(1)});
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 3);
        m_fixture->changes().filterColumn(QAV::OutcomeColumn, {WQ::FilterOneOf, {"被拒绝"}});
        QCOMPARE(HistoryFixture::exported(m_fixture->changes()),
                 QStringList(
                     {"时间,用户,账号组,类型,操作,结果,说明",
                      QAV::timeText(refused->at) + ",李岚（lan）,组8,账号组,编辑,被拒绝,\"没有权限，\"\"只读\"\"\""}));
        // Each menu offers it.
        for (const char* const name : {"修改记录", "变更内容", "一致性检查结果", "账号组列表", "用户列表"}) {
            QVERIFY2(m_fixture->table(name).menuFlags() & WQ::MenuExport, name);
        }
    }

    void theLayoutIsKept()
    {
        m_fixture->open();
        m_fixture->changes().setColumnWidth(QAV::UserColumn, 321);
        m_fixture->comparison().setColumnWidth(2, 234);
        const QString param = m_fixture->panel->param();
        QAV::CHistoryPanel next(nullptr);
        next.setParam("nonsense;;;");
        next.setParam(param);
        QCOMPARE(next.param().section(';', 0, 2), param.section(';', 0, 2));
    }

    void aLateAnswerFindsNobody()
    {
        m_fixture->open();
        const auto query = m_fixture->take(DataType::Audit);
        m_fixture->panel.reset();
        m_fixture->answer(query, {makeEntry(1)});
        support::settleCallbacks();
    }

private:
    WQ::CLineEdit& edit(const QString& name) const { return dynamic_cast<WQ::CLineEdit&>(m_fixture->control(name)); }
    void type(const QString& name, const QString& text) const
    {
        support::settleCallbacks(); // what the list offers has come
        support::typeText(edit(name), text);
    }
    void choose(const QString& name, const QString& text) const
    {
        auto& box = dynamic_cast<WQ::CComboBox&>(m_fixture->control(name));
        QVERIFY(box.findText(text) >= 0);
        box.setCurrentIndex(box.findText(text));
    }
    /// What the last query asked for.
    nvservice::CQueryKey lastAsked() const
    {
        HistoryFixture::Query query = m_fixture->take(DataType::Audit);
        while (m_fixture->waiting(DataType::Audit) > 0) {
            query = m_fixture->take(DataType::Audit);
        }
        return HistoryFixture::conditionsOf(query);
    }
};

TEST_WITH_WIDGETS(HistoryChangesTest)
#include "tst_history_changes.moc"
