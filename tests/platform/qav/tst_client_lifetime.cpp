// SPDX-License-Identifier: Apache-2.0
#include "ClientTest.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <set>

using namespace support;
using namespace std::chrono_literals;
using utils::EErrorCode;

/// Servers that are not there, that go away, and a centre that shuts down; and the one thread of all callbacks.
class LifetimeTest : public ClientTest
{
    Q_OBJECT

private slots:
    void removingAServerAnswersWhatWaitsForIt()
    {
        CReplyCollector queries;
        CReplyCollector operations;
        m_client->queryData_async(groupQuery(), queries.onQuery(), 0);
        m_client->operateData_async(addOf(group(1, "甲")), operations.onOperate(), 0);
        const auto query = m_transport->takeQuery();
        m_centre->removeServer("深圳");
        QVERIFY(queries.first().error.code() == EErrorCode::Cancelled);
        QCOMPARE(text(queries.first().error), QString("分系统“深圳”已断开：请求已取消"));
        QCOMPARE(text(operations.first().error), QString("分系统“深圳”已断开：请求已取消，未知是否已执行"));

        query.handler(replyWith({group(1, "甲")}));
        CReplyCollector later;
        m_client->queryData_async(groupQuery(), later.onQuery(), 0);
        QVERIFY(later.first().error.code() == EErrorCode::NotConnected);
        QCOMPARE(queries.count(), std::size_t(1));
    }

    void shuttingDownAnswersEverythingBeforeItReturns()
    {
        for (int i = 0; i < 100; ++i) {
            ask();
        }
        m_centre->shutDown();
        QCOMPARE(m_replies.count(), std::size_t(100));
        for (const CollectedReply& reply : m_replies.replies()) {
            QVERIFY(reply.error.code() == EErrorCode::Cancelled);
        }
    }

    void cancellingAnswersEverythingBeforeItReturnsAndTheServersStay()
    {
        CReplyCollector operations;
        ask();
        m_client->operateData_async(addOf(group(1, "甲")), operations.onOperate(), 0);
        const auto query = m_transport->takeQuery();
        const auto operation = m_transport->takeOperation();
        m_centre->cancelRequests();
        QCOMPARE(m_replies.count(), std::size_t(1));
        QCOMPARE(operations.count(), std::size_t(1));
        QVERIFY(m_replies.first().error.code() == EErrorCode::Cancelled);
        QCOMPARE(text(m_replies.first().error), QString("分系统“深圳”的请求已取消"));
        QCOMPARE(text(operations.first().error), QString("分系统“深圳”的请求已取消，未知是否已执行"));
        auto cancelled = m_transport->cancelled();
        std::sort(cancelled.begin(), cancelled.end());
        QCOMPARE(cancelled, (std::vector<QAV::ITransport::RequestId>{query.id, operation.id}));

        query.handler(replyWith({group(1, "甲")}));
        CReplyCollector later;
        m_client->queryData_async(groupQuery(), later.onQuery(), 0);
        m_transport->takeQuery().handler(replyWith({group(1, "甲")}));
        QVERIFY(later.first().error.isSuccess());
        QCOMPARE(m_replies.count(), std::size_t(1));
    }

    void whatACancelledCallbackAsksIsNeverAnswered()
    {
        std::atomic<int> answers{0};
        const auto askAgain = [&](const auto&, const auto&, int, const auto&) {
            const auto count = [&](const auto&, const auto&, int, const auto&) { ++answers; };
            m_client->queryData_async(groupQuery(), count, 0);
            m_centre->getClientByName("上海")->queryData_async(groupQuery(), count, 0);
            m_centre->queryData_async(nullptr, count, 0);
        };
        m_client->queryData_async(groupQuery(), askAgain, 0);
        m_transport->takeQuery();
        m_centre->cancelRequests();
        m_transport->takeQuery().handler(replyWith({}));
        m_centre->shutDown();
        QCOMPARE(answers.load(), 0);
    }

