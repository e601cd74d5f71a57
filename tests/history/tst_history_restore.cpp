// SPDX-License-Identifier: Apache-2.0
#include "HistoryFixture.h"

#include "history/CComparison.h"
#include "history/Changes.h"
#include "support/TestProgram.h"
#include "support/qav/ServiceThread.h"
#include "support/wq/ActingPresenter.h"
#include "support/wq/Widgets.h"

#include <WQ/CMessageTip.h>
#include <nvservice/CGroupRestore.h>

#include <QAbstractButton>
#include <QScrollBar>

#include <boost/make_shared.hpp>

using namespace history_test;
namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;

/// “恢复到此版本”: what would change, what stands against it, the question, the restore, the new revision.
class HistoryRestoreTest : public HistoryTest
{
    Q_OBJECT

private slots:
    void theRestoreIsShownThenAskedForThenDone()
    {
        openEntry();
        preview({});
        QVERIFY(m_fixture->isRead("恢复账号组“组7”将要发生的变更（1项变更"));
        QCOMPARE(texts(QAV::BeforeColumn), QStringList("现名"));
        QCOMPARE(texts(QAV::AfterColumn), QStringList("旧名"));
        QCOMPARE(m_fixture->comparison().dataModel()->getHeaderText(QAV::AfterColumn), QString("恢复以后"));
        QCOMPARE(m_fixture->operations.size(), std::size_t(0));
        expectQuestion(QMessageBox::Yes);
        m_fixture->click("执行恢复");
        QCOMPARE(m_fixture->operations.size(), std::size_t(1));
        const auto operation = m_fixture->operations.front();
        QCOMPARE(operation.request.dataType, DataType::GroupRestore);
        const auto sent = boost::dynamic_pointer_cast<nvservice::CGroupRestore>(operation.request.data);
        QCOMPARE(sent->groupId, 7);
        QCOMPARE(sent->groupRevision, std::int64_t(2));
        QCOMPARE(sent->seenGroupRevision, std::int64_t(9)); // as the service has said
        operation.handler({});
        m_fixture->answer(DataType::Audit, {makeEntry(10), makeEntry(3)});
        const auto details = m_fixture->take(HistoryFixture::Details);
        QCOMPARE(HistoryFixture::conditionsOf(details).number(QueryCondition::Since),
                 std::optional<std::int64_t>(makeEntry(10)->at));
        QCOMPARE(m_fixture->changes().currentKey(), QString("SH|10"));
    }

    void nothingIsDoneWithoutAYes()
    {
        openEntry();
        preview({});
        expectQuestion(QMessageBox::No);
        m_fixture->click("执行恢复");
        support::settleCallbacks();
        QCOMPARE(m_fixture->operations.size(), std::size_t(0));
        m_fixture->click("放弃恢复");
        QVERIFY(m_fixture->isRead("编辑 账号组“组7”"));
        QVERIFY(m_fixture->button("恢复到此版本").isVisible());
        QVERIFY(!m_fixture->button("执行恢复").isVisible());
    }

    void whatStandsAgainstItIsListedAndItCannotBeDone()
    {
        openEntry();
        preview({"账号 0017 已销户", "账号组名“旧名”已被使用"});
        QCOMPARE(texts(QAV::AreaColumn), QStringList({"现在不能恢复", "现在不能恢复", "账号组名"}));
        QCOMPARE(texts(QAV::AfterColumn).mid(0, 2), QStringList({"账号 0017 已销户", "账号组名“旧名”已被使用"}));
        QVERIFY(m_fixture->button("执行恢复").isVisible());
        QVERIFY(!m_fixture->button("执行恢复").isEnabled());
    }

    void aStateThatIsThereAlreadyIsNotRestored()
    {
        openEntry();
        preview({}, makeGroup(7, "旧名", {}, 9));
        QVERIFY(m_fixture->isRead("0项变更"));
        QVERIFY(!m_fixture->button("执行恢复").isEnabled());
    }

    void aDeletedGroupComesBackAsAWhole()
    {
        openEntry();
        m_fixture->click("恢复到此版本");
        const auto restore = restoreRecord({});
        restore->seenGroupRevision = 0;
        m_fixture->answer(DataType::GroupRestore, {restore, makeGroup(7, "旧名", {"1"}, 10)});
        m_fixture->fail(m_fixture->take(DataType::GroupState), "账号组7已被删除", utils::EErrorCode::NotFound);
        QTRY_COMPARE(texts(QAV::ChangeColumn), QStringList({"新增", "新增", "新增"}));
        expectQuestion(QMessageBox::Yes);
        m_fixture->click("执行恢复");
        m_fixture->operations.back().handler({});
        const auto added = makeEntry(10, 70); // it has another id
        added->operation = nvservice::EZvDataOperation::Add;
        m_fixture->answer(DataType::Audit, {makeEntry(11, 8), added});
        QTRY_COMPARE(m_fixture->changes().currentKey(), QString("SH|10"));
    }

