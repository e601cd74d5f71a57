// SPDX-License-Identifier: Apache-2.0
#include "service/RiskSamples.h"

#include "service/engine/RefusedAttempts.h"
#include "service/store/AuditPages.h"
#include "service/store/Documents.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

using namespace testservice;
using service::AuditRow;
using service::RefusedAttempts;
using EShare = RefusedAttempts::EShare;

namespace
{

namespace UserRight = nvservice::UserRight;

constexpr int RowsOfKind = 20; ///< in a window
constexpr auto Add = EZvDataOperation::Add;
constexpr auto Modify = EZvDataOperation::Modify;
constexpr auto Delete = EZvDataOperation::Delete;

AuditRow attempt(const std::string& login, EErrorCode outcome = EErrorCode::PermissionDenied, int operation = 3)
{
    AuditRow row;
    row.at = 1000;
    row.login = login;
    row.operation = operation;
    row.dataType = nvservice::DataType::AccountGroup;
    row.outcome = {outcome, "不行"};
    return row;
}

std::int64_t attemptsOf(const AuditRow& row)
{
    return row.after.hasField("attempts") ? row.after.getField("attempts").numberLong() : 1;
}

/// Takes the rows that a `RefusedAttempts` writes.
class Writer
{
public:
    RefusedAttempts::Writer function()
    {
        return [this](const std::vector<AuditRow>& rows) {
            const std::lock_guard<std::mutex> lock(m_mutex);
            ++m_calls;
            if (m_failures > 0) {
                --m_failures;
                return false;
            }
            m_rows.insert(m_rows.end(), rows.begin(), rows.end());
            return true;
        };
    }
    void failNext(int times)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_failures = times;
    }
    std::vector<AuditRow> rows()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_rows;
    }
    int calls()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_calls;
    }

private:
    std::mutex m_mutex;
    std::vector<AuditRow> m_rows;
    int m_failures = 0;
    int m_calls = 0;
};

/// A store with an engine that can be stopped.
class Flood : public ServiceFixture
{
public:
    Flood() { start(); }
    void start() { m_engine = boost::make_shared<service::DataEngine>(storePtr(), server(0)); }
    void stop() { m_engine.reset(); }
    service::DataEngine& engine() { return *m_engine; }

    std::vector<AuditRow> audit(const std::string& login)
    {
        constexpr int MoreThanThereAre = 10000;
        const service::ServerData data{store().connection(), server(0)};
        service::AuditFilter filter;
        filter.login = login;
        std::vector<AuditRow> rows = service::readAuditPage(data, filter, std::nullopt, MoreThanThereAre).rows;
        for (AuditRow& row : rows) {
            const service::AuditBodies bodies = service::loadAuditBodies(data, row.id);
            row.before = service::documentOf(bodies.before);
            row.after = service::documentOf(bodies.after);
        }
        return rows;
    }
    std::int64_t attempts(const std::string& login)
    {
        std::int64_t sum = 0;
        for (const AuditRow& row : audit(login)) {
            sum += attemptsOf(row);
        }
        return sum;
    }

private:
    service::DataEnginePtr m_engine;
};

nvservice::COperateDataReq request(int dataType, EZvDataOperation operation, const nvservice::IDataPtr& record)
{
    nvservice::COperateDataReq made;
    made.dataType = dataType;
    made.operation = operation;
    made.data = record;
    return made;
}

constexpr int GroupType = nvservice::DataType::AccountGroup;

} // namespace