    void afterCancellingNoCallbackRuns()
    {
        for (int round = 0; round < 50; ++round) {
            auto alive = std::make_unique<std::atomic<int>>(0);
            m_client->queryData_async(
                groupQuery(), [panel = alive.get()](const auto&, const auto&, int, const auto&) { ++*panel; }, 0);
            const auto query = m_transport->takeQuery();
            auto late = std::async(std::launch::async, [&] { query.handler(replyWith({group(1, "甲")})); });
            m_centre->cancelRequests();
            QCOMPARE(alive->load(), 1);
            alive.reset();
            late.get();
        }
    }

    void aReplyDuringShutDownGivesOneAnswer()
    {
        for (int round = 0; round < 50; ++round) {
            m_replies = {};
            ask();
            const auto query = m_transport->takeQuery();
            auto late = std::async(std::launch::async, [&] { query.handler(replyWith({group(1, "甲")})); });
            m_centre->shutDown();
            late.get();
            QCOMPARE(m_replies.count(), std::size_t(1));
            QVERIFY(m_centre->addServer("深圳", "SZ", m_transport).isSuccess());
            m_client = m_centre->getClientByName("深圳");
        }
    }

    void aClientThatOutlivesTheCentreStillAnswers()
    {
        const auto late = [&] { ask(); };
        late();
        m_centre.reset();
        QCOMPARE(m_replies.count(), std::size_t(1));
        late();
        QVERIFY(m_replies.waitFor(2));
        QVERIFY(m_replies.replies().back().error.code() == EErrorCode::NotConnected);
    }

    void shuttingDownFromACallbackDoesNotWaitForItself()
    {
        std::promise<void> done;
        ask();
        m_transport->onQuery = [](const auto&, const auto& handler) { handler(replyWith({})); };
        m_client->queryData_async(
            groupQuery(),
            [&](const auto&, const auto&, int, const auto&) {
                m_centre->shutDown();
                done.set_value();
            },
            0);
        done.get_future().wait();
        QVERIFY(m_replies.first().error.code() == EErrorCode::Cancelled);
    }

    void anUnknownServersClientAnswersWithAnError()
    {
        for (const auto& client : {m_centre->getClientByName("上海"), m_centre->getClientBySystemTag("SH"),
                                   m_centre->getClientBySystemTag("")}) {
            QVERIFY(client);
            QVERIFY(client->state() == QAV::EConnectionState::Disconnected);
            QCOMPARE(client->systemTag(), std::string());
            CReplyCollector replies;
            client->queryData_async(groupQuery(), replies.onQuery(), 0);
            client->operateData_async(addOf(group(1, "甲")), replies.onOperate(), 0);
            client->logIn_async("u", "p", replies.onLogIn());
            QVERIFY(replies.waitFor(3));
            for (const CollectedReply& reply : replies.replies()) {
                QVERIFY(reply.error.code() == EErrorCode::NotConnected);
            }
        }
        CReplyCollector replies;
        m_centre->getClientByName("上海")->queryData_async(groupQuery(), replies.onQuery(), 0);
        QCOMPARE(text(replies.first().error), QString("分系统“上海”未连接"));
    }

    void allCallbacksComeOnOneThreadThatIsNotTheCallers()
    {
        m_centre->setDeadline("深圳", 30ms);
        ask(); // deadline
        QVERIFY(m_replies.waitFor(1));
        m_centre->setDeadline("深圳", 1h);
        ask();
        m_transport->takeQuery();
        const auto query = m_transport->takeQuery();
        std::async(std::launch::async, [&] { query.handler(replyWith({})); }).get();            // from a foreign thread
        m_centre->getClientByName("无")->queryData_async(groupQuery(), m_replies.onQuery(), 0); // unknown server
        m_client->operateData_async(nullptr, m_replies.onOperate(), 0);                         // nothing to send
        ask();
        m_centre->removeServer("深圳"); // cancelled
        QVERIFY(m_replies.waitFor(5));
        std::set<std::thread::id> threads;
        for (const CollectedReply& reply : m_replies.replies()) {
            threads.insert(reply.thread);
        }
        QCOMPARE(threads.size(), std::size_t(1));
        QVERIFY(threads.count(std::this_thread::get_id()) == 0);
    }
};

TEST_WITHOUT_WIDGETS(LifetimeTest)
#include "tst_client_lifetime.moc"