    void aRefusedRestoreSaysWhyAndShowsWhatStandsAgainstItNow()
    {
        openEntry();
        preview({});
        expectQuestion(QMessageBox::Yes);
        m_boxes->expectMessage(QMessageBox::Critical, "恢复", "恢复失败：王芳刚刚修改了它", QMessageBox::Ok,
                               QMessageBox::Ok);
        m_fixture->click("执行恢复");
        m_fixture->operations.back().handler(support::replyWithError(utils::EErrorCode::Conflict, "王芳刚刚修改了它"));
        m_fixture->answer(DataType::GroupRestore, {restoreRecord({"王芳"}), makeGroup(7, "旧名")});
        m_fixture->answer(DataType::GroupState, {makeGroup(7, "王芳的名")});
        QTRY_COMPARE(texts(QAV::AfterColumn), QStringList({"王芳", "旧名"}));
    }

    void aPageThatComesFirstIsNotTakenForTheNewRevision()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, makeEntries(300, 201), "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        openChange(300);
        preview({});
        QScrollBar& bar = *m_fixture->changes().view()->verticalScrollBar();
        bar.setValue(bar.maximum());
        const auto page = m_fixture->take(DataType::Audit);
        expectQuestion(QMessageBox::Yes);
        m_fixture->click("执行恢复");
        m_fixture->operations.back().handler({});
        const auto newest = m_fixture->take(DataType::Audit);
        m_fixture->answer(page, makeEntries(200, 101), "c2");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 200);
        QCOMPARE(m_fixture->changes().currentKey(), QString("SH|300"));
        m_fixture->answer(newest, makeEntries(301, 202), "c3");
        QTRY_COMPARE(m_fixture->changes().currentKey(), QString("SH|301"));
    }

    void whoHasGoneOnIsNotTakenBackByTheOutcome_data()
    {
        const support::DataRows<bool> row("isDone");
        row("restored", true);
        row("refused", false);
    }
    void whoHasGoneOnIsNotTakenBackByTheOutcome()
    {
        QFETCH(bool, isDone);
        openEntry();
        preview({});
        expectQuestion(QMessageBox::Yes);
        m_fixture->click("执行恢复");
        m_fixture->changes().setCurrentKey("SH|1");
        const auto details = m_fixture->take(HistoryFixture::Details);
        const auto entry = makeEntry(1);
        entry->after = makeGroup(7, "另一条", {}, 1);
        m_fixture->answer(details, {entry});
        QTRY_COMPARE(texts(QAV::AfterColumn).value(0), QString("另一条"));
        if (!isDone) {
            m_boxes->expectMessage(QMessageBox::Critical, "恢复", "恢复失败：不行", QMessageBox::Ok, QMessageBox::Ok);
        }
        m_fixture->operations.back().handler(isDone ? QAV::ITransport::Reply{}
                                                    : support::replyWithError(utils::EErrorCode::Conflict, "不行"));
        support::settleCallbacks();
        QCOMPARE(texts(QAV::AfterColumn).value(0), QString("另一条"));
        QCOMPARE(m_fixture->waiting(DataType::GroupRestore), 0);
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        const QList<WQ::CMessageTip*> tips = m_fixture->panel->findChildren<WQ::CMessageTip*>();
        QCOMPARE(tips.size(), isDone ? 1 : 0);
    }

    void theOutcomeOfAnotherServerOpensNothingHere()
    {
        m_fixture->addShenzhen();
        openEntry();
        preview({});
        expectQuestion(QMessageBox::Yes);
        m_fixture->click("执行恢复");
        m_fixture->panel->switchSystem(2, QString::fromStdString(Shenzhen));
        m_fixture->answer(DataType::Audit, {makeEntry(5)});
        QTRY_VERIFY(m_fixture->isRead("共1条"));
        m_fixture->operations.back().handler({});
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        QCOMPARE(m_fixture->waiting(HistoryFixture::Details), 0);
    }

    void thePanelMayBeClosedWhileABoxIsOpen()
    {
        openEntry();
        preview({});
        support::ActingPresenter presenter;
        presenter.onMessage = [this](const WQ::MessageRequest&) {
            m_fixture->panel.reset();
            return QMessageBox::Yes;
        };
        m_fixture->click("执行恢复");
        QVERIFY(!m_fixture->panel);
        QCOMPARE(m_fixture->operations.size(), std::size_t(0));
    }

    void thePanelMayBeClosedWhileTheBoxAboutARefusalIsOpen()
    {
        openEntry();
        preview({});
        support::ActingPresenter presenter;
        presenter.onMessage = [this](const WQ::MessageRequest& request) {
            if (request.kind == QMessageBox::Critical) {
                m_fixture->panel.reset();
            }
            return QMessageBox::Yes;
        };
        m_fixture->click("执行恢复");
        m_fixture->operations.back().handler(support::replyWithError(utils::EErrorCode::Conflict, "不行"));
        QTRY_VERIFY(!m_fixture->panel);
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::GroupRestore), 0);
    }

    void aFailedPreviewIsSaid()
    {
        openEntry();
        m_fixture->click("恢复到此版本");
        m_fixture->fail(m_fixture->take(DataType::GroupRestore), "没有权限");
        m_fixture->answer(DataType::GroupState, {makeGroup(7, "现名")});
        QTRY_VERIFY(m_fixture->isRead("查询失败：没有权限"));
        QVERIFY(!m_fixture->button("执行恢复").isVisible());
    }

    void anotherRowEndsThePreview()
    {
        openEntry();
        m_fixture->click("恢复到此版本");
        const auto restore = m_fixture->take(DataType::GroupRestore);
        const auto state = m_fixture->take(DataType::GroupState);
        m_fixture->changes().setCurrentKey("SH|1");
        m_fixture->answer(restore, {restoreRecord({}), makeGroup(7, "旧名")});
        m_fixture->answer(state, {makeGroup(7, "现名")});
        support::settleCallbacks();
        QVERIFY(m_fixture->isRead("正在加载"));
        QVERIFY(!m_fixture->button("执行恢复").isVisible());
    }

    void onlyWhoMayChangeMayRestore()
    {
        openEntry({nvservice::UserRight::ReadAudit, nvservice::UserRight::SetAccountGroupRisk});
        QVERIFY(!m_fixture->button("恢复到此版本").isVisible());
    }

    void theStateAtATimeIsRestoredAsAWhole()
    {
        openEntry();
        auto& at = m_fixture->control("查看状态的时间");
        support::typeText(at, "2026-01-05");
        QTest::keyClick(&at, Qt::Key_Return);
        m_fixture->answer(DataType::GroupState, {makeGroup(7, "当时", {}, 2), makeConfig(7, {"600001"}, 4)});
        QTRY_VERIFY(m_fixture->button("恢复到此版本").isVisible());
        m_fixture->click("恢复到此版本");
        const auto key = HistoryFixture::conditionsOf(m_fixture->take(DataType::GroupRestore));
        QCOMPARE(key.number(QueryCondition::GroupRevision), std::optional<std::int64_t>(2));
        QCOMPARE(key.number(QueryCondition::ConfigRevision), std::optional<std::int64_t>(4));
        QCOMPARE(key.number(QueryCondition::Group), std::optional<std::int64_t>(7));
    }