class RefusedAttemptsTest : public QObject
{
    Q_OBJECT

private slots:
    void attemptIsOnRecordUnderTheServersKeyWhateverTheRecordSays_data()
    {
        const support::DataRows<QString> row("tag");
        for (const char* tag : {"E", "", "W", "E|1", "别的"}) {
            row(tag, tag);
        }
    }
    void attemptIsOnRecordUnderTheServersKeyWhateverTheRecordSays()
    {
        QFETCH(QString, tag);
        ServiceFixture fixture;
        const auto nobody = fixture.session("nobody", {});
        const auto bound = fixture.session("bound", everyRight(), Second);
        const int id = fixture.storedGroup("组")->groupId;
        const auto blank = fixture.current(id);
        blank->groupName = " ";
        const auto withNul = fixture.current(id);
        withNul->groupName = std::string("a\0b", 3);
        const auto tooMany = fixture.current(id);
        tooMany->accounts.resize(10001, future("8001"));
        const std::vector<nvservice::COperateDataReq> requests = {request(GroupType, Delete, fixture.current(id)),
                                                                  request(GroupType, Modify, blank),
                                                                  request(GroupType, Modify, withNul),
                                                                  request(GroupType, Modify, tooMany),
                                                                  request(GroupType, {}, fixture.current(id)),
                                                                  request(ConfigType, Modify, fixture.config(id)),
                                                                  request(ConfigType, Delete, fixture.config(id)),
                                                                  request(ConfigType, Modify, fixture.current(id)),
                                                                  request(EmailType, Delete, everyEmailRule(id)),
                                                                  request(EmailType, Add, everyEmailRule(id))};
        for (const nvservice::COperateDataReq& each : requests) {
            each.data->setSystemTag(tag.toStdString());
            for (const service::SessionPtr& session : {nobody, bound}) {
                fixture.exec("DELETE FROM audit");
                QVERIFY(!fixture.east().operate(session, each).error.isSuccess());
                QCOMPARE(fixture.column("SELECT record_key FROM audit"), std::string("E|1"));
                QCOMPARE(fixture.text("SELECT login FROM audit"), session->login());
                QCOMPARE(fixture.number("SELECT data_type FROM audit"), each.dataType);
            }
        }
        const auto added = group("新", First, {future("8001")});
        added->groupId = id;
        added->setSystemTag(tag.toStdString());
        fixture.exec("DELETE FROM audit");
        operate(fixture.east(), nobody, Add, added);
        QCOMPARE(fixture.column("SELECT record_key FROM audit"), std::string("E|-1"));
        QCOMPARE(fixture.number("SELECT count(*) FROM account_group"), 1);
    }

    void attemptOfSomebodyWhoMayNotLogInAnyMoreIsOnRecord_data()
    {
        const support::DataRows<QString> row("change");
        row("disabled", "UPDATE app_user SET enabled = 0");
        row("another password", "UPDATE app_user SET password_hash = 'new'");
    }
    void attemptOfSomebodyWhoMayNotLogInAnyMoreIsOnRecord()
    {
        QFETCH(QString, change);
        ServiceFixture fixture;
        const auto session = fixture.session("gone", everyRight());
        const GroupPtr record = fixture.storedGroup("组");
        const auto enabledAgain = "UPDATE app_user SET enabled = 1, password_hash = '-'";
        fixture.exec(change);
        COMPARE_CODE(operate(fixture.east(), session, Delete, record, "op-1"), EErrorCode::NotLoggedIn);
        QCOMPARE(fixture.column("SELECT login || record_key || operation FROM audit"), std::string("goneE|13"));
        QCOMPARE(fixture.number("SELECT outcome FROM audit"), static_cast<int>(EErrorCode::NotLoggedIn));
        // Whoever logs in again sends it again.
        fixture.exec(enabledAgain);
        COMPARE_CODE(operate(fixture.east(), session, Delete, record, "op-1"), EErrorCode::Success);
    }

