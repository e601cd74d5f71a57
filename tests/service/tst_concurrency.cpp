// SPDX-License-Identifier: Apache-2.0
#include "service/RiskSamples.h"

#include "service/engine/RefusedAttempts.h"
#include "support/TestProgram.h"

#include <atomic>
#include <thread>

using namespace testservice;

namespace
{

constexpr int Threads = 4;
constexpr int Rounds = 25;

template <typename Work>
void onThreads(Work work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < Threads; ++i) {
        threads.emplace_back([&work, i] { work(i); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

GroupPtr onlyGroup(service::DataEngine& engine, const service::SessionPtr& session)
{
    const service::Reply reply = query(engine, session, nvservice::DataType::AccountGroup, "1");
    return boost::dynamic_pointer_cast<CAccountGroup>(reply.records.at(0));
}

} // namespace

class ConcurrencyTest : public ServiceTest
{
    Q_OBJECT

private slots:
    void onlyOneOfSeveralWritersGetsAName()
    {
        const auto session = m_fixture->admin();
        std::atomic<int> added{0};
        std::atomic<int> refused{0};
        onThreads([&](int) {
            for (int round = 0; round < Rounds; ++round) {
                const auto record = group("组" + std::to_string(round), First, {future("8001")});
                const auto reply = operate(m_fixture->east(), session, EZvDataOperation::Add, record);
                added += reply.error.isSuccess() ? 1 : 0;
                refused += reply.error.code() == EErrorCode::Duplicate ? 1 : 0;
            }
        });
        QCOMPARE(added.load(), Rounds);
        QCOMPARE(refused.load(), Rounds * (Threads - 1));
        QCOMPARE(m_fixture->number("SELECT count(DISTINCT group_id) FROM account_group"), Rounds);
        // The other refusals are a flood, of which the number is kept.
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit"), Rounds + service::RefusedAttempts::Limits().rows);
    }

    void noSaveOfAConfigurationIsLostAmongSeveralUsers()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        std::vector<service::SessionPtr> sessions;
        for (int i = 0; i < Threads; ++i) {
            sessions.push_back(m_fixture->session("user" + std::to_string(i), everyRight()));
        }
        std::atomic<int> others{0};
        onThreads([&](int thread) {
            const service::SessionPtr& session = sessions[static_cast<std::size_t>(thread)];
            for (int done = 0; done < Rounds;) {
                // The number of limits counts the saves.
                const RiskConfigPtr config = loaded(m_fixture->east(), session, id);
                config->assetsRCs.push_back(stockLimit());
                const auto reply = save(m_fixture->east(), session, config);
                done += reply.error.isSuccess() ? 1 : 0;
                others += reply.error.isSuccess() || reply.error.code() == EErrorCode::Conflict ? 0 : 1;
            }
        });
        QCOMPARE(others.load(), 0);
        QCOMPARE(m_fixture->config(id)->assetsRCs.size(), std::size_t{Rounds * Threads});
        QCOMPARE(m_fixture->config(id)->revision(), std::int64_t{Rounds * Threads + 1});
        QCOMPARE(m_fixture->number("SELECT count(*) FROM group_risk_config_history"), Rounds * Threads);
    }

    void noModificationIsLostAndRevisionsCountThem()
    {
        const auto session = m_fixture->admin();
        m_fixture->storedGroup("0");
        std::atomic<int> succeeded{0};
        std::atomic<int> others{0};
        onThreads([&](int) {
            for (int done = 0; done < Rounds;) {
                // The name counts: a lost update would make it smaller than the number of successes.
                const GroupPtr record = onlyGroup(m_fixture->east(), session);
                record->groupName = std::to_string(std::stoi(record->groupName) + 1);
                const auto reply = operate(m_fixture->east(), session, EZvDataOperation::Modify, record);
                if (reply.error.isSuccess()) {
                    ++succeeded;
                    ++done;
                } else if (reply.error.code() != EErrorCode::Conflict) {
                    ++others;
                    ++done;
                }
            }
        });
        QCOMPARE(others.load(), 0);
        QCOMPARE(succeeded.load(), Threads * Rounds);
        const GroupPtr last = onlyGroup(m_fixture->east(), session);
        QCOMPARE(last->groupName, std::to_string(Threads * Rounds));
        QCOMPARE(last->revision(), std::int64_t{1 + Threads * Rounds});
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group_history"), 1 + Threads * Rounds);
    }

    void severalServicesOnOneDatabaseLoseNoModification()
    {
        const auto session = m_fixture->admin();
        m_fixture->storedGroup("0");
        std::vector<support::RealService> services;
        for (int i = 0; i < Threads; ++i) {
            services.emplace_back(m_fixture->location());
        }
        std::atomic<int> others{0};
        onThreads([&](int thread) {
            service::DataEngine& engine = services[static_cast<std::size_t>(thread)].engine();
            for (int done = 0; done < Rounds;) {
                const GroupPtr record = onlyGroup(engine, session);
                record->groupName = std::to_string(std::stoi(record->groupName) + 1);
                const auto reply = operate(engine, session, EZvDataOperation::Modify, record);
                done += reply.error.isSuccess() ? 1 : 0;
                others += reply.error.isSuccess() || reply.error.code() == EErrorCode::Conflict ? 0 : 1;
            }
        });
        QCOMPARE(others.load(), 0);
        const GroupPtr last = onlyGroup(m_fixture->east(), session);
        QCOMPARE(last->groupName, std::to_string(Threads * Rounds));
        QCOMPARE(last->revision(), std::int64_t{1 + Threads * Rounds});
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group_history"), 1 + Threads * Rounds);
    }

    void sameOperationFromSeveralThreadsIsAppliedOnce()
    {
        const auto session = m_fixture->admin();
        std::atomic<int> succeeded{0};
        onThreads([&](int) {
            for (int round = 0; round < Rounds; ++round) {
                const std::string number = std::to_string(round);
                const auto record = group("组" + number, First, {future("8001")});
                const auto reply = operate(m_fixture->east(), session, EZvDataOperation::Add, record, "op" + number);
                succeeded += reply.error.isSuccess() ? 1 : 0;
            }
        });
        QCOMPARE(succeeded.load(), Rounds * Threads);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group"), Rounds);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit"), Rounds);
    }

