// SPDX-License-Identifier: Apache-2.0
#include "platform/network/NetworkTest.h"
#include "support/BsonMacros.h"

#include <thread>

using namespace support;
using namespace wire;
using QAV::CNetworkTransport;
using QAV::EConnectionState;
using utils::EErrorCode;

/// Requests and answers on a connection that holds.
class NetworkRequestsTest : public NetworkTest
{
    Q_OBJECT

private slots:
    void theClientGreetsWithItsVersions()
    {
        m_server->greets = false;
        connectTransport();
        QTRY_VERIFY(m_server->peer() && m_server->peer()->count<Hello>() == 1);
        const Hello hello = *m_server->peer()->take<Hello>();
        QCOMPARE(hello.oldestProtocol, OldestProtocol);
        QCOMPARE(hello.newestProtocol, NewestProtocol);
        QCOMPARE(hello.sdkVersion, sdkVersion());
        QVERIFY(m_transport->state() == EConnectionState::Connecting);
        m_server->peer()->send(encode(m_server->welcome));
        QTRY_VERIFY(m_transport->state() == EConnectionState::Connected);
    }

    void aLogInBringsTheUserOrTheReason()
    {
        m_server->logsIn = false;
        Answers answers = beginLogIn();
        QTRY_VERIFY(m_server->peer() && m_server->peer()->count<LogIn>() == 1);
        LogIn logIn = *m_server->peer()->take<LogIn>();
        QCOMPARE(logIn.user, std::string("admin"));
        QCOMPARE(logIn.password, std::string("secret"));
        const utils::NVError no(EErrorCode::NotLoggedIn, "用户名或密码错误");
        m_server->peer()->send(encode(LogInReply{logIn.id, no, nullptr}));
        QTRY_COMPARE(answers.count(), std::size_t(1));
        QCOMPARE(answers.at(0).error.errorMsg(), no.errorMsg());
        QVERIFY(answers.at(0).records.empty());
        // Nobody is logged in: nothing is sent.
        m_transport->query(queryOf(""), answers.onReply());
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.at(1).error.code(), EErrorCode::NotLoggedIn);
        m_server->logsIn = true;
        m_transport->logIn("admin", "right", answers.onLogIn());
        QTRY_COMPARE(answers.count(), std::size_t(3));
        QVERIFY(answers.at(2).error.isSuccess());
        QCOMPARE(static_cast<const nvservice::CUserInfo&>(*answers.at(2).records.at(0)).userId, std::string("admin"));
        QCOMPARE(m_server->peer()->count<Query>(), std::size_t(0));
    }

    void aNameThatNoServerTakesIsNotSent()
    {
        connectTransport();
        Answers answers;
        m_transport->logIn(std::string(MaxNameBytes + 1, 'x'), "secret", answers.onLogIn());
        QTRY_COMPARE(answers.count(), std::size_t(1));
        QCOMPARE(answers.at(0).error.code(), EErrorCode::InvalidValue);
    }

    void recordsOfAQueryComeInOrder()
    {
        Answers answers = logIn();
        const Query query = ask("17", answers);
        QCOMPARE(query.request.queryKey, std::string("17"));
        m_server->peer()->sendRaw(groupsReply(query.id, 500));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        const Answers::Reply reply = answers.last();
        QVERIFY2(reply.error.isSuccess(), reply.error.errorMsg().c_str());
        QCOMPARE(reply.totalCount, 500);
        QCOMPARE(reply.records.size(), std::size_t(500));
        for (int i = 0; i < 500; ++i) {
            QCOMPARE(reply.records[std::size_t(i)]->getKey(), samples::groupOf(i, 0)->getKey());
        }
    }

    void anOperationBringsErrorAndDocument()
    {
        Answers answers = logIn();
        m_transport->operate(operationOf("op-1"), answers.onReply());
        const Operate operate = waitFor<Operate>();
        QCOMPARE(operate.request.operationId, std::string("op-1"));
        QCOMPARE(operate.request.data->getKey(), samples::groupOf(1, 2)->getKey());
        const utils::NVError conflict(EErrorCode::Conflict, "已被他人修改");
        m_server->peer()->send(encode(ReplyEnd{operate.id, conflict, 0, BSON("by" << "甲")}));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().error.code(), EErrorCode::Conflict);
        QCOMPARE(answers.last().error.errorMsg(), conflict.errorMsg());
        QCOMPARE(std::string(answers.last().document.getField("by").str()), std::string("甲"));
    }

    void theIdOfAnAddedRecordIsNoDocument()
    {
        Answers answers = logIn();
        m_transport->operate(operationOf("op-1"), answers.onReply());
        m_server->peer()->send(encode(ReplyEnd{waitFor<Operate>().id, {}, 0, {}, 17}));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QVERIFY(answers.last().error.isSuccess());
        QVERIFY(answers.last().document.isEmpty());
    }

    void requestsWaitForTheLogInBeforeThem()
    {
        m_server->logsIn = false;
        Answers answers = beginLogIn();
        m_transport->query(queryOf("1"), answers.onReply());
        m_transport->operate(operationOf("op-2"), answers.onReply());
        const LogIn logIn = waitFor<LogIn>();
        m_server->peer()->send(encode(Ping{1}));
        waitFor<Pong>();
        QCOMPARE(m_server->peer()->received.size(), std::size_t(0));
        const auto user = boost::make_shared<nvservice::CUserInfo>();
        m_server->peer()->send(encode(LogInReply{logIn.id, {}, user}));
        QTRY_COMPARE(m_server->peer()->received.size(), std::size_t(2));
        QVERIFY(std::holds_alternative<Query>(m_server->peer()->received[0]));
        QVERIFY(std::holds_alternative<Operate>(m_server->peer()->received[1]));
    }

    void answersMayComeInAnyOrderAndInterleaved()
    {
        Answers first = logIn();
        Answers second;
        Answers third;
        m_transport->query(queryOf("1"), first.onReply());
        m_transport->query(queryOf("2"), second.onReply());
        m_transport->operate(operationOf("op"), third.onReply());
        const Query one = waitFor<Query>();
        const Query two = waitFor<Query>();
        const Operate three = waitFor<Operate>();
        m_server->peer()->sendRaw(beginOf(two.id, 2) + beginOf(one.id) + chunkOf(two.id, 21) + chunkOf(one.id, 11) +
                                  samples::frameOf(doneReply(three.id)) + chunkOf(two.id, 22) + endOf(two.id, 2) +
                                  endOf(one.id, 1));
        QTRY_COMPARE(first.count(), std::size_t(2));
        QTRY_COMPARE(second.count(), std::size_t(1));
        QTRY_COMPARE(third.count(), std::size_t(1));
        QCOMPARE(first.last().records.size(), std::size_t(1));
        QCOMPARE(first.last().records[0]->getKey(), samples::groupOf(11, 0)->getKey());
        QCOMPARE(second.last().records.size(), std::size_t(2));
        QCOMPARE(second.last().records[1]->getKey(), samples::groupOf(22, 0)->getKey());
        QVERIFY(third.last().error.isSuccess());
    }

    void aConversationByteByByteIsAConversation()
    {
        m_server->greets = false;
        m_server->logsIn = false;
        Answers answers = beginLogIn();
        m_transport->query(queryOf("1"), answers.onReply());
        const auto trickle = [this](const std::string& bytes) {
            for (const char byte : bytes) {
                m_server->peer()->sendRaw(std::string(1, byte));
                QCoreApplication::processEvents();
            }
        };
        waitFor<Hello>();
        trickle(samples::frameOf(encode(m_server->welcome)));
        const LogIn logIn = waitFor<LogIn>();
        const auto user = boost::make_shared<nvservice::CUserInfo>();
        trickle(samples::frameOf(encode(LogInReply{logIn.id, {}, user})));
        const Query query = waitFor<Query>();
        trickle(groupsReply(query.id, 5));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().records.size(), std::size_t(5));
    }

    void anOperationThatIsTooLargeIsRefusedAtHome()
    {
        Answers answers = logIn();
        nvservice::COperateDataReq request = operationOf("op");
        static_cast<nvservice::CAccountGroup&>(*request.data).groupName = std::string(MaxRecordBytes, 'x');
        m_transport->operate(request, answers.onReply());
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().error.code(), EErrorCode::ResourceExhausted);
        QCOMPARE(answers.last().error.errorMsg(), std::string("请求过大，无法发送"));
        QVERIFY(isAlive());
    }

    void aRequestThatIsCancelledIsCancelledAtTheServerAndItsAnswerDropped()
    {
        Answers answers = logIn();
        const auto query = m_transport->query(queryOf("1"), answers.onReply());
        const auto operation = m_transport->operate(operationOf("op"), answers.onReply());
        const Query sentQuery = waitFor<Query>();
        const Operate sentOperation = waitFor<Operate>();
        m_transport->cancel(operation);
        QCOMPARE(waitFor<Cancel>().id, sentOperation.id);
        m_server->peer()->sendRaw(beginOf(sentQuery.id) + chunkOf(sentQuery.id, 1)); // half a reply
        QVERIFY(isAlive());
        m_transport->cancel(query);
        QCOMPARE(waitFor<Cancel>().id, sentQuery.id);
        m_server->peer()->sendRaw(endOf(sentQuery.id));
        m_server->peer()->send(doneReply(sentOperation.id));
        QVERIFY(isAlive());
        QCOMPARE(answers.count(), std::size_t(1));
    }

    void whatWasAnsweredOrIsUnknownIsNotCancelled()
    {
        m_server->onMessage = &answerAtOnce;
        Answers answers = logIn();
        const auto query = m_transport->query(queryOf("1"), answers.onReply());
        QTRY_COMPARE(answers.count(), std::size_t(2));
        m_transport->cancel(query);
        m_transport->cancel(4711);
        m_transport->query(queryOf("2"), answers.onReply());
        QTRY_COMPARE(answers.count(), std::size_t(3));
        QCOMPARE(m_server->peer()->count<Cancel>(), std::size_t(0));
    }

    void aRequestThatIsCancelledMakesRoomForTheNextAndOneThatWaitsIsNeverSent()
    {
        Answers answers = logIn();
        std::vector<QAV::ITransport::RequestId> ids;
        for (int i = 0; i < 34; ++i) {
            ids.push_back(m_transport->query(queryOf(std::to_string(i)), answers.onReply()));
        }
        QTRY_COMPARE(m_server->peer()->count<Query>(), std::size_t(32));
        m_transport->cancel(ids[32]);
        m_transport->cancel(ids[5]);
        QTRY_COMPARE(m_server->peer()->count<Query>(), std::size_t(33));
        QCOMPARE(std::get<Query>(m_server->peer()->received.back()).request.queryKey, std::string("33"));
        QCOMPARE(m_server->peer()->count<Cancel>(), std::size_t(1));
        QCOMPARE(answers.count(), std::size_t(1));
    }

    void noMoreRequestsAreSentThanAServerHasToTake()
    {
        Answers answers = logIn();
        for (int i = 0; i < 100; ++i) {
            m_transport->query(queryOf(std::to_string(i)), answers.onReply());
        }
        QTRY_COMPARE(m_server->peer()->count<Query>(), std::size_t(32));
        QVERIFY(isAlive());
        QCOMPARE(m_server->peer()->count<Query>(), std::size_t(32));
        m_server->onMessage = [](FakePeer& peer, const Message& message) {
            if (const auto* query = std::get_if<Query>(&message)) {
                peer.sendRaw(groupsReply(query->id, 1));
            }
            return std::holds_alternative<Query>(message);
        };
        while (const auto query = m_server->peer()->take<Query>()) {
            m_server->peer()->sendRaw(groupsReply(query->id, 1));
        }
        QTRY_COMPARE(answers.count(), std::size_t(101));
    }

    void thePeersKeepEachOtherAlive()
    {
        m_server->welcome.keepAliveSeconds = 1;
        logIn();
        m_server->peer()->send(encode(Ping{4711}));
        QCOMPARE(waitFor<Pong>().id, std::int64_t(4711));
        const Ping ping = waitFor<Ping>();
        m_server->peer()->send(encode(Pong{ping.id}));
        // From now on the server is silent: it is given up and called again.
        QTRY_COMPARE_WITH_TIMEOUT(m_server->peerCount(), std::size_t(2), 30000);
        QTRY_VERIFY(m_transport->state() == EConnectionState::Connected);
    }

    void pingsAreFewWhateverTheServerWants_data()
    {
        const support::DataRows<int> row("seconds");
        row("often", 1);
        row("never", std::numeric_limits<std::int32_t>::max());
    }
    void pingsAreFewWhateverTheServerWants()
    {
        QFETCH(int, seconds);
        m_server->welcome.keepAliveSeconds = seconds;
        QElapsedTimer timer;
        timer.start();
        logIn();
        if (seconds == 1) {
            for (int i = 0; i < 4; ++i) {
                m_server->peer()->send(encode(Pong{waitFor<Ping>().id}));
            }
            QVERIFY2(timer.elapsed() >= 1500, qPrintable(QString::number(timer.elapsed())));
        } else {
            for (int i = 0; i < 100; ++i) {
                QVERIFY(isAlive());
            }
            QCOMPARE(m_server->peer()->count<Ping>(), std::size_t(0));
        }
        QCOMPARE(m_server->peerCount(), std::size_t(1));
    }

    void aSlowServerDelaysNoOther()
    {
        FakeServer other;
        QVERIFY(other.start());
        CNetworkTransport quick(other.address());
        Answers slowAnswers = logIn();
        const Query query = ask("1", slowAnswers);
        m_server->peer()->sendRaw(beginOf(query.id));
        Answers answers;
        quick.logIn("admin", "secret", answers.onLogIn());
        quick.query(queryOf("1"), answers.onReply());
        QTRY_VERIFY(other.peer() && other.peer()->count<Query>() == 1);
        other.peer()->sendRaw(groupsReply(other.peer()->take<Query>()->id, 2));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(slowAnswers.count(), std::size_t(1));
    }

    void severalThreadsMayAskAtOnce()
    {
        m_server->onMessage = [](FakePeer& peer, const Message& message) {
            if (const auto* query = std::get_if<Query>(&message)) {
                peer.sendRaw(groupsReply(query->id, 3));
            } else if (const auto* operate = std::get_if<Operate>(&message)) {
                peer.send(doneReply(operate->id));
            }
            return true;
        };
        Answers answers = logIn();
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&] {
                for (int i = 0; i < 50; ++i) {
                    m_transport->query(queryOf("1"), answers.onReply());
                    m_transport->operate(operationOf("op"), answers.onReply());
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        QTRY_COMPARE_WITH_TIMEOUT(answers.count(), std::size_t(401), 60000);
        for (std::size_t i = 0; i < answers.count(); ++i) {
            QVERIFY(answers.at(i).error.isSuccess());
        }
    }

    void whatWaitsWhenTheTransportIsDestroyedIsDropped()
    {
        Answers answers = logIn();
        for (int i = 0; i < 70; ++i) {
            m_transport->query(queryOf("1"), answers.onReply());
        }
        const Query query = waitFor<Query>();
        m_server->peer()->sendRaw(beginOf(query.id) + chunkOf(query.id, 1));
        m_transport.reset();
        QCOMPARE(answers.count(), std::size_t(1));
    }
};

TEST_WITHOUT_WIDGETS(NetworkRequestsTest)
#include "tst_network_requests.moc"
