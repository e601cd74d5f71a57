#include "platform/network/FakeServer.h"
#include "platform/wire/WireSamples.h"
#include "support/UnexpectedLog.h"

#include "platform/wire/ReplyEncoder.h"

#include <nvservice/CAccountGroup.h>

#include <QtTest>

#include <thread>

using namespace support;
using namespace wire;
using QAV::CNetworkTransport;
using QAV::EConnectionState;
using utils::EErrorCode;

namespace
{

constexpr auto Soon = std::chrono::milliseconds(300);

std::string chunkOf(std::int64_t id, int number)
{
    ReplyEncoder encoder(id);
    encoder.add(*samples::groupOf(number, 1));
    return samples::frameOf(encoder.take());
}

std::string beginOf(std::int64_t id, int total = 1)
{
    return samples::frameOf(encode(ReplyBegin{id, total}));
}

std::string endOf(std::int64_t id, std::int64_t count = 1)
{
    return samples::frameOf(encode(ReplyEnd{id, {}, count, {}}));
}

} // namespace

/// Requests and answers on a connection that holds.
class TestNetworkRequests : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_log = std::make_unique<UnexpectedLog>();
        m_server = std::make_unique<FakeServer>();
        QVERIFY(m_server->start());
    }

    void cleanup()
    {
        m_transport.reset();
        m_server.reset();
        QCOMPARE(m_log->unexpected(), QStringList());
        QCOMPARE(m_log->missing(), QStringList());
        m_log.reset();
    }

    void theClientGreetsWithItsVersions()
    {
        m_server->greets = false;
        connect();
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
        connect();
        Answers answers;
        m_transport->logIn("admin", "secret", answers.onLogIn());
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
        connect();
        Answers answers;
        m_transport->logIn(std::string(MaxNameBytes + 1, 'x'), "secret", answers.onLogIn());
        QTRY_COMPARE(answers.count(), std::size_t(1));
        QCOMPARE(answers.at(0).error.code(), EErrorCode::InvalidValue);
    }

    void recordsOfAQueryComeInOrder()
    {
        Answers answers = logIn();
        m_transport->query(queryOf("17"), answers.onReply());
        const Query query = waitFor<Query>();
        QCOMPARE(query.request.queryKey, std::string("17"));
        m_server->peer()->sendRaw(groupsReply(query.id, 500));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        const Answers::Reply reply = answers.last();
        QVERIFY2(reply.error.isSuccess(), reply.error.errorMsg().c_str());
        QCOMPARE(reply.totalCount, 500);
        QCOMPARE(reply.records.size(), std::size_t(500));
        for (int i = 0; i < 500; ++i)
            QCOMPARE(reply.records[std::size_t(i)]->getKey(), samples::groupOf(i, 0)->getKey());
    }

    void anOperationBringsErrorAndDocument()
    {
        Answers answers = logIn();
        m_transport->operate(operationOf("op-1"), answers.onReply());
        const Operate operate = waitFor<Operate>();
        QCOMPARE(operate.request.operationId, std::string("op-1"));
        QCOMPARE(operate.request.data->getKey(), samples::groupOf(1, 2)->getKey());
        const utils::NVError conflict(EErrorCode::Conflict, "已被他人修改");
        m_server->peer()->send(encode(ReplyEnd{operate.id, conflict, 0,
                                               BSON("by"
                                                    << "甲")}));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().error.code(), EErrorCode::Conflict);
        QCOMPARE(answers.last().error.errorMsg(), conflict.errorMsg());
        QCOMPARE(std::string(answers.last().document.getStringField("by")), std::string("甲"));
    }

    void requestsWaitForTheLogInBeforeThem()
    {
        m_server->logsIn = false;
        connect();
        Answers answers;
        m_transport->logIn("admin", "secret", answers.onLogIn());
        m_transport->query(queryOf("1"), answers.onReply());
        m_transport->operate(operationOf("op-2"), answers.onReply());
        const LogIn logIn = waitFor<LogIn>();
        m_server->peer()->send(encode(Ping{1}));
        waitFor<Pong>();
        QCOMPARE(m_server->peer()->received.size(), std::size_t(0));
        auto user = boost::shared_ptr<nvservice::CUserInfo>(new nvservice::CUserInfo);
        m_server->peer()->send(encode(LogInReply{logIn.id, {}, user}));
        QTRY_COMPARE(m_server->peer()->received.size(), std::size_t(2));
        QVERIFY(std::holds_alternative<Query>(m_server->peer()->received[0]));
        QVERIFY(std::holds_alternative<Operate>(m_server->peer()->received[1]));
    }

    void anotherSubSystemThanExpectedIsRefused()
    {
        QAV::NetworkServer address = m_server->address();
        address.systemTag = "BJ02";
        QCOMPARE(refusalOf(address), std::string("无法连接: 该地址上是分系统“上海分系统” (SH01), 而不是 BJ02"));
    }

    void aServerThatRefusesTheVersionIsExplained()
    {
        m_server->greets = false;
        m_server->onMessage = [](FakePeer& peer, const Message& message) {
            std::int32_t protocol = 0;
            Hello hello = std::get<Hello>(message);
            hello.oldestProtocol = hello.newestProtocol = NewestProtocol + 1;
            peer.send(encode(Refused{chooseProtocol(hello, protocol), OldestProtocol, NewestProtocol, sdkVersion()}));
            peer.close();
            return true;
        };
        QCOMPARE(refusalOf(m_server->address()),
                 std::string("无法连接: 通信协议版本不兼容: 服务端支持 1, 客户端支持 2"));
    }

    void aServerThatSpeaksALaterProtocolOnlyIsRefused()
    {
        m_server->welcome.protocol = NewestProtocol + 1;
        QCOMPARE(refusalOf(m_server->address()), std::string("无法连接: 服务端的通信协议版本不受支持: 2"));
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

    void answersToNobodyAndSecondAnswersAreDropped()
    {
        Answers answers = logIn();
        m_transport->query(queryOf("1"), answers.onReply());
        const Query query = waitFor<Query>();
        const std::int64_t nobody = query.id + 1000;
        m_server->peer()->sendRaw(beginOf(nobody) + chunkOf(nobody, 1) + endOf(nobody) + groupsReply(query.id, 3) +
                                  endOf(query.id) + groupsReply(query.id, 4));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().records.size(), std::size_t(3));
        QVERIFY(isAlive());
        QCOMPARE(answers.count(), std::size_t(2));
    }

    void anAnswerThatBreaksTheOrderIsMalformedAndTheConnectionGoesOn_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("isOperation");
        const std::int64_t id = 2; // of the first request after the log-in
        const auto row = [](const char* name, const std::string& bytes, bool isOperation = false) {
            QTest::newRow(name) << QByteArray(bytes.data(), int(bytes.size())) << isOperation;
        };
        row("chunk before begin", chunkOf(id, 1) + endOf(id));
        row("begin twice", beginOf(id) + beginOf(id) + endOf(id, 0));
        row("records without begin", endOf(id, 1));
        row("fewer records than said", beginOf(id) + chunkOf(id, 1) + endOf(id, 2));
        row("more records than said", beginOf(id) + chunkOf(id, 1) + chunkOf(id, 2) + endOf(id, 1));
        row("records of an operation", beginOf(id) + chunkOf(id, 1) + endOf(id, 1), true);
        row("count of an operation", endOf(id, 1), true);
        std::string broken = chunkOf(id, 1);
        broken[broken.find("nvservice::CAccountGroup")] = 'x';
        row("record of an unknown class", beginOf(id) + broken + chunkOf(id, 2) + endOf(id, 2));
        broken = chunkOf(id, 1);
        broken[broken.find("accounts") + 9] = 1; // the length of the list
        row("record of a broken shape", beginOf(id) + broken + endOf(id, 1));
    }
    void anAnswerThatBreaksTheOrderIsMalformedAndTheConnectionGoesOn()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, isOperation);
        Answers answers = logIn();
        if (isOperation) {
            m_transport->operate(operationOf("op"), answers.onReply());
            QCOMPARE(waitFor<Operate>().id, std::int64_t(2));
        } else {
            m_transport->query(queryOf("1"), answers.onReply());
            QCOMPARE(waitFor<Query>().id, std::int64_t(2));
        }
        m_server->peer()->sendRaw(bytes.toStdString());
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().error.code(), EErrorCode::Malformed);
        QCOMPARE(QString::fromStdString(answers.last().error.errorMsg()).endsWith(", 未知是否已执行"), isOperation);
        QVERIFY(answers.last().records.empty());
        QVERIFY(isAlive());
        QCOMPARE(answers.count(), std::size_t(2));
        QCOMPARE(m_server->peerCount(), std::size_t(1));
    }

    void anUnreadableMessageAnswersItsRequestAndCostsNothingElse()
    {
        m_log->expect("could not be read");
        Answers answers = logIn();
        m_transport->query(queryOf("1"), answers.onReply());
        const Query query = waitFor<Query>();
        m_server->peer()->send(BSON("type"
                                    << "nonsense"));
        m_server->peer()->send(BSON("x" << 1));
        m_server->peer()->send(BSON("type"
                                    << "replyBegin"
                                    << "id" << static_cast<long long>(query.id) << "totalCount"
                                    << "many"));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().error.code(), EErrorCode::Malformed);
        QCOMPARE(waitFor<Cancel>().id, query.id);
        QVERIFY(isAlive());
    }

    void messagesThatOnlyAClientSendsArePassedOver()
    {
        m_log->expect("not expected now");
        m_log->expect("the server reports: 测试");
        logIn();
        for (const samples::WireSample& sample : samples::clientSamples())
            m_server->peer()->sendRaw(sample.frame);
        m_server->peer()->send(encode(m_server->welcome));
        m_server->peer()->send(encode(LogInReply{77, {EErrorCode::NotLoggedIn, "x"}, nullptr}));
        m_server->peer()->send(encode(Fault{{EErrorCode::Malformed, "测试"}}));
        QVERIFY(isAlive());
    }

    void anErrorAfterRecordsDropsThem()
    {
        Answers answers = logIn();
        m_transport->query(queryOf("1"), answers.onReply());
        const Query query = waitFor<Query>();
        const utils::NVError failure(EErrorCode::StorageFailure, "磁盘已满");
        m_server->peer()->sendRaw(beginOf(query.id, 9) + chunkOf(query.id, 1) +
                                  samples::frameOf(encode(ReplyEnd{query.id, failure, 1, {}})));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().error.errorMsg(), failure.errorMsg());
        QVERIFY(answers.last().records.empty());
        QCOMPARE(answers.last().totalCount, 0);
    }

    void aConversationByteByByteIsAConversation()
    {
        m_server->greets = false;
        m_server->logsIn = false;
        connect();
        Answers answers;
        m_transport->logIn("admin", "secret", answers.onLogIn());
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
        auto user = boost::shared_ptr<nvservice::CUserInfo>(new nvservice::CUserInfo);
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
        QCOMPARE(answers.last().error.errorMsg(), std::string("请求过大, 无法发送"));
        QVERIFY(isAlive());
    }

    void aRequestOverItsDeadlineIsAnsweredAndCancelled()
    {
        m_deadline = Soon;
        Answers answers = logIn();
        m_transport->query(queryOf("1"), answers.onReply());
        const Query query = waitFor<Query>();
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().error.code(), EErrorCode::DeadlineExceeded);
        QCOMPARE(answers.last().error.errorMsg(), std::string("未应答: 超过 300 毫秒"));
        QCOMPARE(waitFor<Cancel>().id, query.id);
        m_transport->operate(operationOf("op"), answers.onReply());
        QTRY_COMPARE(answers.count(), std::size_t(3));
        QCOMPARE(answers.last().error.errorMsg(), std::string("未应答: 超过 300 毫秒, 未知是否已执行"));
        QCOMPARE(waitFor<Cancel>().id, waitFor<Operate>().id);
        // What comes too late is nobody's.
        m_server->peer()->sendRaw(groupsReply(query.id, 3));
        QVERIFY(isAlive());
        QCOMPARE(answers.count(), std::size_t(3));
    }

    void aReplyThatStopsHalfWayIsGivenUpAtTheDeadline()
    {
        m_deadline = Soon;
        Answers answers = logIn();
        m_transport->query(queryOf("1"), answers.onReply());
        const Query query = waitFor<Query>();
        m_server->peer()->sendRaw(beginOf(query.id) + chunkOf(query.id, 1));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().error.code(), EErrorCode::DeadlineExceeded);
        QVERIFY(answers.last().records.empty());
    }

    void noMoreRequestsAreSentThanAServerHasToTake()
    {
        Answers answers = logIn();
        for (int i = 0; i < 100; ++i)
            m_transport->query(queryOf(std::to_string(i)), answers.onReply());
        QTRY_COMPARE(m_server->peer()->count<Query>(), std::size_t(64));
        QVERIFY(isAlive());
        QCOMPARE(m_server->peer()->count<Query>(), std::size_t(64));
        m_server->onMessage = [](FakePeer& peer, const Message& message) {
            if (const auto* query = std::get_if<Query>(&message))
                peer.sendRaw(groupsReply(query->id, 1));
            return std::holds_alternative<Query>(message);
        };
        while (const auto query = m_server->peer()->take<Query>())
            m_server->peer()->sendRaw(groupsReply(query->id, 1));
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

    void aSlowServerDelaysNoOther()
    {
        FakeServer other;
        QVERIFY(other.start());
        CNetworkTransport quick(other.address());
        Answers slowAnswers = logIn();
        m_transport->query(queryOf("1"), slowAnswers.onReply());
        const Query query = waitFor<Query>();
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
            if (const auto* query = std::get_if<Query>(&message))
                peer.sendRaw(groupsReply(query->id, 3));
            else if (const auto* operate = std::get_if<Operate>(&message))
                peer.send(doneReply(operate->id));
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
        for (std::thread& thread : threads)
            thread.join();
        QTRY_COMPARE_WITH_TIMEOUT(answers.count(), std::size_t(401), 60000);
        for (std::size_t i = 0; i < answers.count(); ++i)
            QVERIFY(answers.at(i).error.isSuccess());
    }

    void whatWaitsWhenTheTransportIsDestroyedIsDropped()
    {
        Answers answers = logIn();
        for (int i = 0; i < 70; ++i)
            m_transport->query(queryOf("1"), answers.onReply());
        const Query query = waitFor<Query>();
        m_server->peer()->sendRaw(beginOf(query.id) + chunkOf(query.id, 1));
        m_transport.reset();
        QCOMPARE(answers.count(), std::size_t(1));
    }

private:
    void connect()
    {
        QAV::NetworkServer address = m_server->address();
        address.requestDeadline = m_deadline;
        m_deadline = std::chrono::seconds(60);
        m_transport = std::make_unique<CNetworkTransport>(address);
    }

    Answers logIn()
    {
        connect();
        Answers answers;
        m_transport->logIn("admin", "secret", answers.onLogIn());
        if (!QTest::qWaitFor([&] { return answers.count() == 1; }, 30000) || !answers.at(0).error.isSuccess())
            qFatal("no log-in");
        return answers;
    }

    /// The next message of a kind; waits for it.
    template <typename Kind>
    Kind waitFor()
    {
        std::optional<Kind> message;
        const bool came = QTest::qWaitFor(
            [&] {
                if (!message && m_server->peer())
                    message = m_server->peer()->take<Kind>();
                return message.has_value();
            },
            30000);
        if (!came)
            qFatal("the client does not send what is expected of it");
        return std::move(*message);
    }

    /// Whether the connection still works in both directions; everything that was sent before has been read then.
    bool isAlive()
    {
        m_server->peer()->send(encode(Ping{999999}));
        return waitFor<Pong>().id == 999999;
    }

    static std::string refusalOf(const QAV::NetworkServer& address)
    {
        CNetworkTransport transport(address);
        Answers answers;
        transport.logIn("admin", "secret", answers.onLogIn());
        return QTest::qWaitFor([&] { return answers.count() == 1; }, 30000) ? answers.at(0).error.errorMsg() : "";
    }

    std::unique_ptr<UnexpectedLog> m_log;
    std::unique_ptr<FakeServer> m_server;
    std::unique_ptr<CNetworkTransport> m_transport;
    std::chrono::milliseconds m_deadline = std::chrono::seconds(60);
};

QTEST_GUILESS_MAIN(TestNetworkRequests)
#include "tst_network_requests.moc"