    void readersSeeWholeChangesOnly()
    {
        const auto session = m_fixture->admin();
        m_fixture->storedGroup("1");
        std::atomic<bool> isDone{false};
        std::atomic<int> torn{0};
        std::atomic<int> reads{0};
        std::thread writer([&] {
            // A group named "1" has one account, one named "2" has two.
            for (int round = 0; round < 4 * Rounds || reads < 10; ++round) {
                const GroupPtr record = onlyGroup(m_fixture->east(), session);
                const bool isOne = record->groupName == "1";
                record->groupName = isOne ? "2" : "1";
                record->accounts = {future("8001")};
                if (isOne) {
                    record->accounts.push_back(future("8002"));
                }
                operate(m_fixture->east(), session, EZvDataOperation::Modify, record);
            }
            isDone = true;
        });
        onThreads([&](int index) {
            while (!isDone) {
                const auto key = index % 2 == 0 ? "1" : "";
                const auto reply = query(m_fixture->east(), session, nvservice::DataType::AccountGroup, key);
                const auto record = boost::dynamic_pointer_cast<CAccountGroup>(reply.records.at(0));
                torn += std::to_string(record->accounts.size()) == record->groupName ? 0 : 1;
                ++reads;
            }
        });
        writer.join();
        QVERIFY(reads >= 10);
        QCOMPARE(torn.load(), 0);
    }

    void serversOfOneStoreDoNotDisturbEachOther()
    {
        const auto eastern = m_fixture->session("eastern", everyRight());
        const auto western = m_fixture->session("western", everyRight(), None, 1);
        std::atomic<int> failed{0};
        onThreads([&](int index) {
            const bool isEast = index % 2 == 0;
            for (int round = 0; round < Rounds; ++round) {
                const auto record = group("组" + std::to_string(index / 2 * Rounds + round), First, {future("8001")});
                const auto reply = operate(isEast ? m_fixture->east() : m_fixture->west(), isEast ? eastern : western,
                                           EZvDataOperation::Add, record);
                failed += reply.error.isSuccess() ? 0 : 1;
            }
        });
        QCOMPARE(failed.load(), 0);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group WHERE server_id = 1"), Threads / 2 * Rounds);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group WHERE server_id = 2"), Threads / 2 * Rounds);
        QCOMPARE(m_fixture->number("SELECT max(group_id) FROM account_group"), Threads / 2 * Rounds);
    }

    void storeMayGoWhileThreadsThatUsedItLiveOn()
    {
        std::atomic<bool> isUsed{false};
        std::atomic<bool> isGone{false};
        auto fixture = std::make_unique<ServiceFixture>();
        const auto session = fixture->admin();
        std::thread user([&] {
            query(fixture->east(), session, nvservice::DataType::Account);
            isUsed = true;
            while (!isGone) {
                std::this_thread::yield();
            }
            ServiceFixture another;
            QCOMPARE(query(another.east(), another.admin(), nvservice::DataType::Account).totalCount, 8);
        });
        while (!isUsed) {
            std::this_thread::yield();
        }
        fixture.reset();
        isGone = true;
        user.join();
    }
};

TEST_WITHOUT_WIDGETS(ConcurrencyTest)
#include "tst_concurrency.moc"
