// SPDX-License-Identifier: Apache-2.0
#include "HistoryFixture.h"

#include "history/CComparison.h"
#include "history/Changes.h"
#include "support/TestProgram.h"
#include "support/qav/ServiceThread.h"
#include "support/wq/Widgets.h"

#include <WQ/CLineEdit.h>
#include <WQ/CMessageTip.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>
#include <nvservice/CInstitutionInfo.h>

#include <QAbstractButton>
#include <QAbstractItemModelTester>

#include <boost/make_shared.hpp>

#include <random>

using namespace history_test;
namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;

/// What is shown of one change, of two, and of the state at a time.
class HistoryDetailsTest : public HistoryTest
{
    Q_OBJECT

private slots:
    void anOpenedEntryShowsBothStatesWithoutWhatDidNotChange()
    {
        showEntries({makeEntry(3)});
        m_fixture->changes().setCurrentKey("SH|3");
        const auto query = m_fixture->take(HistoryFixture::Details);
        const auto key = HistoryFixture::conditionsOf(query);
        QCOMPARE(key.number(QueryCondition::Since), key.number(QueryCondition::Until));
        QCOMPARE(key.number(QueryCondition::Since), std::optional<std::int64_t>(makeEntry(3)->at));
        m_fixture->answer(query, {detailed(3, makeGroup(7, "旧名", {"1", "2"}), makeGroup(7, "新名", {"2", "3"}))});
        QTRY_COMPARE(areas(), QStringList({"账号组名", "账号", "账号"}));
        QCOMPARE(texts(QAV::ChangeColumn), QStringList({"修改", "移除", "新增"}));
        QCOMPARE(texts(QAV::BeforeColumn), QStringList({"旧名", "证券账号 1 户1", ""}));
        QCOMPARE(texts(QAV::AfterColumn), QStringList({"新名", "", "证券账号 3 户3"}));
        QVERIFY(m_fixture->isRead("李岚（lan） 编辑 账号组“组7”（3项变更，2项未变）"));
        m_fixture->click("显示未变的内容");
        QCOMPARE(areas(), QStringList({"账号组名", "所属机构", "账号", "账号", "账号"}));
        m_fixture->click("显示未变的内容");
        QCOMPARE(areas().size(), 3);
    }

    void whatIsSeenIsExported()
    {
        showEntries({makeEntry(3)});
        m_fixture->changes().setCurrentKey("SH|3");
        m_fixture->answer(HistoryFixture::Details,
                          {detailed(3, makeGroup(7, "旧名", {"1", "2"}), makeGroup(7, "新名", {"2", "3"}))});
        QTRY_COMPARE(areas().size(), 3);
        QCOMPARE(HistoryFixture::exported(m_fixture->comparison()),
                 QStringList({"项目,变更,变更前,变更后", "账号组名,修改,旧名,新名", "账号,移除,证券账号 1 户1,",
                              "账号,新增,,证券账号 3 户3"}));
        m_fixture->click("原始记录");
        QVERIFY(HistoryFixture::exported(m_fixture->comparison()).contains("groupName,修改,旧名,新名"));
    }

    void theRawRecordIsShownOnDemand()
    {
        showEntries({makeEntry(3)});
        m_fixture->changes().setCurrentKey("SH|3");
        m_fixture->answer(HistoryFixture::Details, {detailed(3, makeGroup(7, "旧名"), makeGroup(7, "新名", {"1"}))});
        QTRY_COMPARE(areas(), QStringList({"账号组名", "账号"}));
        m_fixture->click("原始记录");
        const int row = areas().indexOf("groupName");
        QVERIFY(row >= 0);
        QCOMPARE(texts(QAV::BeforeColumn)[row], QString("旧名"));
        QCOMPARE(texts(QAV::AfterColumn)[row], QString("新名"));
        QCOMPARE(texts(QAV::ChangeColumn)[row], QString("修改"));
        const int added = areas().indexOf("accounts.0.accountId");
        QCOMPARE(texts(QAV::ChangeColumn)[added], QString("新增"));
        QCOMPARE(texts(QAV::AfterColumn)[added], QString("1"));
        const int same = areas().indexOf("groupId");
        QCOMPARE(texts(QAV::ChangeColumn)[same], QString("未变"));
    }

