// SPDX-License-Identifier: Apache-2.0
#include "HistoryFixture.h"

#include "history/Changes.h"
#include "support/TestProgram.h"
#include "support/qav/ServiceThread.h"

#include <QAbstractButton>
#include <QAbstractItemModelTester>
#include <QScrollBar>

using namespace history_test;
namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;

/// The list of changes grows in pages and is refreshed.
class HistoryPagesTest : public HistoryTest
{
    Q_OBJECT

private slots:
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
        QVERIFY(!m_fixture->isOffered("重试"));
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
        QCOMPARE(m_fixture->lastAsked().value(QueryCondition::Cursor), std::string("c1"));
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
        m_fixture->choose("结果", "成功");
        const auto latest = m_fixture->take(DataType::Audit);
        m_fixture->answer(old, {makeEntry(1)});
        m_fixture->answer(latest, {makeEntry(2)});
        m_fixture->answer(latest, {makeEntry(3)}); // doubled
        QTRY_VERIFY(m_fixture->isRead("共1条"));
        support::settleCallbacks();
        QCOMPARE(m_fixture->changes().dataModel()->getDataByRow(0)->getKey(), QString("SH|2"));
        QCOMPARE(m_fixture->changes().dataModel()->rowCount(), 1);
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
        m_fixture->choose("结果", "成功");
        m_fixture->answer(DataType::Audit, {});
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 0);
    }

    void whatAFilterHidesLeavesTheRestToBeLoaded()
    {
        openFiltered();
        QVERIFY(m_fixture->isRead("已加载100条，筛选出0条"));
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0); // the user decides
        m_fixture->click("加载更多");
        QVERIFY(m_fixture->isOffered("停止"));
        QVERIFY(!m_fixture->isOffered("加载更多"));
        QVERIFY(m_fixture->isRead("正在加载…已加载100条，筛选出0条"));
        answerPage("c1", makeEntries(800, 701), "c2");
        answerPage("c2", makeEntries(700, 691, 8), "c3"); // not yet enough to scroll
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 10);
        QVERIFY(m_fixture->isRead("正在加载…已加载210条，筛选出10条"));
        answerPage("c3", makeEntries(600, 501, 8), "c4");
        QTRY_VERIFY(m_fixture->isRead("已加载310条，筛选出110条"));
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0); // there is enough to scroll
        m_fixture->click("加载更多");
        answerPage("c4", makeEntries(500, 401), "c5");
        QTRY_VERIFY(m_fixture->isRead("已加载410条，筛选出110条"));
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0); // one page at a time as long as there is
    }

    void loadingEndsWithTheData()
    {
        openFiltered();
        m_fixture->click("加载更多");
        answerPage("c1", makeEntries(800, 799, 8));
        QTRY_VERIFY(m_fixture->isRead("共102条，筛选出2条"));
        QVERIFY(!m_fixture->isOffered("加载更多"));
        QVERIFY(!m_fixture->isOffered("停止"));
        m_fixture->changes().dataModel()->clearFilter();
        QVERIFY(m_fixture->isRead("共102条"));
        QVERIFY(!m_fixture->isRead("筛选出"));
    }

    void theUserStopsTheLoading()
    {
        openFiltered();
        m_fixture->click("加载更多");
        answerPage("c1", makeEntries(800, 701), "c2");
        const auto query = m_fixture->take(DataType::Audit);
        m_fixture->click("停止");
        QVERIFY(m_fixture->isOffered("加载更多"));
        m_fixture->answer(query, makeEntries(700, 691, 8), "c3");
        QTRY_VERIFY(m_fixture->isRead("已加载210条，筛选出10条")); // what is on its way is not lost
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        m_fixture->click("加载更多");
        answerPage("c3", {});
        QTRY_VERIFY(m_fixture->isRead("共210条，筛选出10条"));
    }

    void whoScrollsOnAfterAStopWantsMore()
    {
        openFiltered();
        m_fixture->click("加载更多");
        answerPage("c1", makeEntries(800, 781, 8), "c2");
        QTRY_VERIFY(m_fixture->isRead("正在加载…已加载120条，筛选出20条"));
        m_fixture->click("停止");
        QScrollBar& bar = *m_fixture->changes().view()->verticalScrollBar();
        bar.setValue(1);
        QVERIFY(m_fixture->isOffered("停止"));
        answerPage("c2", {}, "c3");
        QCOMPARE(m_fixture->lastAsked().value(QueryCondition::Cursor), std::string("c3"));
    }

    void whoMovesAmongWhatIsThereWantsNoMore()
    {
        m_fixture->open();
        m_fixture->changes().filterColumn(QAV::GroupColumn, {WQ::FilterOneOf, {"组8"}});
        m_fixture->answer(DataType::Audit, makeEntries(900, 801, 8), "c1");
        QTRY_VERIFY(m_fixture->isRead("已加载100条，筛选出100条"));
        QScrollBar& bar = *m_fixture->changes().view()->verticalScrollBar();
        bar.setValue(1);
        m_fixture->click("加载更多");
        m_fixture->click("停止");
        bar.setValue(2);
        QVERIFY(m_fixture->isOffered("加载更多"));
        answerPage("c1", makeEntries(800, 701), "c2");
        QTRY_VERIFY(m_fixture->isRead("已加载200条，筛选出100条"));
        QVERIFY(m_fixture->isOffered("加载更多"));
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
    }

    void aRefreshAtTheEndAsksForNoMore()
    {
        openFiltered();
        m_fixture->click("加载更多");
        answerPage("c1", makeEntries(800, 741, 8), "c2");
        QTRY_VERIFY(m_fixture->isRead("已加载160条，筛选出60条"));
        QScrollBar& bar = *m_fixture->changes().view()->verticalScrollBar();
        bar.setValue(bar.maximum());
        const auto page = m_fixture->take(DataType::Audit);
        m_fixture->click("停止");
        m_fixture->answer(page, makeEntries(740, 731), "c3");
        QTRY_VERIFY(m_fixture->isRead("已加载170条，筛选出60条"));
        m_fixture->click("刷新");
        m_fixture->answer(DataType::Audit, makeEntries(901, 802), "c9");
        QTRY_VERIFY(m_fixture->isRead("已加载171条，筛选出60条"));
        QCOMPARE(bar.value(), bar.maximum());
        QVERIFY(m_fixture->isOffered("加载更多"));
        m_fixture->panel->resize(1200, 700);
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
    }

    void aFilterThatMovesTheViewAsksForNoMore()
    {
        m_fixture->open();
        auto entries = makeEntries(900, 801);
        for (std::size_t index = 0; index < entries.size(); index += 4) {
            entries[index] = makeEntry(900 - int(index), 8);
        }
        m_fixture->answer(DataType::Audit, entries, "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        QScrollBar& bar = *m_fixture->changes().view()->verticalScrollBar();
        bar.setValue(bar.maximum() - 2 * bar.pageStep());
        m_fixture->changes().filterColumn(QAV::GroupColumn, {WQ::FilterOneOf, {"组8"}});
        QVERIFY(bar.maximum() > 0);
        QCOMPARE(bar.value(), bar.maximum()); // where it stood there are no rows any more
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        QVERIFY(m_fixture->isOffered("加载更多"));
    }

    void theLoadingGoesOnAfterAFailure()
    {
        openFiltered();
        m_fixture->click("加载更多");
        m_fixture->fail(m_fixture->take(DataType::Audit), "断线");
        QTRY_VERIFY(m_fixture->isRead("查询失败：断线"));
        QVERIFY(!m_fixture->isOffered("停止"));
        m_fixture->click("重试");
        QVERIFY(m_fixture->isOffered("停止"));
        answerPage("c1", makeEntries(800, 701), "c2");
        QCOMPARE(m_fixture->lastAsked().value(QueryCondition::Cursor), std::string("c2"));
    }

    void anotherFilterEndsTheLoading()
    {
        openFiltered();
        m_fixture->click("加载更多");
        const auto query = m_fixture->take(DataType::Audit);
        m_fixture->changes().filterColumn(QAV::GroupColumn, {WQ::FilterOneOf, {"组9"}});
        QVERIFY(m_fixture->isOffered("加载更多"));
        m_fixture->answer(query, makeEntries(800, 701), "c2");
        QTRY_VERIFY(m_fixture->isRead("已加载200条，筛选出0条"));
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
    }

    void withoutTheFilterTheViewIsFilled()
    {
        m_fixture->open();
        m_fixture->changes().filterColumn(QAV::GroupColumn, {WQ::FilterOneOf, {"组8"}});
        m_fixture->answer(DataType::Audit, makeEntries(900, 898), "c1");
        QTRY_VERIFY(m_fixture->isRead("已加载3条，筛选出0条"));
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        m_fixture->changes().dataModel()->clearFilter();
        QVERIFY(!m_fixture->isOffered("加载更多"));
        QVERIFY(m_fixture->isRead("正在加载…"));
        answerPage("c1", makeEntries(800, 701), "c2");
        QTRY_VERIFY(m_fixture->isRead("已显示103条，向下滚动加载更多"));
        QVERIFY(!m_fixture->isOffered("停止"));
    }

    void whoScrollsInWhatAFilterLeavesIsGivenMore()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, makeEntries(900, 801, 8), "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        QScrollBar& bar = *m_fixture->changes().view()->verticalScrollBar();
        bar.setValue(bar.pageStep());
        m_fixture->changes().filterColumn(QAV::RemarkColumn, {WQ::FilterContains, {"nothing"}});
        QCOMPARE(bar.value(), 0); // moved by nobody
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        m_fixture->changes().filterColumn(QAV::RemarkColumn, {WQ::FilterNone, {}});
        m_fixture->changes().filterColumn(QAV::GroupColumn, {WQ::FilterOneOf, {"组8"}});
        bar.setValue(bar.maximum());
        QVERIFY(m_fixture->isOffered("停止"));
        answerPage("c1", makeEntries(800, 701), "c2");
        answerPage("c2", makeEntries(700, 601, 8), "c3");
        QTRY_VERIFY(m_fixture->isRead("已加载300条，筛选出200条"));
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
    }

    void aRefreshDoesNotEndTheLoading()
    {
        openFiltered();
        m_fixture->click("加载更多");
        const auto page = m_fixture->take(DataType::Audit);
        m_fixture->click("刷新");
        m_fixture->answer(DataType::Audit, makeEntries(901, 802), "c9");
        QTRY_VERIFY(m_fixture->isRead("正在加载…已加载101条，筛选出0条"));
        QVERIFY(m_fixture->isOffered("停止"));
        m_fixture->answer(page, makeEntries(800, 701), "c2");
        QCOMPARE(m_fixture->lastAsked().value(QueryCondition::Cursor), std::string("c2"));
    }

    void anotherSearchLoadsItsFirstPageAlone()
    {
        openFiltered();
        m_fixture->click("加载更多");
        m_fixture->take(DataType::Audit);
        m_fixture->choose("结果", "成功");
        QVERIFY(!m_fixture->isOffered("停止"));
        m_fixture->answer(DataType::Audit, makeEntries(900, 801), "c1");
        QTRY_VERIFY(m_fixture->isRead("已加载100条，筛选出0条"));
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
    }

    void aLargerViewIsFilled()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, makeEntries(300, 241), "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 60);
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        m_fixture->panel->resize(1200, 4000);
        QCOMPARE(m_fixture->lastAsked().value(QueryCondition::Cursor), std::string("c1"));
    }

private:
    /// A filter hides all that has been loaded, and there is more.
    void openFiltered() const
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, makeEntries(900, 801), "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        m_fixture->changes().filterColumn(QAV::GroupColumn, {WQ::FilterOneOf, {"组8"}});
        QVERIFY(m_fixture->isOffered("加载更多"));
    }
    /// Answers the query of the page that begins at the cursor.
    void answerPage(const std::string& cursor, const std::vector<nvservice::IDataPtr>& entries,
                    const std::string& next = {}) const
    {
        const auto query = m_fixture->take(DataType::Audit);
        QCOMPARE(m_fixture->conditionsOf(query).value(QueryCondition::Cursor), cursor);
        m_fixture->answer(query, entries, next);
    }
};

TEST_WITH_WIDGETS(HistoryPagesTest)
#include "tst_history_pages.moc"
