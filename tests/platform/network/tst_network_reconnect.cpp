// SPDX-License-Identifier: Apache-2.0
#include "platform/network/NetworkTest.h"

#include "platform/qav/network/CBackOff.h"

using namespace support;
using namespace wire;
using QAV::CNetworkTransport;
using QAV::EConnectionState;
using utils::EErrorCode;

/// Servers that go and come back.
class NetworkReconnectTest : public NetworkTest
{
    Q_OBJECT

private slots:
    void theStateIsToldAsItChanges()
    {
        std::mutex mutex;
        std::vector<EConnectionState> states;
        logIn();
        m_transport->setStateHandler([&](EConnectionState state) {
            const std::lock_guard<std::mutex> lock(mutex);
            states.push_back(state);
        });
        QTRY_VERIFY(m_transport->state() == EConnectionState::Connected);
        m_server->stop();
        m_server->peer()->abort();
        QTRY_VERIFY(m_transport->state() == EConnectionState::Disconnected);
        QVERIFY(m_server->start());
        QTRY_VERIFY(m_transport->state() == EConnectionState::Connected);
        m_transport->setStateHandler({});
        const std::lock_guard<std::mutex> lock(mutex);
        const std::vector<EConnectionState> end(states.end() - 2, states.end());
        QVERIFY(end[0] == EConnectionState::Connecting && end[1] == EConnectionState::Connected);
        QVERIFY(std::count(states.begin(), states.end(), EConnectionState::Disconnected) > 0);
        for (std::size_t i = 1; i < states.size(); ++i) {
            QVERIFY(states[i] != states[i - 1]);
        }
    }

    void theReasonIsToldWithTheState()
    {
        connectTransport();
        QTRY_VERIFY(m_transport->state() == EConnectionState::Connected);
        QCOMPARE(m_transport->stateReason(), std::string());
        logIn();
        QTRY_COMPARE(m_transport->stateReason(), std::string());
        m_server->greets = false; // the next connection stays in its greeting
        m_server->peer()->send(encode(Closing{60000, "服务维护"}));
        m_server->peer()->close();
        QTRY_COMPARE(m_transport->stateReason(), std::string("连接中断：服务维护"));
        QVERIFY(m_transport->state() == EConnectionState::Connecting);
        QTRY_COMPARE(m_server->peerCount(), std::size_t(3));
        m_server->stop();
        m_server->peer()->abort();
        QTRY_VERIFY(m_transport->state() == EConnectionState::Disconnected);
        QTRY_COMPARE(m_transport->stateReason(), std::string("无法连接：服务端拒绝连接或没有启动"));
        m_server->greets = true;
        QVERIFY(m_server->start());
        QTRY_VERIFY(m_transport->state() == EConnectionState::Connected);
        QCOMPARE(m_transport->stateReason(), std::string());
    }

    void changesAreAskedForFromWhereTheyEnded()
    {
        logIn();
        std::atomic<int> told{0};
        m_transport->changeSource().setChangeHandler([&](const QAV::IChangeSource::Changes&) { ++told; });
        QCOMPARE(waitFor<Listen>().position, std::string());
        m_server->peer()->abort();
        const std::string unknown = waitFor<Listen>().position; // what was missed since then is missed for good
        QVERIFY(!unknown.empty());
        m_server->peer()->send(encode(Changed{"7", false, {}}));
        QTRY_COMPARE(told.load(), 1);
        m_server->peer()->abort();
        QCOMPARE(waitFor<Listen>().position, std::string("7"));
        m_transport->changeSource().setChangeHandler({});
    }

