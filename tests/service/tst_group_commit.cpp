// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"

#include "service/store/Query.h"
#include "support/TestProgram.h"

#include <atomic>
#include <thread>

using namespace testservice;
using service::Connection;
using service::Query;
using service::StoreError;
using service::StoreOptions;
using service::WriteJob;

namespace
{

constexpr int Writers = 6;

/// A job that stores one institution.
WriteJob institutionJob(int id)
{
    WriteJob job;
    job.server = 1;
    job.work = [id](Connection& connection) {
        Query(connection, "INSERT INTO institution (server_id, institution_id, name) VALUES (1, ?, ?)")
            .bind(id)
            .bind("机构" + std::to_string(id))
            .run();
    };
    return job;
}

/// Counts the statements that begin with a text, and lets them fail from a moment on.
struct Watch {
    explicit Watch(const char* statement)
    {
        options.faultHook = [this, statement](const QString& sql) {
            if (!sql.startsWith(QLatin1String(statement))) {
                return false;
            }
            ++count;
            return fails.load();
        };
    }

    StoreOptions options;
    std::atomic<int> count{0};
    std::atomic<bool> fails{false};
};

/// Writes the jobs on a thread each. All but the first wait in the queue while the first is being carried out.
std::vector<utils::NVError> writeTogether(service::Store& store, std::vector<WriteJob> jobs)
{
    const auto first = jobs.front().work;
    const std::size_t others = jobs.size() - 1;
    std::atomic<bool> isBegun{false};
    jobs.front().work = [&](Connection& connection) {
        isBegun = true;
        while (store.waitingJobs() < others) {
            std::this_thread::yield();
        }
        first(connection);
    };
    std::vector<utils::NVError> outcomes(jobs.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        threads.emplace_back([&, i] { outcomes[i] = store.write(jobs[i]); });
        while (!isBegun) {
            std::this_thread::yield();
        }
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return outcomes;
}

std::vector<WriteJob> institutionJobs()
{
    std::vector<WriteJob> jobs;
    for (int i = 0; i < Writers; ++i) {
        jobs.push_back(institutionJob(100 + i));
    }
    return jobs;
}

} // namespace

class GroupCommitTest : public QObject
{
    Q_OBJECT

private:
    /// The third finds its institution there already, the fourth throws; of both nothing is left.
    static void checkThatOnlyTwoFail(ServiceFixture& fixture, const std::vector<WriteJob>& jobs)
    {
        const auto outcomes = writeTogether(fixture.store(), jobs);
        for (std::size_t i = 0; i < outcomes.size(); ++i) {
            QCOMPARE(outcomes[i].isSuccess(), i != 2 && i != 3);
        }
        QCOMPARE(static_cast<int>(outcomes[2].code()), static_cast<int>(EErrorCode::Duplicate));
        QCOMPARE(static_cast<int>(outcomes[3].code()), static_cast<int>(EErrorCode::Failed));
        QCOMPARE(outcomes[3].errorMsg(), std::string("数据服务内部错误"));
        QCOMPARE(fixture.number("SELECT count(*) FROM institution WHERE institution_id >= 100"), Writers - 2);
    }

private slots:
    void jobsThatWaitTogetherShareOneCommit()
    {
        Watch commits("COMMIT");
        ServiceFixture fixture(commits.options);
        commits.count = 0;
        for (const utils::NVError& outcome : writeTogether(fixture.store(), institutionJobs())) {
            QVERIFY2(outcome.isSuccess(), outcome.errorMsg().c_str());
        }
        QCOMPARE(commits.count.load(), 2);
        QCOMPARE(fixture.number("SELECT count(*) FROM institution WHERE institution_id >= 100"), Writers);
        QCOMPARE(fixture.store().waitingJobs(), std::size_t{0});
    }

    void jobThatFailsLeavesTheOthersAlone()
    {
        ServiceFixture fixture;
        std::vector<WriteJob> jobs = institutionJobs();
        const auto alright = jobs[3].work;
        jobs[2] = institutionJob(First); // exists
        jobs[3].work = [alright](Connection& connection) {
            alright(connection);
            throw std::runtime_error("out of luck");
        };
        checkThatOnlyTwoFail(fixture, jobs);
    }

    void statementsThatMayWaitBelongToTheirJob()
    {
        ServiceFixture fixture;
        std::vector<WriteJob> jobs = institutionJobs();
        const auto insertLater = [](Connection& connection, std::int64_t id) {
            Query(connection, "INSERT INTO institution (server_id, institution_id, name) VALUES (1, ?, ?)")
                .bind(id)
                .bind("机构 '\\" + std::to_string(id))
                .runLater();
        };
        jobs[1].work = [insertLater](Connection& connection) { insertLater(connection, 101); };
        jobs[2].work = [insertLater](Connection& connection) {
            insertLater(connection, 102);
            insertLater(connection, First); // exists
        };
        jobs[3].work = [insertLater](Connection& connection) {
            insertLater(connection, 103);
            throw std::runtime_error("out of luck");
        };
        checkThatOnlyTwoFail(fixture, jobs);
        QCOMPARE(fixture.number("SELECT count(*) FROM institution WHERE institution_id = 101"
                                " AND name = '机构 ''\\101'"),
                 1);
    }