    void floodLeavesSomeRowsAndOneWithTheNumberOfTheOthers()
    {
        Flood flood;
        const auto nobody = flood.session("nobody", {});
        const GroupPtr record = flood.storedGroup("组");
        for (int i = 0; i < 200; ++i) {
            COMPARE_CODE(operate(flood.engine(), nobody, Delete, record), EErrorCode::PermissionDenied);
        }
        QCOMPARE(flood.audit("nobody").size(), std::size_t(RowsOfKind));
        flood.stop();
        const std::vector<AuditRow> rows = flood.audit("nobody");
        QCOMPARE(rows.size(), std::size_t(RowsOfKind + 1));
        QCOMPARE(attemptsOf(rows[0]), std::int64_t{200 - RowsOfKind});
        QCOMPARE(static_cast<int>(rows[0].outcome.code()), static_cast<int>(EErrorCode::PermissionDenied));
        QCOMPARE(rows[0].operation, 3);
        QCOMPARE(rows[0].dataType, GroupType);
        QVERIFY(QString::fromStdString(rows[0].outcome.errorMsg()).contains("180"));
        QVERIFY(rows[0].after.getField("since").numberLong() <= rows[0].after.getField("until").numberLong());
        QVERIFY(rows[0].after.getField("until").numberLong() <= rows[0].at);
        flood.start();
        flood.stop();
        QCOMPARE(flood.attempts("nobody"), std::int64_t{200});
    }

    void floodOfOneUserAndKindHidesNoOther()
    {
        Flood flood;
        const auto nobody = flood.session("nobody", {});
        const auto other = flood.session("other", {});
        const GroupPtr record = flood.storedGroup("组");
        for (int i = 0; i < 2 * RowsOfKind; ++i) {
            operate(flood.engine(), nobody, Delete, record);
        }
        operate(flood.engine(), other, Delete, record);
        operate(flood.engine(), nobody, Modify, record);
        save(flood.engine(), nobody, flood.config(record->groupId));
        QCOMPARE(flood.audit("other").size(), std::size_t(1));
        QCOMPARE(flood.audit("nobody").size(), std::size_t(RowsOfKind + 2));
        QCOMPARE(flood.audit("nobody")[0].dataType, ConfigType);
    }

    void madeUpCodesAreOneKind()
    {
        Flood flood;
        const auto nobody = flood.session("nobody", {});
        for (int i = 0; i < 3 * RowsOfKind; ++i) {
            operateOn(50000 + i, flood.engine(), nobody, static_cast<EZvDataOperation>(i), future("8001"));
        }
        QCOMPARE(flood.audit("nobody").size(), std::size_t(RowsOfKind));
        flood.stop();
        QCOMPARE(flood.audit("nobody").size(), std::size_t(RowsOfKind + 1));
        QCOMPARE(flood.attempts("nobody"), std::int64_t{3 * RowsOfKind});
    }

    void largeRequestsInVainDoNotGrowTheDatabase()
    {
        Flood flood;
        const auto nobody = flood.session("nobody", {});
        const GroupPtr record = flood.storedGroup("组");
        record->unknownFields = BSON("filler" << std::string(60000, 'x'));
        for (int i = 0; i < 300; ++i) {
            operate(flood.engine(), nobody, i % 2 == 0 ? Delete : Modify, record, "op-" + std::to_string(i));
        }
        flood.stop();
        QVERIFY(flood.number("SELECT sum(length(after_body)) FROM audit") <= 1024 * 1024);
        QVERIFY(flood.number("SELECT sum(length(after_body)) FROM audit") > 900 * 1024);
        QCOMPARE(flood.number("SELECT count(*) FROM operation_log"), 2 * RowsOfKind);
        QCOMPARE(flood.attempts("nobody"), std::int64_t{300});
    }

    void countedRefusalIsNoAnswerForLater()
    {
        Flood flood;
        const auto nobody = flood.session("nobody", {});
        const GroupPtr record = flood.storedGroup("组");
        for (int i = 0; i <= RowsOfKind; ++i) {
            operate(flood.engine(), nobody, Delete, record, "op-" + std::to_string(i));
        }
        flood.exec("INSERT INTO user_right SELECT id, 10721 FROM app_user");
        COMPARE_CODE(operate(flood.engine(), nobody, Delete, record, "op-0"), EErrorCode::PermissionDenied);
        COMPARE_CODE(operate(flood.engine(), nobody, Delete, record, "op-" + std::to_string(RowsOfKind)),
                     EErrorCode::Success);
    }

