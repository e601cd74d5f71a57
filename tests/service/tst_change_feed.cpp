// SPDX-License-Identifier: Apache-2.0
#include "service/ChangesTest.h"
#include "service/store/Journal.h"
#include "support/TestProgram.h"

#include <condition_variable>
#include <mutex>

using namespace testservice;
using service::ChangeBatch;
using service::ChangePosition;
using service::UnreadChanges;
namespace DataType = nvservice::DataType;

/// What the service knows of its commits.
class ChangeFeedTest : public ChangesTest
{
    Q_OBJECT

private slots:
    void everyChangeIsReadOnceInTheOrderOfTheCommits()
    {
        m_fixture->admin();
        const ChangePosition from = present();
        const int id = addGroup("一组");
        rename(id, "二组");
        forbidWashTrades(id);
        const auto rules = boost::make_shared<nvservice::CustomEmailRC>();
        rules->emailRCs = {emailRule(id, "k")};
        COMPARE_CODE(m_fixture->operateOn(DataType::EmailRule, EZvDataOperation::Modify, rules), EErrorCode::Success);
        remove(id);
        const ChangeBatch batch = m_fixture->east().readChanges(from);
        QStringList all;
        for (const service::CommittedChange& change : batch.changes) {
            all << described(*change.info);
            QCOMPARE(change.info->userName, std::string("姓名admin"));
            QCOMPARE(change.info->getSystemTag(), std::string("E"));
        }
        QCOMPARE(all, QStringList({"group add of 1 一组 r1 by admin", "group modify of 1 二组 r2 by admin",
                                   "config modify of 1 二组 r2 by admin", "config modify of 1 二组 r3 by admin",
                                   "group delete of 1 二组 r3 by admin"}));
        QVERIFY(m_fixture->east().readChanges(batch.end).changes.empty());
    }