    void theUserIsLoggedInAgainAndWhatWasSentIsSentAgainInOrder()
    {
        Answers answers = logIn();
        Answers first;
        Answers second;
        Answers third;
        m_transport->operate(operationOf("op-1"), first.onReply());
        m_transport->query(queryOf("2"), second.onReply());
        m_transport->operate(operationOf("op-3"), third.onReply());
        QTRY_COMPARE(m_server->peer()->received.size(), std::size_t(3));
        const std::int64_t oldId = m_server->peer()->take<Operate>()->id;
        m_server->logsIn = false;
        m_server->peer()->abort();
        QTRY_COMPARE(m_server->peerCount(), std::size_t(2));
        const LogIn again = waitFor<LogIn>();
        QCOMPARE(again.user, std::string("admin"));
        QCOMPARE(again.password, std::string("secret"));
        QVERIFY(m_transport->state() == EConnectionState::Connecting);
        m_server->peer()->send(encode(LogInReply{again.id, {}, boost::make_shared<nvservice::CUserInfo>()}));
        QTRY_COMPARE(m_server->peer()->received.size(), std::size_t(3));
        const auto& received = m_server->peer()->received;
        QCOMPARE(std::get<Operate>(received[0]).request.operationId, std::string("op-1"));
        QCOMPARE(std::get<Query>(received[1]).request.queryKey, std::string("2"));
        QCOMPARE(std::get<Operate>(received[2]).request.operationId, std::string("op-3"));
        QVERIFY(std::get<Operate>(received[0]).id > oldId);
        for (const Message& message : std::vector<Message>(received)) {
            answerAtOnce(*m_server->peer(), message);
        }
        QTRY_VERIFY(first.count() == 1 && second.count() == 1 && third.count() == 1);
        QVERIFY(first.last().error.isSuccess() && third.last().error.isSuccess());
        QCOMPARE(second.last().records.size(), std::size_t(2));
        QCOMPARE(answers.count(), std::size_t(1));
    }

