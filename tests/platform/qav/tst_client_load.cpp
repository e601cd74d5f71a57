// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "support/qav/CFakeTransport.h"
#include "support/qav/CReplyCollector.h"
#include "support/records/Requests.h"

#include <QAV/CKolmClientCenter.h>
#include <nvservice/CAccountGroup.h>

#include <boost/make_shared.hpp>

#include <random>

using namespace support;
using namespace std::chrono_literals;

namespace
{

/// Answers from a thread of its own, in an order of its own: some at once, some twice, some never, some by throwing.
class CUnrulyTransport : public CFakeTransport
{
public:
    CUnrulyTransport()
    {
        onQuery = [this](const nvservice::CKolmQueryDataReq& request, ReplyHandler handler) {
            switch (m_count++ % 8) {
            case 0:
                handler(replyWith({}));
                return;
            case 1:
                throw std::runtime_error("unruly");
            case 2:
                return; // never
            default:
                push({request, std::move(handler)});
            }
        };
        m_thread = std::thread([this] { run(); });
    }

    ~CUnrulyTransport() override
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_stop = true;
        }
        m_wake.notify_all();
        m_thread.join();
    }

private:
    void push(Query query)
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_queue.push_back(std::move(query));
        }
        m_wake.notify_all();
    }

    void run()
    {
        std::mt19937 random(5);
        std::unique_lock<std::mutex> lock(m_mutex);
        while (!m_stop) {
            m_wake.wait(lock, [this] { return m_stop || !m_queue.empty(); });
            std::vector<Query> batch;
            batch.swap(m_queue);
            lock.unlock();
            std::shuffle(batch.begin(), batch.end(), random);
            for (const Query& query : batch) {
                auto record = boost::make_shared<nvservice::CAccountGroup>();
                record->groupId = query.request.dataType;
                query.handler(replyWith({record}));
                if (random() % 3 == 0) {
                    query.handler(replyWith({}));
                }
            }
            lock.lock();
        }
    }

    std::atomic<unsigned> m_count{0};
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::vector<Query> m_queue;
    bool m_stop = false;
    std::thread m_thread;
};

boost::shared_ptr<nvservice::CKolmQueryDataReq> query(int dataType)
{
    return support::shared(support::queryOf(dataType));
}

/// Counts the calls of each of many callbacks.
struct Tally {
    explicit Tally(std::size_t size) : calls(size) {}

    QAV::QueryCallback callback(std::size_t index)
    {
        return
            [this, index](const utils::NVError&, const std::vector<nvservice::IDataPtr>&, int, const bson::BSONObj&) {
                ++calls[index];
                ++total;
                const auto self = std::this_thread::get_id();
                std::thread::id none;
                if (!thread.compare_exchange_strong(none, self) && none != self) {
                    otherThread = true;
                }
            };
    }

    bool eachOnce() const
    {
        return std::all_of(calls.begin(), calls.end(), [](const auto& n) { return n == 1; });
    }

    std::vector<std::atomic<int>> calls;
    std::atomic<std::size_t> total{0};
    std::atomic<std::thread::id> thread{};
    std::atomic<bool> otherThread{false};
};

constexpr int Threads = 4;
constexpr int PerThread = 2500;

} // namespace

class LoadTest : public QObject
{
    Q_OBJECT

private slots:
    void tenThousandRequestsFromSeveralThreadsAreEachAnsweredOnce()
    {
        QAV::CKolmClientCenter centre;
        centre.setDeadline(1500ms);
        QVERIFY(centre.addServer("A", "a", boost::make_shared<CUnrulyTransport>()).isSuccess());
        QVERIFY(centre.addServer("B", "b", boost::make_shared<CUnrulyTransport>()).isSuccess());
        Tally tally(Threads * PerThread);
        std::vector<std::thread> threads;
        for (int t = 0; t < Threads; ++t) {
            threads.emplace_back([&, t] {
                const auto client = centre.getClientByName(t % 2 == 0 ? "A" : "B");
                for (int i = 0; i < PerThread; ++i) {
                    const std::size_t index = static_cast<std::size_t>(t * PerThread + i);
                    if (i % 5 == 0) {
                        centre.queryData_async(query(i), tally.callback(index), 0);
                    } else {
                        client->queryData_async(query(i), tally.callback(index), 0);
                    }
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        QTRY_VERIFY_WITH_TIMEOUT(tally.total == tally.calls.size(), 60000); // the silent ones need their deadline
        centre.shutDown();
        QVERIFY(tally.eachOnce());
        QVERIFY(!tally.otherThread);
    }

    void serversThatComeAndGoUnderLoadCostNoAnswer()
    {
        QAV::CKolmClientCenter centre;
        QVERIFY(centre.addServer("A", "a", boost::make_shared<CUnrulyTransport>()).isSuccess());
        Tally tally(2 * PerThread);
        std::thread one([&] {
            for (std::size_t i = 0; i < PerThread; ++i) {
                centre.queryData_async(query(1), tally.callback(i), 0);
            }
        });
        std::thread two([&] {
            for (std::size_t i = PerThread; i < 2 * PerThread; ++i) {
                centre.getClientBySystemTag("b")->queryData_async(query(1), tally.callback(i), 0);
            }
        });
        for (int round = 0; round < 20; ++round) {
            QVERIFY(centre.addServer("B", "b", boost::make_shared<CUnrulyTransport>()).isSuccess());
            centre.setDeadline("B", 1h);
            QCOMPARE(centre.getServerNameBySystemTag("b"), std::string("B"));
            centre.removeServer("B");
        }
        one.join();
        two.join();
        centre.shutDown();
        QVERIFY(tally.eachOnce());
    }

    void aServersNameIsFoundByTagTwoHundredThousandTimesInNoTime()
    {
        QAV::CKolmClientCenter centre;
        for (int i = 0; i < 10; ++i) {
            QVERIFY(centre
                        .addServer("分系统" + std::to_string(i), "system-tag-" + std::to_string(i),
                                   boost::make_shared<CFakeTransport>())
                        .isSuccess());
        }
        const std::string tag = "system-tag-7";
        std::size_t found = 0;
        for (int i = 0; i < 200000; ++i) {
            found += centre.getServerNameBySystemTag(tag) == "分系统7";
        }
        QCOMPARE(found, std::size_t(200000));
        QBENCHMARK_ONCE
        {
            for (int i = 0; i < 200000; ++i) {
                found += centre.getServerNameBySystemTag(tag).size();
            }
        }
    }
};

TEST_WITHOUT_WIDGETS(LoadTest)
#include "tst_client_load.moc"