    void whatIsRefusedOrChangesNothingIsNoChange()
    {
        const int id = addGroup("一组");
        addGroup("二组");
        const ChangePosition from = present();
        const GroupPtr record = m_fixture->current(id);
        record->groupName = "二组";
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Duplicate);
        COMPARE_CODE(m_fixture->operateOn(DataType::EmailRule, EZvDataOperation::Delete, everyEmailRule(id)),
                     EErrorCode::Success);
        QVERIFY(m_fixture->number("SELECT max(id) FROM audit") > from.auditId + 1);
        QCOMPARE(heardByAdmin(from), QStringList());
    }

    void changesOfAnotherServerAreNoChanges()
    {
        const ChangePosition from = present();
        const service::SessionPtr west = m_fixture->session("west", everyRight(), None, 1);
        COMPARE_CODE(operate(m_fixture->west(), west, EZvDataOperation::Add, group("西组", First, {future("8001")})),
                     EErrorCode::Success);
        QCOMPARE(heardByAdmin(from), QStringList());
    }

    void whatIsRolledBackIsNoChange()
    {
        int remaining = -1;
        service::StoreOptions options;
        options.faultHook = failureAfter(remaining);
        ServiceFixture faulty(options);
        const service::SessionPtr admin = faulty.admin();
        const ChangePosition from = faulty.east().readChanges(std::nullopt).end;
        bool hasSucceeded = false;
        for (int statement = 0; !hasSucceeded; ++statement) {
            remaining = statement;
            hasSucceeded =
                faulty.operate(EZvDataOperation::Add, group("一组", First, {future("8001")})).error.isSuccess();
            remaining = -1;
            const std::size_t changes = faulty.east().readChanges(from).changes.size();
            QCOMPARE(changes, static_cast<std::size_t>(faulty.number("SELECT count(*) FROM account_group")));
        }
        QCOMPARE(faulty.east().readChanges(from).changes.size(), std::size_t(1));
    }

    void anAttemptIsNotTakenForTheChangeOfItsMoment()
    {
        m_fixture->admin();
        const ChangePosition from = present();
        const int id = addGroup("一组");
        const GroupPtr record = m_fixture->current(id);
        record->groupName = "二组";
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record, "op-1"), EErrorCode::Success);
        // In the same millisecond, by the same user, for the same group.
        m_fixture->exec("INSERT INTO audit (server_id, at, login, operation, data_type, record_key, operation_id,"
                        " outcome, message) SELECT server_id, at, login, operation, data_type, record_key, 'op-2', 10,"
                        " 'x' FROM audit WHERE operation_id = 'op-1'");
        const ChangeBatch batch = m_fixture->east().readChanges(from);
        QCOMPARE(batch.changes.size(), std::size_t(2));
        QCOMPARE(batch.changes.back().info->operationId, std::string("op-1"));
    }

    void aPositionSurvivesAsText()
    {
        addGroup("一组");
        const ChangePosition from = present();
        const std::optional<ChangePosition> read = ChangePosition::fromText(from.text());
        QVERIFY(read);
        addGroup("二组");
        QCOMPARE(heardByAdmin(read), QStringList({"group add of 2 二组 r1 by admin"}));
    }

    void whatIsNoPositionIsNone_data()
    {
        const support::DataRows<QString> row("text");
        row("empty", "");
        row("a word", "unknown");
        row("two numbers", "1.2");
        row("four numbers", "1.2.3.4");
        row("a negative number", "0.-1.2");
        row("too large a number", "0.99999999999999999999.2");
    }
    void whatIsNoPositionIsNone()
    {
        QFETCH(QString, text);
        QVERIFY(!ChangePosition::fromText(text.toStdString()));
    }

    void afterAPositionThatTheStoreDoesNotKnowAnythingMayHaveChanged()
    {
        addGroup("一组");
        const ChangePosition now = present();
        QCOMPARE(heardByAdmin(ChangePosition{now.epoch, now.auditId + 1000, now.at}), QStringList("everything"));
        QCOMPARE(heardByAdmin(ChangePosition{now.epoch + 1, now.auditId, now.at}), QStringList("everything"));
        QCOMPARE(heardByAdmin(now), QStringList());
    }

    /// Ids count anew in a restored backup.
    void aRestoredBackupIsNotSilent()
    {
        addGroup("一组");
        ChangePosition from = present();
        from.auditId += 100; // what was written after the backup
        m_fixture->exec("INSERT INTO epoch (system_tag, revision, next_group_id, next_rule_id, began_at)"
                        " VALUES ('E', 7, 100, 100, 1)");
        UnreadChanges unread(m_fixture->admin(), from);
        const ChangeBatch restored = m_fixture->east().readChanges(from);
        unread.add(restored);
        QCOMPARE(described(unread.take()), QStringList("everything"));
        addGroup("二组");
        unread.add(m_fixture->east().readChanges(restored.end));
        QCOMPARE(described(unread.take()), QStringList("group add of 2 二组 r1 by admin"));
    }

    void afterARemovalOfUnreadAuditRowsAnythingMayHaveChanged()
    {
        m_fixture->admin();
        const ChangePosition early = present();
        addGroup("一组");
        const ChangePosition late = present();
        const auto prune = [this](std::int64_t before) {
            service::AuditRow row;
            row.at = before;
            row.login = "boss";
            row.recordKey = service::PrunedAuditKey;
            bson::BSONObjBuilder document;
            document.append("before", static_cast<long long>(before));
            row.before = document.obj();
            service::WriteJob job;
            job.server = m_fixture->server(0).id;
            job.work = [&](service::Connection& connection) {
                const service::ServerData data{connection, m_fixture->server(0)};
                insertAudit(data, row);
                removeAudit(data, before, 1000);
            };
            QVERIFY(m_fixture->store().write(job).isSuccess());
        };
        prune(early.at - 1000);
        QCOMPARE(heardByAdmin(early), QStringList("group add of 1 一组 r1 by admin"));
        prune(late.at + 1);
        QCOMPARE(heardByAdmin(early), QStringList("everything"));
    }

    void ofMoreNewChangesThanTheLimitNoneIsRead()
    {
        const int id = addGroup("一组");
        const ChangePosition early = present();
        rename(id, "二组");
        const ChangePosition late = present();
        rename(id, "三组");
        addGroup("四组");
        const GroupPtr record = m_fixture->current(id);
        record->groupName = "四组";
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Duplicate);
        const ChangeBatch all = m_fixture->east().readChanges(early, {late.auditId, 2});
        QCOMPARE(all.changes.size(), std::size_t(3));
        QCOMPARE(all.completeFrom, early.auditId);
        const ChangeBatch none = m_fixture->east().readChanges(early, {late.auditId, 1});
        QVERIFY(none.changes.empty());
        QCOMPARE(none.completeFrom, all.end.auditId);
        QCOMPARE(none.end.auditId, all.end.auditId);
    }

    void whoHasMissedTooMuchDoesNotDisturbTheOthers()
    {
        const int id = addGroup("一组");
        const ChangePosition early = present();
        m_fixture->exec(QString("INSERT INTO audit (server_id, at, login, operation, data_type, record_key,"
                                " operation_id, outcome, message) ") +
                        numbers(4096) + " SELECT 1, 1, 'x', 0, 0, 'x', '', 7, '' FROM n");
        const ChangePosition late = present();
        rename(id, "二组");
        UnreadChanges slow(m_fixture->admin(), early);
        UnreadChanges quick(m_fixture->admin(), late);
        const ChangeBatch batch = m_fixture->east().readChanges(early);
        slow.add(batch);
        quick.add(batch);
        QCOMPARE(described(slow.take()), QStringList("everything"));
        QCOMPARE(described(quick.take()), QStringList("group modify of 1 二组 r2 by admin"));
    }

    void everyCommitIsNoticedHereAndElsewhere()
    {
        std::mutex mutex;
        std::condition_variable noted;
        int commits = 0;
        const auto waitForMore = [&](int than) {
            std::unique_lock<std::mutex> lock(mutex);
            return noted.wait_for(lock, std::chrono::seconds(30), [&] { return commits > than; });
        };
        const auto count = [&] {
            const std::lock_guard<std::mutex> lock(mutex);
            return commits;
        };
        std::shared_ptr<void> watch = m_fixture->store().watchCommits([&] {
            const std::lock_guard<std::mutex> lock(mutex);
            ++commits;
            noted.notify_all();
        });
        QVERIFY(waitForMore(0)); // what may have been missed
        m_fixture->admin();
        for (int i = 0; i < 5; ++i) {
            const int before = count();
            addGroup("组" + std::to_string(i));
            // PostgreSQL notifies its clients later.
            QVERIFY(TestDatabase::isPostgres() ? waitForMore(before) : count() > before);
        }
        const service::StorePtr other = support::openStore(m_fixture->location());
        const int before = count();
        service::WriteJob job;
        job.server = m_fixture->server(0).id;
        job.work = [](service::Connection& connection) {
            connection.exec("UPDATE account_group SET name = '新' WHERE group_id = 1");
        };
        QVERIFY(other->write(job).isSuccess());
        QVERIFY(waitForMore(before));
        watch.reset();
        const int last = count();
        addGroup("三组");
        QCOMPARE(count(), last);
    }
};

TEST_WITHOUT_WIDGETS(ChangeFeedTest)
#include "tst_change_feed.moc"