    void transactionThatGoesWithAFailingJobIsBegunAgainForTheOthers()
    {
        Watch undone("ROLLBACK TO");
        ServiceFixture fixture(undone.options);
        undone.fails = true;
        std::vector<WriteJob> jobs = institutionJobs();
        jobs[4] = institutionJob(First);
        const auto outcomes = writeTogether(fixture.store(), jobs);
        for (std::size_t i = 0; i < outcomes.size(); ++i) {
            QCOMPARE(outcomes[i].isSuccess(), i != 4);
        }
        QCOMPARE(fixture.number("SELECT count(*) FROM institution WHERE institution_id >= 100"), Writers - 1);
    }

    void commitThatFailsFailsAllThatShareIt()
    {
        Watch commits("COMMIT");
        ServiceFixture fixture(commits.options);
        std::vector<WriteJob> jobs = institutionJobs();
        const auto last = jobs.back().work;
        jobs.back().work = [&](Connection& connection) {
            commits.fails = true;
            last(connection);
        };
        const auto outcomes = writeTogether(fixture.store(), jobs);
        commits.fails = false;
        QVERIFY(outcomes.front().isSuccess());
        for (std::size_t i = 1; i < outcomes.size(); ++i) {
            QCOMPARE(static_cast<int>(outcomes[i].code()), static_cast<int>(EErrorCode::StorageFailure));
        }
        QCOMPARE(fixture.number("SELECT count(*) FROM institution WHERE institution_id >= 100"), 1);
        QVERIFY(fixture.store().write(jobs[1]).isSuccess());
    }

    void jobThatIsUndoneForAPassingReasonIsCarriedOutAgain()
    {
        ServiceFixture fixture;
        WriteJob job = institutionJob(100);
        const auto work = job.work;
        int attempts = 0;
        job.work = [&](Connection& connection) {
            work(connection);
            if (++attempts < 3) {
                throw StoreError(EErrorCode::StorageFailure, "数据库繁忙", StoreError::EKind::Passing);
            }
        };
        QVERIFY(fixture.store().write(job).isSuccess());
        QCOMPARE(attempts, 3);
        QCOMPARE(fixture.number("SELECT count(*) FROM institution WHERE institution_id = 100"), 1);
    }

    void readersDoNotSeeAJobBeforeItsCommit()
    {
        ServiceFixture fixture;
        WriteJob job = institutionJob(100);
        const auto work = job.work;
        std::atomic<bool> isDone{false};
        std::atomic<bool> isSeen{false};
        job.work = [&](Connection& connection) {
            work(connection);
            isDone = true;
            while (!isSeen) {
                std::this_thread::yield();
            }
        };
        std::thread writer([&] { fixture.store().write(job); });
        while (!isDone) {
            std::this_thread::yield();
        }
        const auto seen = fixture.number("SELECT count(*) FROM institution WHERE institution_id = 100");
        isSeen = true;
        writer.join();
        QCOMPARE(seen, 0);
        QCOMPARE(fixture.number("SELECT count(*) FROM institution WHERE institution_id = 100"), 1);
    }

    void operationsOfManyThreadsAreAllStoredAndAnsweredOnce()
    {
        Watch commits("COMMIT");
        ServiceFixture fixture(commits.options);
        const auto session = fixture.admin();
        commits.count = 0;
        std::atomic<int> failed{0};
        std::vector<std::thread> threads;
        for (int thread = 0; thread < Writers; ++thread) {
            threads.emplace_back([&, thread] {
                for (int round = 0; round < 20; ++round) {
                    const std::string name = std::to_string(thread) + "-" + std::to_string(round);
                    const auto reply = operate(fixture.east(), session, EZvDataOperation::Add,
                                               group(name, First, {future("8001")}), name);
                    failed += reply.error.isSuccess() ? 0 : 1;
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        QCOMPARE(failed.load(), 0);
        QVERIFY(commits.count <= 20 * Writers);
        for (const char* table : {"account_group", "audit", "operation_log", "account_group_history"}) {
            QCOMPARE(fixture.number(QString("SELECT count(*) FROM %1").arg(table)), 20 * Writers);
        }
    }
};

TEST_WITHOUT_WIDGETS(GroupCommitTest)
#include "tst_group_commit.moc"