private:
    /// Shows a change that made the group with the name 旧名, at revision 2.
    void openEntry(const std::set<int>& rights = AllRights) const
    {
        m_fixture->open(rights);
        m_fixture->answer(DataType::Audit, {makeEntry(3), makeEntry(1)});
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 2);
        openChange(3);
    }
    void openChange(int id) const
    {
        m_fixture->changes().setCurrentKey(QString("SH|%1").arg(id));
        const auto entry = makeEntry(id);
        entry->before = makeGroup(7, "更旧", {}, 1);
        entry->after = makeGroup(7, "旧名", {}, 2);
        m_fixture->answer(HistoryFixture::Details, {entry});
        QTRY_COMPARE(texts(QAV::AfterColumn), QStringList("旧名"));
    }
    static boost::shared_ptr<nvservice::CGroupRestore> restoreRecord(const std::vector<std::string>& obstacles)
    {
        const auto restore = boost::make_shared<nvservice::CGroupRestore>();
        restore->groupId = 7;
        restore->groupRevision = 2;
        restore->seenGroupRevision = 9;
        restore->obstacles = obstacles;
        return restore;
    }
    void preview(const std::vector<std::string>& obstacles,
                 const nvservice::IDataPtr& current = makeGroup(7, "现名", {}, 9)) const
    {
        m_fixture->click("恢复到此版本");
        const auto query = m_fixture->take(DataType::GroupRestore);
        QCOMPARE(HistoryFixture::conditionsOf(query).number(QueryCondition::GroupRevision),
                 std::optional<std::int64_t>(2));
        QVERIFY(!HistoryFixture::conditionsOf(query).has(QueryCondition::ConfigRevision));
        m_fixture->answer(query, {restoreRecord(obstacles), makeGroup(7, "旧名", {}, 10)});
        m_fixture->answer(DataType::GroupState, {current});
        QTRY_VERIFY(m_fixture->isRead("将要发生的变更"));
    }
    void expectQuestion(QMessageBox::StandardButton answer) const
    {
        m_boxes->expectQuestion(QMessageBox::Question, "恢复",
                                "确定要把账号组“组7”恢复到此版本吗？\n恢复会保存为一个新的修订。", answer);
    }
    QStringList texts(int column) const { return HistoryFixture::shown(m_fixture->comparison(), column); }
};

TEST_WITH_WIDGETS(HistoryRestoreTest)
#include "tst_history_restore.moc"