    void aRecordThatTheUserKnowsNoPartsOfIsShownRaw()
    {
        showEntries({makeEntry(3, -1, DataType::Institution)});
        m_fixture->changes().setCurrentKey("SH|3");
        const auto institution = boost::make_shared<nvservice::CInstitutionInfo>();
        institution->name = "远山基金";
        m_fixture->answer(HistoryFixture::Details, {detailed(3, nullptr, institution)});
        QTRY_VERIFY(texts(QAV::AfterColumn).contains("远山基金"));
        QVERIFY(!m_fixture->button("恢复到此版本").isVisible());
    }

    void theEntryIsLookedForInAllPagesOfItsMillisecond()
    {
        showEntries({makeEntry(3)});
        m_fixture->changes().setCurrentKey("SH|3");
        m_fixture->answer(HistoryFixture::Details, {detailed(2, nullptr, makeGroup(7, "别的"))}, "d1");
        const auto query = m_fixture->take(HistoryFixture::Details);
        QCOMPARE(HistoryFixture::conditionsOf(query).value(QueryCondition::Cursor), std::string("d1"));
        m_fixture->answer(query, {detailed(3, nullptr, makeGroup(7, "新名"))});
        QTRY_COMPARE(texts(QAV::AfterColumn).value(0), QString("新名"));
    }

    void whyNothingIsShownIsSaid()
    {
        showEntries({makeEntry(3), makeEntry(2)});
        m_fixture->changes().setCurrentKey("SH|3");
        const auto withheld = detailed(3, nullptr, nullptr);
        withheld->withheldReason = "您没有查看风控设置的权限";
        m_fixture->answer(HistoryFixture::Details, {withheld});
        QTRY_VERIFY(m_fixture->isRead("您没有查看风控设置的权限"));
        m_fixture->changes().setCurrentKey("SH|2");
        m_fixture->fail(m_fixture->take(HistoryFixture::Details), "断线");
        QTRY_VERIFY(m_fixture->isRead("查询失败：断线"));
        QCOMPARE(m_fixture->emptyText(m_fixture->comparison()), QString("查询失败：断线"));
    }

    void aRefusedAttemptIsShownWithoutAWayToRestoreIt()
    {
        const auto refused = makeEntry(3);
        refused->outcome = 10;
        showEntries({refused});
        m_fixture->changes().setCurrentKey("SH|3");
        const auto details = detailed(3, makeGroup(7, "旧名"), makeGroup(7, "新名"));
        details->outcome = 10;
        m_fixture->answer(HistoryFixture::Details, {details});
        QTRY_COMPARE(texts(QAV::AfterColumn), QStringList("新名"));
        QCOMPARE(m_fixture->comparison().dataModel()->getHeaderText(QAV::AfterColumn), QString("被拒绝的内容"));
        QVERIFY(m_fixture->isRead("，被拒绝"));
        QVERIFY(!m_fixture->button("恢复到此版本").isVisible());
    }

    void aChangeOfTheHistoryIsComparedWithTheOneBefore()
    {
        showHistory({makeChange(5), makeChange(4, 7, DataType::GroupRiskConfig), makeChange(3)});
        m_fixture->changes().setCurrentKey(key(*makeChange(5)));
        const auto before = m_fixture->take(DataType::GroupState);
        const auto after = m_fixture->take(DataType::GroupState);
        QCOMPARE(HistoryFixture::conditionsOf(after).number(QueryCondition::GroupRevision),
                 std::optional<std::int64_t>(5));
        QCOMPARE(HistoryFixture::conditionsOf(before).number(QueryCondition::GroupRevision),
                 std::optional<std::int64_t>(3));
        m_fixture->answer(before, {makeGroup(7, "旧名", {}, 3)});
        support::settleCallbacks();
        QVERIFY(m_fixture->isRead("正在加载"));
        m_fixture->answer(after, {makeGroup(7, "新名", {}, 5)});
        QTRY_COMPARE(texts(QAV::BeforeColumn), QStringList("旧名"));
        QCOMPARE(texts(QAV::AfterColumn), QStringList("新名"));
    }