    void whileTheServerIsDownRequestsAreRefusedAtOnceWithTheReason()
    {
        Answers answers = logIn();
        Answers operation;
        m_transport->query(queryOf("1"), answers.onReply());
        m_transport->operate(operationOf("op-1"), operation.onReply());
        waitFor<Operate>();
        m_server->stop();
        m_server->peer()->abort();
        // The query waited for one attempt; the operation may have been carried out and waits on.
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().error.code(), EErrorCode::NotConnected);
        QCOMPARE(answers.last().error.errorMsg(), std::string("无法连接：服务端拒绝连接或没有启动"));
        m_transport->query(queryOf("2"), answers.onReply());
        Answers unsent;
        m_transport->operate(operationOf("op-2"), unsent.onReply());
        QTRY_COMPARE(answers.count(), std::size_t(3));
        QTRY_COMPARE(unsent.count(), std::size_t(1));
        // It was never sent: there is no doubt.
        QCOMPARE(unsent.last().error.errorMsg(), std::string("无法连接：服务端拒绝连接或没有启动"));
        QCOMPARE(operation.count(), std::size_t(0));
        QVERIFY(m_server->start());
        QTRY_COMPARE(m_server->peerCount(), std::size_t(2));
        const Operate again = waitFor<Operate>();
        QCOMPARE(again.request.operationId, std::string("op-1"));
        m_server->peer()->send(doneReply(again.id));
        QTRY_COMPARE(operation.count(), std::size_t(1));
        QVERIFY(operation.last().error.isSuccess());
    }

    void anOperationThatIsCancelledWhileItsServerIsAwayIsNotSentAgain()
    {
        Answers answers = logIn();
        const auto operation = m_transport->operate(operationOf("op-1"), answers.onReply());
        waitFor<Operate>();
        m_server->stop();
        m_server->peer()->abort();
        QTRY_VERIFY(m_transport->state() == EConnectionState::Disconnected);
        m_transport->cancel(operation);
        QVERIFY(m_server->start());
        QTRY_VERIFY(m_transport->state() == EConnectionState::Connected);
        m_transport->operate(operationOf("op-2"), answers.onReply());
        QCOMPARE(waitFor<Operate>().request.operationId, std::string("op-2"));
        QCOMPARE(answers.count(), std::size_t(1));
    }

    void aLogInEndsThePause()
    {
        m_server->stop();
        QAV::NetworkServer address = m_server->address();
        address.firstPause = address.longestPause = std::chrono::hours(1);
        m_transport = std::make_unique<CNetworkTransport>(address);
        QTRY_VERIFY(m_transport->state() == EConnectionState::Disconnected);
        Answers answers;
        m_transport->logIn("admin", "secret", answers.onLogIn());
        QTRY_COMPARE(answers.count(), std::size_t(1));
        QCOMPARE(answers.last().error.code(), EErrorCode::NotConnected);
        QVERIFY(m_server->start());
        m_transport->logIn("admin", "secret", answers.onLogIn());
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QVERIFY(answers.last().error.isSuccess());
    }

    void nobodyIsCalledUpForNobody()
    {
        connectTransport();
        QTRY_VERIFY(m_transport->state() == EConnectionState::Connected);
        m_server->peer()->close(); // as a server does when nobody logs in
        QTRY_VERIFY(m_transport->state() == EConnectionState::Disconnected);
        Answers answers;
        m_transport->query(queryOf("1"), answers.onReply());
        QTRY_COMPARE(answers.count(), std::size_t(1));
        QCOMPARE(answers.last().error.code(), EErrorCode::NotLoggedIn);
        QCOMPARE(m_server->peerCount(), std::size_t(2));
        m_server->peer()->close();
        QTRY_VERIFY(m_transport->state() == EConnectionState::Disconnected);
        m_transport->logIn("admin", "secret", answers.onLogIn());
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QVERIFY(answers.last().error.isSuccess());
        QCOMPARE(m_server->peerCount(), std::size_t(3));
    }

    void aUserWhoCameBeforeTheServerIsLoggedInWhenItIsThere()
    {
        m_server->stop();
        Answers answers = beginLogIn();
        QTRY_COMPARE(answers.count(), std::size_t(1));
        QCOMPARE(answers.last().error.code(), EErrorCode::NotConnected);
        m_server->onMessage = &answerAtOnce;
        QVERIFY(m_server->start());
        QTRY_VERIFY(m_transport->state() == EConnectionState::Connected);
        m_transport->query(queryOf("1"), answers.onReply());
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().records.size(), std::size_t(2));
    }

    void aUserWhoIsNoLongerAcceptedIsToldSo()
    {
        Answers answers = logIn();
        Answers operation;
        m_transport->query(queryOf("1"), answers.onReply());
        m_transport->operate(operationOf("op-1"), operation.onReply());
        waitFor<Operate>();
        m_server->logsIn = false;
        m_server->peer()->abort();
        QTRY_COMPARE(m_server->peerCount(), std::size_t(2));
        const utils::NVError no(EErrorCode::NotLoggedIn, "用户名或密码错误");
        m_server->peer()->send(encode(LogInReply{waitFor<LogIn>().id, no, nullptr}));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().error.code(), EErrorCode::NotLoggedIn);
        QTRY_COMPARE(operation.count(), std::size_t(1));
        QCOMPARE(operation.last().error.code(), EErrorCode::NotLoggedIn);
        QVERIFY(QString::fromStdString(operation.last().error.errorMsg()).endsWith("未知是否已执行"));
        QVERIFY(m_transport->state() == EConnectionState::Connected);
    }

    void aServerThatCannotLogInJustNowIsAskedAgain()
    {
        logIn();
        m_server->logsIn = false;
        m_server->peer()->abort();
        for (std::size_t attempt = 2; attempt < 5; ++attempt) {
            QTRY_COMPARE(m_server->peerCount(), attempt);
            const utils::NVError busy(EErrorCode::ResourceExhausted, "登录过多");
            m_server->peer()->send(encode(LogInReply{waitFor<LogIn>().id, busy, nullptr}));
        }
        m_server->logsIn = true;
        QTRY_VERIFY(m_transport->state() == EConnectionState::Connected);
    }

    void aLogInThatIsCutIsMadeAgain()
    {
        m_server->logsIn = false;
        Answers answers = beginLogIn();
        waitFor<LogIn>();
        m_server->logsIn = true;
        m_server->peer()->abort();
        QTRY_COMPARE(answers.count(), std::size_t(1));
        QVERIFY(answers.last().error.isSuccess());
    }

    void aLogInThatIsCancelledCostsTheConnection()
    {
        m_server->logsIn = false;
        connectTransport();
        Answers answers;
        const auto logIn = m_transport->logIn("admin", "secret", answers.onLogIn());
        waitFor<LogIn>();
        m_transport->cancel(logIn);
        QTRY_VERIFY(!m_server->peer()->isOpen()); // nobody knows who is logged in there
        m_server->logsIn = true;
        m_transport->logIn("admin", "secret", answers.onLogIn());
        QTRY_COMPARE(answers.count(), std::size_t(1));
        QVERIFY(answers.last().error.isSuccess());
        QCOMPARE(m_server->peerCount(), std::size_t(2));
    }

    void aServerThatIsStoppingGetsNoMoreRequestsAndItsAnswersCount()
    {
        Answers answers = logIn();
        const Query query = ask("1", answers);
        m_server->peer()->send(encode(Closing{60000, "服务维护"}));
        m_server->peer()->send(encode(Ping{1}));
        waitFor<Pong>();
        m_transport->query(queryOf("2"), answers.onReply());
        m_server->peer()->send(encode(Ping{2}));
        waitFor<Pong>();
        QCOMPARE(m_server->peer()->count<Query>(), std::size_t(0));
        m_server->peer()->sendRaw(groupsReply(query.id, 3));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().records.size(), std::size_t(3));
        m_server->peer()->close();
        QTRY_COMPARE(m_server->peerCount(), std::size_t(2));
        const Query second = waitFor<Query>();
        QCOMPARE(second.request.queryKey, std::string("2"));
        m_server->peer()->sendRaw(groupsReply(second.id, 4));
        QTRY_COMPARE(answers.count(), std::size_t(3));
        QCOMPARE(answers.last().records.size(), std::size_t(4));
    }

    void aServerThatFlapsIsNotStormed()
    {
        QAV::NetworkServer address = m_server->address();
        address.firstPause = std::chrono::milliseconds(50);
        address.longestPause = std::chrono::hours(1);
        m_transport = std::make_unique<CNetworkTransport>(address);
        Answers answers;
        m_transport->logIn("admin", "secret", answers.onLogIn());
        QTRY_COMPARE(answers.count(), std::size_t(1));
        // Greets and hangs up, again and again: pauses of 25, 50, 100, ... milliseconds at least.
        QElapsedTimer timer;
        timer.start();
        for (std::size_t peers = 1; peers <= 5; ++peers) {
            QTRY_COMPARE_WITH_TIMEOUT(m_server->peerCount(), peers, 60000);
            QTRY_VERIFY(m_transport->state() == EConnectionState::Connected);
            m_server->peer()->abort();
        }
        QVERIFY(timer.elapsed() >= 25 + 50 + 100 + 200);
    }

    void pausesGrowAndAreRandom()
    {
        using std::chrono::milliseconds;
        QAV::CBackOff backOff(milliseconds(100), milliseconds(1000));
        std::set<milliseconds::rep> different;
        for (int round = 0; round < 20; ++round) {
            for (const int longest : {100, 200, 400, 800, 1000, 1000, 1000}) {
                const milliseconds pause = backOff.next();
                QVERIFY(pause >= milliseconds(longest / 2) && pause <= milliseconds(longest));
                different.insert(pause.count());
            }
            backOff.reset();
        }
        QVERIFY(different.size() > 20);
    }
};

TEST_WITHOUT_WIDGETS(NetworkReconnectTest)
#include "tst_network_reconnect.moc"
