// SPDX-License-Identifier: Apache-2.0
#include "HistoryFixture.h"

#include "history/Changes.h"
#include "support/TestProgram.h"
#include "support/qav/ServiceThread.h"

#include <WQ/CComboBox.h>
#include <WQ/CLineEdit.h>

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
        m_fixture->type("账号组", "wenjian");
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
        m_fixture->type("账号组", "wenjian");
        m_fixture->choose("类型", "风控配置");
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
        m_fixture->choose("类型", "风控配置");
        QCOMPARE(m_fixture->lastAsked().number(QueryCondition::RecordType),
                 std::optional<std::int64_t>(DataType::GroupRiskConfig));
        m_fixture->choose("结果", "被拒绝");
        QCOMPARE(m_fixture->lastAsked().value(QueryCondition::Outcome), std::string("refused"));
        m_fixture->choose("结果", "成功");
        QCOMPARE(m_fixture->lastAsked().value(QueryCondition::Outcome), std::string("ok"));
        m_fixture->choose("时间", "最近7天");
        const std::int64_t since = QDate::currentDate().addDays(-6).startOfDay().toMSecsSinceEpoch();
        QCOMPARE(m_fixture->lastAsked().number(QueryCondition::Since), std::optional<std::int64_t>(since));
        m_fixture->edit("截止时间").setText("2026-01-05 09:30");
        const std::int64_t until = QDateTime({2026, 1, 5}, {9, 30, 59, 999}).toMSecsSinceEpoch();
        const nvservice::CQueryKey asked = m_fixture->lastAsked();
        QCOMPARE(asked.number(QueryCondition::Until), std::optional<std::int64_t>(until));
        QCOMPARE(asked.number(QueryCondition::Since), std::optional<std::int64_t>(since));
        QCOMPARE(static_cast<WQ::CComboBox&>(m_fixture->control("时间")).currentText(), QString("自定义"));
        m_fixture->choose("时间", "全部时间");
        QVERIFY(!m_fixture->lastAsked().has(QueryCondition::Since));
        m_fixture->type("账号组", "xiamen");
        QCOMPARE(m_fixture->lastAsked().number(QueryCondition::Group), std::optional<std::int64_t>(9));
    }

    void usersAreFoundByPinyinAndByTheirLogInName()
    {
        m_fixture->open();
        const auto other = makeEntry(2);
        other->userId = "chen";
        other->userName = "陈重";
        m_fixture->answer(DataType::Audit, {makeEntry(3), other});
        QTRY_VERIFY(m_fixture->isRead("共2条"));
        m_fixture->type("用户", "lilan");
        QCOMPARE(m_fixture->lastAsked().value(QueryCondition::User), std::string("lan"));
        m_fixture->edit("用户").clear();
        m_fixture->type("用户", "nobody");
        QTest::keyClick(&m_fixture->edit("用户"), Qt::Key_Return);
        QCOMPARE(m_fixture->lastAsked().value(QueryCondition::User), std::string("nobody"));
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
};

TEST_WITH_WIDGETS(HistoryChangesTest)
#include "tst_history_changes.moc"