    void withoutTheOneBeforeInTheTableTheTimeBeforeCounts()
    {
        showHistory({makeChange(5, 7, DataType::GroupRiskConfig)});
        m_fixture->changes().setCurrentKey(key(*makeChange(5, 7, DataType::GroupRiskConfig)));
        const auto before = m_fixture->take(DataType::GroupState);
        const auto after = m_fixture->take(DataType::GroupState);
        QCOMPARE(HistoryFixture::conditionsOf(after).number(QueryCondition::ConfigRevision),
                 std::optional<std::int64_t>(5));
        QCOMPARE(HistoryFixture::conditionsOf(before).number(QueryCondition::At),
                 std::optional<std::int64_t>(makeChange(5)->changedAt - 1));
        m_fixture->answer(after, {makeConfig(7, {"600001"}, 5)});
        m_fixture->answer(before, {makeGroup(7, "组"), makeConfig(7, {}, 4)});
        QTRY_COMPARE(texts(QAV::AfterColumn), QStringList("黑名单 600001 证券600001 双向"));
    }

    void aNewGroupAndADeletedOneHaveOneState()
    {
        const auto added = makeChange(3);
        added->operation = nvservice::EZvDataOperation::Add;
        const auto removed = makeChange(5);
        removed->operation = nvservice::EZvDataOperation::Delete;
        showHistory({removed, added});
        m_fixture->changes().setCurrentKey(key(*added));
        m_fixture->answer(DataType::GroupState, {makeGroup(7, "组", {}, 3)});
        QTRY_COMPARE(texts(QAV::ChangeColumn), QStringList({"新增", "新增"}));
        m_fixture->changes().setCurrentKey(key(*removed));
        const auto query = m_fixture->take(DataType::GroupState); // the deletion itself cannot be restored
        QCOMPARE(HistoryFixture::conditionsOf(query).number(QueryCondition::GroupRevision),
                 std::optional<std::int64_t>(3));
        m_fixture->answer(query, {makeGroup(7, "组", {}, 3)});
        QTRY_COMPARE(texts(QAV::ChangeColumn), QStringList({"移除", "移除"}));
        QCOMPARE(m_fixture->waiting(DataType::GroupState), 0);
    }

    void twoChangesOfChoiceAreCompared()
    {
        showEntries({makeEntry(5), makeEntry(4), makeEntry(3)});
        selectRows({0, 2});
        m_fixture->click("比较所选两项");
        const auto details = takeBothDetails(makeEntry(3)->at);
        m_fixture->answer(details.second, {detailed(5, makeGroup(7, "四"), makeGroup(7, "五"))});
        m_fixture->answer(details.first, {detailed(3, makeGroup(7, "二"), makeGroup(7, "三"))});
        QTRY_COMPARE(texts(QAV::BeforeColumn), QStringList("三"));
        QCOMPARE(texts(QAV::AfterColumn), QStringList("五"));
        QCOMPARE(m_fixture->comparison().dataModel()->getHeaderText(QAV::BeforeColumn),
                 QAV::timeText(makeEntry(3)->at));
        QVERIFY(!m_fixture->button("恢复到此版本").isVisible());
    }

