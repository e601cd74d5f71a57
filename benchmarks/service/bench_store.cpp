// SPDX-License-Identifier: Apache-2.0
// Operations that are acknowledged once they are on the disk, beside a bare insert into a database of the same kind.
//
//     bench_store [rounds [part of a measure's name]]
//
// SQLite in the folder QAV_TEST_FOLDER (the temporary folder without it); with QAV_TEST_POSTGRES, the folder of a
// server's socket, PostgreSQL. The measures take turns, so that what else the machine does meets all of them; the
// figures are the medians of the rounds.

#include "service/ServiceFixture.h"

#include "service/store/Query.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <map>
#include <stdexcept>
#include <thread>
#include <utility>

/// Stands in for the system's, for SQLite too.
extern "C" Q_DECL_EXPORT int fdatasync(int file)
{
    static const int added = qEnvironmentVariableIntValue("QAV_FLUSH_US");
    if (added > 0) {
        std::this_thread::sleep_for(std::chrono::microseconds(added));
    }
    return static_cast<int>(::syscall(SYS_fdatasync, file));
}

using namespace testservice;
using service::Connection;
using service::Query;

namespace
{

constexpr int TurnMs = 400;
constexpr int ManyClients = 16;
constexpr int RowsBefore = 200000;

void require(bool holds, const std::string& what)
{
    if (!holds) {
        throw std::runtime_error(what);
    }
}

/// Runs work until the turn is over and gives how often in a second.
template <typename Work>
double perSecond(int threads, Work work)
{
    std::atomic<int> done{0};
    std::atomic<bool> isOver{false};
    QElapsedTimer timer;
    timer.start();
    std::vector<std::thread> running;
    for (int thread = 0; thread < threads; ++thread) {
        running.emplace_back([&, thread] {
            while (!isOver) {
                work(thread);
                ++done;
            }
        });
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(TurnMs));
    const double rate = 1000.0 * done / static_cast<double>(timer.elapsed());
    isOver = true;
    for (std::thread& thread : running) {
        thread.join();
    }
    return rate;
}

/// One row of text, committed by itself.
class Bare
{
public:
    Bare()
    {
        m_options.location = m_database.location();
        m_keeper = opened("keeper");
        m_keeper->exec(TestDatabase::isPostgres() ? "CREATE TABLE bare (id BIGSERIAL PRIMARY KEY, body TEXT)"
                                                  : "CREATE TABLE bare (id INTEGER PRIMARY KEY, body TEXT)");
        // A log that still grows costs more with every commit.
        service::Transaction transaction(*m_keeper, service::Transaction::EKind::Write);
        Query insert(*m_keeper, "INSERT INTO bare (body) VALUES (?)");
        for (int row = 0; row < RowsBefore; ++row) {
            insert.bind(std::string(200, 'x')).run();
        }
        transaction.commit();
    }

    double measure()
    {
        const std::string body(200, 'x');
        std::unique_ptr<Connection> connection;
        std::unique_ptr<Query> insert;
        const double rate = perSecond(1, [&](int) {
            if (!connection) {
                connection = opened("bare");
                insert = std::make_unique<Query>(*connection, "INSERT INTO bare (body) VALUES (?)");
            }
            insert->bind(body).run();
        });
        insert.reset();
        return rate;
    }

private:
    /// The store's journal and synchronous mode, and nothing else that the store changes.
    std::unique_ptr<Connection> opened(const char* name) const
    {
        auto connection = std::make_unique<Connection>(m_options, name);
        if (!connection->isPostgres()) {
            connection->exec("PRAGMA wal_autocheckpoint = 1000");
        }
        return connection;
    }

    TestDatabase m_database;
    service::StoreOptions m_options;
    std::unique_ptr<Connection> m_keeper; ///< keeps the log, which the last connection would remove
};

class Operations
{
public:
    Operations() : m_fixture(options()), m_session(m_fixture.admin())
    {
        for (int thread = 0; thread < ManyClients; ++thread) {
            m_groups.push_back(m_fixture.storedGroup("组" + std::to_string(thread)));
        }
    }

    double measureAdding(int threads)
    {
        return perSecond(threads, [this](int) {
            const std::string name = std::to_string(++m_number);
            answered(operate(m_fixture.east(), m_session, EZvDataOperation::Add,
                             group(name, First, {future("8001"), future("8002")}), name));
        });
    }

    double measureModifying(int threads)
    {
        return perSecond(threads, [this](int thread) {
            const GroupPtr& own = m_groups[static_cast<std::size_t>(thread)];
            own->groupName = "组" + std::to_string(++m_number);
            answered(operate(m_fixture.east(), m_session, EZvDataOperation::Modify, own, own->groupName));
            own->setRevision(own->revision() + 1);
        });
    }

    void check() const { require(m_fixture.storePtr()->checkIntegrity().isSuccess(), "the database is damaged"); }

    /// Operations that shared a commit, on average, since the last call.
    double operationsOfACommit()
    {
        const int operations = m_number - std::exchange(m_counted, m_number.load());
        return double(operations) / std::max(1, m_commits.exchange(0));
    }

private:
    service::StoreOptions options()
    {
        service::StoreOptions counting;
        counting.faultHook = [this](const QString& sql) {
            m_commits += sql == QLatin1String("COMMIT") ? 1 : 0;
            return false;
        };
        return counting;
    }
    static void answered(const service::Reply& reply) { require(reply.error.isSuccess(), reply.error.errorMsg()); }

    std::atomic<int> m_commits{0};
    ServiceFixture m_fixture;
    service::SessionPtr m_session;
    std::vector<GroupPtr> m_groups;
    std::atomic<int> m_number{1000};
    int m_counted = 1000;
};

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (!qEnvironmentVariableIsSet("QAV_TEST_FOLDER")) {
        qputenv("QAV_TEST_FOLDER", QDir::tempPath().toUtf8());
    }
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 15;
    const QString wanted = argc > 2 ? argv[2] : "";

    Bare bare;
    Operations operations;
    const std::vector<std::pair<const char*, std::function<double()>>> measures = {
        {"bare insert, one thread", [&] { return bare.measure(); }},
        {"add a group, one thread", [&] { return operations.measureAdding(1); }},
        {"modify a group, one thread", [&] { return operations.measureModifying(1); }},
        {"add a group, 16 threads", [&] { return operations.measureAdding(ManyClients); }},
        {"modify a group, 16 threads", [&] { return operations.measureModifying(ManyClients); }},
    };
    for (int turn = 0; turn < 5; ++turn) {
        operations.measureAdding(ManyClients);
    }
    std::vector<std::vector<double>> rates(measures.size());
    std::vector<std::vector<double>> ratios(measures.size());
    std::vector<std::vector<double>> shares(measures.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < measures.size(); ++i) {
            if (i != 0 && !QString(measures[i].first).contains(wanted)) {
                continue;
            }
            rates[i].push_back(measures[i].second());
            ratios[i].push_back(rates[i].back() / rates[0].back());
            shares[i].push_back(operations.operationsOfACommit());
        }
    }
    operations.check();
    std::printf("%s, median of %d rounds\n", TestDatabase::isPostgres() ? "PostgreSQL" : "SQLite", rounds);
    for (std::size_t i = 0; i < measures.size(); ++i) {
        if (!rates[i].empty()) {
            std::printf("%-28s %8.0f /s  %5.2f x  %5.1f to a commit\n", measures[i].first, median(rates[i]),
                        median(ratios[i]), median(shares[i]));
        }
    }
    return 0;
}
