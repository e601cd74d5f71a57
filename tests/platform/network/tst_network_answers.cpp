// SPDX-License-Identifier: Apache-2.0
#include "platform/network/NetworkTest.h"
#include "support/BsonMacros.h"

#include <nvservice/Codec.h>

#include <QTcpSocket>

using namespace support;
using namespace wire;
using QAV::CNetworkTransport;
using utils::EErrorCode;

/// What a server may answer that it should not.
class NetworkAnswersTest : public NetworkTest
{
    Q_OBJECT

private slots:
    void anotherSubSystemThanExpectedIsRefused()
    {
        QAV::NetworkServer address = m_server->address();
        address.systemTag = "BJ02";
        QCOMPARE(refusalOf(address), std::string("无法连接：该地址上是分系统“上海分系统”（SH01），而不是 BJ02"));
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
                 std::string("无法连接：通信协议版本不兼容: 服务端支持 1 至 2, 客户端支持 3"));
    }

    void aServerThatSpeaksALaterProtocolOnlyIsRefused()
    {
        m_server->welcome.protocol = NewestProtocol + 1;
        QCOMPARE(refusalOf(m_server->address()), std::string("无法连接：服务端的通信协议版本不受支持：3"));
    }

    void answersToNobodyAndSecondAnswersAreDropped()
    {
        Answers answers = logIn();
        const Query query = ask("1", answers);
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
        const support::DataRows<QByteArray, bool> add("bytes", "isOperation");
        const std::int64_t id = 2; // of the first request after the log-in
        const auto row = [&add](const char* name, const std::string& bytes, bool isOperation = false) {
            add(name, QByteArray(bytes.data(), int(bytes.size())), isOperation);
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
        QCOMPARE(QString::fromStdString(answers.last().error.errorMsg()).endsWith("，未知是否已执行"), isOperation);
        QVERIFY(answers.last().records.empty());
        QVERIFY(isAlive());
        QCOMPARE(answers.count(), std::size_t(2));
        QCOMPARE(m_server->peerCount(), std::size_t(1));
    }

    void anUnreadableMessageAnswersItsRequestAndCostsNothingElse()
    {
        m_log->expect("could not be read");
        Answers answers = logIn();
        const Query query = ask("1", answers);
        m_server->peer()->send(BSON("type" << "nonsense"));
        m_server->peer()->send(BSON("x" << 1));
        m_server->peer()->send(BSON("type" << "replyBegin"
                                           << "id" << static_cast<long long>(query.id) << "totalCount"
                                           << "many"));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().error.code(), EErrorCode::Malformed);
        QCOMPARE(waitFor<Cancel>().id, query.id);
        QVERIFY(isAlive());
    }

    void messagesThatOnlyAClientSendsArePassedOver()
    {
        m_log->expect("an unexpected message was ignored");
        m_log->expect("the server reports: 测试 行");
        logIn();
        for (const samples::WireSample& sample : samples::clientSamples()) {
            m_server->peer()->sendRaw(sample.frame);
        }
        m_server->peer()->send(encode(m_server->welcome));
        m_server->peer()->send(encode(LogInReply{77, {EErrorCode::NotLoggedIn, "x"}, nullptr}));
        m_server->peer()->send(encode(Fault{{EErrorCode::Malformed, "测试\n行"}}));
        QVERIFY(isAlive());
    }

    void aReplyThatIsTooLargeIsGivenUp_data()
    {
        const support::DataRows<bool> row("inBytes");
        row("bytes", true);
        row("documents", false);
    }
    void aReplyThatIsTooLargeIsGivenUp()
    {
        QFETCH(bool, inBytes);
        QAV::NetworkServer address = m_server->address();
        address.maxReplyBytes = inBytes ? 20000 : address.maxReplyBytes;
        address.maxReplyDocuments = inBytes ? address.maxReplyDocuments : 100;
        m_transport = std::make_unique<CNetworkTransport>(address);
        Answers answers;
        m_transport->logIn("admin", "secret", answers.onLogIn());
        QTRY_COMPARE(answers.count(), std::size_t(1));
        // Two replies at a time count together in bytes.
        m_transport->query(queryOf("1"), answers.onReply());
        const Query first = ask("2", answers);
        const Query second = waitFor<Query>();
        const std::string chunk = chunkOf(second.id, 1);
        m_server->peer()->sendRaw(beginOf(first.id) + chunkOf(first.id, 1) + beginOf(second.id, 1000));
        std::int64_t sent = 0;
        for (; sent < 1000; ++sent) {
            m_server->peer()->sendRaw(chunk);
        }
        m_server->peer()->sendRaw(endOf(second.id, sent));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().error.code(), EErrorCode::ResourceExhausted);
        QCOMPARE(answers.last().error.errorMsg(), std::string(inBytes ? "应答过大，已放弃接收：同时最多 20000 字节"
                                                                      : "应答过大，已放弃接收：最多 100 个文档"));
        QVERIFY(answers.last().records.empty());
        QVERIFY(isAlive());
        QCOMPARE(m_server->peer()->count<Cancel>(), std::size_t(inBytes ? 1 : 0));
        m_server->peer()->sendRaw(endOf(first.id, 1));
        QTRY_COMPARE(answers.count(), std::size_t(3));
        QCOMPARE(answers.last().records.size(), std::size_t(1));
    }

    void aReplyOfExactlyTheLimitsIsTaken()
    {
        const std::int64_t id = 2; // of the first request after the log-in
        const std::string chunk = chunkOf(id, 1);
        Message message;
        QVERIFY(decode(chunk, LimitsAfterLogIn, message).isSuccess());
        std::vector<nvservice::IDataPtr> records;
        nvservice::CRecordDecoder decoder;
        QVERIFY(std::get<ReplyChunk>(message).records(records, &decoder).isSuccess());

        QAV::NetworkServer address = m_server->address();
        address.maxReplyBytes = 3 * chunk.size();
        address.maxReplyDocuments = 3 * decoder.documents();
        m_transport = std::make_unique<CNetworkTransport>(address);
        Answers answers;
        m_transport->logIn("admin", "secret", answers.onLogIn());
        QTRY_COMPARE(answers.count(), std::size_t(1));
        QCOMPARE(ask("1", answers).id, id);
        m_server->peer()->sendRaw(beginOf(id, 3) + chunk + chunk + chunk + endOf(id, 3));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QVERIFY2(answers.last().error.isSuccess(), answers.last().error.errorMsg().c_str());
        QCOMPARE(answers.last().records.size(), std::size_t(3));
    }

    void aServerThatPingsAndReadsNothingFillsNoMemory()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QAV::NetworkServer address = m_server->address();
        address.port = server.serverPort();
        CNetworkTransport transport(address);
        QVERIFY(server.waitForNewConnection(30000));
        const std::unique_ptr<QTcpSocket> socket(server.nextPendingConnection());
        socket->setReadBufferSize(1024);
        const auto send = [&](const std::string& bytes) {
            socket->write(bytes.data(), static_cast<qint64>(bytes.size()));
            while (socket->bytesToWrite() > 0 && socket->waitForBytesWritten(30000)) {
            }
        };
        const auto ping = [](std::int64_t id) { return samples::frameOf(encode(Ping{id})); };
        send(samples::frameOf(encode(m_server->welcome)));
        constexpr int pings = 400000; // far beyond what the system's buffers take
        std::string many;
        for (int id = 1; id <= 1000; ++id) {
            many += ping(id);
        }
        for (int i = 0; i < pings / 1000; ++i) {
            send(many);
        }
        // When it reads, what waited comes, and a ping is answered again.
        socket->setReadBufferSize(0);
        FrameReader reader(MaxMessageBytes);
        int pongs = 0;
        bool isLast = false;
        const auto read = [&] {
            socket->waitForReadyRead(100);
            const QByteArray bytes = socket->readAll();
            for (int at = 0; at < bytes.size();) {
                utils::NVError error;
                at += int(reader.feed(bytes.constData() + at, std::size_t(bytes.size() - at), error));
                if (reader.hasFrame()) {
                    const Frame frame = reader.take();
                    pongs += kindOf(frame) == "pong" ? 1 : 0;
                    isLast = idOf(frame) == pings;
                }
            }
        };
        QVERIFY(waitUntil([&] {
            send(ping(pings));
            read();
            return isLast;
        }));
        QVERIFY(pongs > 0);
        QVERIFY2(pongs < pings / 2, qPrintable(QString::number(pongs)));
    }

    void anErrorAfterRecordsDropsThem()
    {
        Answers answers = logIn();
        const Query query = ask("1", answers);
        const utils::NVError failure(EErrorCode::StorageFailure, "磁盘已满");
        m_server->peer()->sendRaw(beginOf(query.id, 9) + chunkOf(query.id, 1) +
                                  samples::frameOf(encode(ReplyEnd{query.id, failure, 1, {}})));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().error.errorMsg(), failure.errorMsg());
        QVERIFY(answers.last().records.empty());
        QCOMPARE(answers.last().totalCount, 0);
    }
};

TEST_WITHOUT_WIDGETS(NetworkAnswersTest)
#include "tst_network_answers.moc"