    void changesOfDifferentGroupsAreNotCompared()
    {
        showEntries({makeEntry(5, 8), makeEntry(4)});
        selectRows({0, 1});
        m_fixture->click("比较所选两项");
        QVERIFY(m_fixture->isRead("请选择同一账号组"));
        selectRows({0});
        m_fixture->click("比较所选两项");
        QVERIFY(WQ::CMessageTip::tipOf(&m_fixture->button("比较所选两项")));
    }

    void theStateAtATimeIsShownReadOnly()
    {
        showEntries({makeEntry(3)});
        auto& at = dynamic_cast<WQ::CLineEdit&>(m_fixture->control("查看状态的时间"));
        support::typeText(at, "2026-01-05 09:30");
        m_fixture->click("查看当时状态");
        QVERIFY(WQ::CMessageTip::tipOf(&at)); // of which group?
        m_fixture->changes().setCurrentKey("SH|3");
        m_fixture->take(HistoryFixture::Details);
        QTest::keyClick(&at, Qt::Key_Return);
        const auto query = m_fixture->take(DataType::GroupState);
        QCOMPARE(HistoryFixture::conditionsOf(query).number(QueryCondition::Group), std::optional<std::int64_t>(7));
        QCOMPARE(HistoryFixture::conditionsOf(query).number(QueryCondition::At),
                 std::optional<std::int64_t>(QDateTime({2026, 1, 5}, {9, 30, 59, 999}).toMSecsSinceEpoch()));
        m_fixture->answer(query, {makeGroup(7, "当时的组", {"1"}, 2), makeConfig(7, {"600001"}, 4)});
        QTRY_COMPARE(areas().mid(0, 4), QStringList({"账号组名", "所属机构", "账号", "黑白名单（证券）"}));
        QCOMPARE(texts(QAV::AfterColumn)[0], QString("当时的组"));
        QVERIFY(!m_fixture->comparison().isColumnVisible(QAV::BeforeColumn));
        QVERIFY(!m_fixture->comparison().isColumnVisible(QAV::ChangeColumn));
        QVERIFY(m_fixture->isRead("只读"));
        const auto* const model = m_fixture->comparison().dataModel();
        QCOMPARE(model->getDataByRow(0)->getTextColor(QAV::AfterColumn),
                 WQ::CUiResourceManager::instance()->colour(WQ::key::Text));
        at.setText("gestern");
        m_fixture->click("查看当时状态");
        QVERIFY(WQ::CMessageTip::tipOf(&at)->text().contains("请输入日期或时间"));
        QCOMPARE(m_fixture->waiting(DataType::GroupState), 0);
    }

    void enterLeadsToWhatChanged()
    {
        showEntries({makeEntry(3)});
        m_fixture->changes().view()->setFocus();
        m_fixture->changes().setCurrentKey("SH|3");
        QTest::keyClick(m_fixture->changes().view(), Qt::Key_Return);
        QTRY_VERIFY(m_fixture->comparison().view()->hasFocus());
    }