    void attemptsFromManyThreadsAreAllCounted()
    {
        Flood flood;
        const GroupPtr record = flood.storedGroup("组");
        constexpr int Threads = 4;
        constexpr int Each = 100;
        std::vector<service::SessionPtr> sessions;
        for (int i = 0; i < 2; ++i) {
            sessions.push_back(flood.session("nobody" + std::to_string(i), {}));
        }
        std::vector<std::thread> threads;
        for (int thread = 0; thread < Threads; ++thread) {
            threads.emplace_back([&, thread] {
                for (int i = 0; i < Each; ++i) {
                    operate(flood.engine(), sessions[static_cast<std::size_t>(thread % 2)], Delete, record);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        flood.stop();
        for (const service::SessionPtr& session : sessions) {
            QCOMPARE(flood.attempts(session->login()), std::int64_t{Each * Threads / 2});
        }
    }

    void numberIsWrittenWhenTheWindowEndsAndTheNextOneBeginsAnew()
    {
        Writer writer;
        RefusedAttempts refused(writer.function(), {2, 100, std::chrono::milliseconds(50)});
        const auto isShared = [&](EShare share) { return refused.take(attempt("li")) == share; };
        QVERIFY(isShared(EShare::Row));
        QVERIFY(isShared(EShare::Row));
        int counted = 0;
        while (isShared(EShare::Nothing)) {
            refused.count(attempt("li"));
            ++counted;
            QTest::qSleep(1);
        }
        QVERIFY(counted > 0);
        const auto sum = [&] {
            std::int64_t attempts = 0;
            for (const AuditRow& row : writer.rows()) {
                attempts += attemptsOf(row);
            }
            return attempts;
        };
        QTRY_COMPARE(sum(), std::int64_t{counted});
        QCOMPARE(writer.rows()[0].login, std::string("li"));
        QCOMPARE(writer.rows()[0].operation, 3);
    }

    void bodiesAreKeptUpToALimitOfTheUser()
    {
        Writer writer;
        RefusedAttempts refused(writer.function(), {10, 1000, std::chrono::hours(1)});
        AuditRow large = attempt("li");
        large.after = BSON("text" << std::string(700, 'x'));
        QCOMPARE(refused.take(large), EShare::Row);
        QCOMPARE(refused.take(large), EShare::RowWithoutBody);
        QCOMPARE(refused.take(attempt("li")), EShare::Row);
        large.operation = 0;
        QCOMPARE(refused.take(large), EShare::RowWithoutBody);
        large.login = "wang";
        QCOMPARE(refused.take(large), EShare::Row);
    }

    void numberThatCannotBeWrittenIsWrittenLaterAndOnce()
    {
        Writer writer;
        writer.failNext(2);
        RefusedAttempts refused(writer.function(), {0, 0, std::chrono::milliseconds(20)});
        refused.count(attempt("li"));
        QTRY_COMPARE(writer.rows().size(), std::size_t(1));
        QCOMPARE(writer.calls(), 3);
        QCOMPARE(attemptsOf(writer.rows()[0]), std::int64_t{1});
    }

    void numbersOfAllKindsAreWrittenAtTheEnd()
    {
        Writer writer;
        {
            RefusedAttempts refused(writer.function(), {0, 0, std::chrono::hours(1)});
            for (const char* login : {"li", "wang"}) {
                for (const EErrorCode outcome : {EErrorCode::NotFound, EErrorCode::Conflict}) {
                    for (int operation = 0; operation < 4; ++operation) {
                        refused.count(attempt(login, outcome, operation));
                    }
                }
            }
        }
        QCOMPARE(writer.rows().size(), std::size_t(16));
        QCOMPARE(writer.calls(), 1);
    }
};

TEST_WITHOUT_WIDGETS(RefusedAttemptsTest)
#include "tst_refused_attempts.moc"