    /// Details are asked for in any order and answered late, twice, with failures or never: what is shown belongs to
    /// the row that was opened last.
    void whatIsShownBelongsToTheRowThatWasOpenedLast()
    {
        std::vector<nvservice::IDataPtr> entries;
        for (int id = 9; id >= 1; --id) {
            entries.push_back(makeEntry(id));
        }
        showEntries(entries);
        int last = 0;
        for (unsigned seed = 1; seed <= 40; ++seed) {
            std::mt19937 random(seed);
            std::vector<std::pair<int, HistoryFixture::Query>> open;
            bool isAsked = false;
            QString expected;
            for (int step = 0; step < 25; ++step) {
                if (open.empty() || random() % 2 == 0) {
                    const int id = 1 + int(random() % 9);
                    if (id == last) {
                        continue;
                    }
                    last = id;
                    isAsked = true;
                    expected.clear();
                    m_fixture->changes().setCurrentKey(QString("SH|%1").arg(id));
                    open.emplace_back(id, m_fixture->take(HistoryFixture::Details));
                } else {
                    const std::size_t chosen = random() % open.size();
                    const auto [id, query] = open[chosen];
                    const bool isLatest = chosen + 1 == open.size() && id == last && expected.isEmpty();
                    const QString text = QString("%1#%2").arg(QString::number(id), QString::number(step));
                    const auto reply = detailed(id, nullptr, makeGroup(7, text.toStdString()));
                    switch (random() % 3) {
                    case 0:
                        m_fixture->answer(query, {reply});
                        break;
                    case 1:
                        m_fixture->answer(query, {reply});
                        m_fixture->answer(query, {detailed(id, nullptr, makeGroup(7, "第二次"))});
                        break;
                    default:
                        m_fixture->fail(query, text.toStdString());
                    }
                    open.erase(open.begin() + std::ptrdiff_t(chosen));
                    expected = isLatest ? text : expected;
                    support::settleCallbacks();
                }
                if (!expected.isEmpty()) {
                    const bool isShown = texts(QAV::AfterColumn).value(0) == expected || m_fixture->isRead(expected);
                    QVERIFY2(isShown, qPrintable(QString("seed %1: %2").arg(QString::number(seed), expected)));
                } else if (isAsked) {
                    QVERIFY2(m_fixture->isRead("正在加载"), qPrintable(QString::number(seed)));
                }
            }
        }
    }

    void theModelOfTheComparisonKeepsTheRulesOfItsViews()
    {
        showEntries({makeEntry(3)});
        const QAbstractItemModelTester tester(m_fixture->comparison().dataModel(),
                                              QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_fixture->changes().setCurrentKey("SH|3");
        m_fixture->answer(HistoryFixture::Details,
                          {detailed(3, makeGroup(7, "旧名", {"1", "2"}), makeGroup(7, "新名"))});
        QTRY_COMPARE(areas().size(), 3);
        m_fixture->click("显示未变的内容");
        m_fixture->click("原始记录");
        QVERIFY(areas().size() > 4);
    }

private:
    static boost::shared_ptr<nvservice::CAuditEntry> detailed(int id, nvservice::IDataPtr before,
                                                              nvservice::IDataPtr after)
    {
        auto entry = makeEntry(id);
        entry->before = std::move(before);
        entry->after = std::move(after);
        return entry;
    }
    static QString key(const nvservice::CChangeInfo& change)
    {
        const auto copy = change.copy();
        copy->setSystemTag("SH");
        return QString::fromStdString(copy->getKey());
    }
    void showEntries(const std::vector<nvservice::IDataPtr>& entries) const
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, entries);
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), int(entries.size()));
    }
    void showHistory(const std::vector<nvservice::IDataPtr>& changes) const
    {
        m_fixture->open(NoAudit);
        support::settleCallbacks();
        support::typeText(m_fixture->control("账号组"), "wenjian");
        m_fixture->answer(DataType::GroupHistory, changes);
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), int(changes.size()));
    }
    void selectRows(const QVector<int>& rows) const
    {
        auto* const selection = m_fixture->changes().view()->selectionModel();
        selection->clearSelection();
        for (const int row : rows) {
            selection->select(m_fixture->changes().dataModel()->index(row, 0),
                              QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
    }
    /// The queries of two entries: the one of this time, and the other.
    std::pair<HistoryFixture::Query, HistoryFixture::Query> takeBothDetails(std::int64_t at) const
    {
        const auto a = m_fixture->take(HistoryFixture::Details);
        const auto b = m_fixture->take(HistoryFixture::Details);
        const bool isFirst = HistoryFixture::conditionsOf(a).number(QueryCondition::Since) == at;
        return isFirst ? std::pair(a, b) : std::pair(b, a);
    }
    QStringList texts(int column) const { return HistoryFixture::shown(m_fixture->comparison(), column); }
    QStringList areas() const { return texts(QAV::AreaColumn); }
};

TEST_WITH_WIDGETS(HistoryDetailsTest)
#include "tst_history_details.moc"
