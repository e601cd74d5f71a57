// SPDX-License-Identifier: Apache-2.0
#include "platform/network/NetworkTest.h"
#include "support/records/DocumentBytes.h"

#include <QAV/CKolmClientCenter.h>

using namespace support;
using namespace wire;
using QAV::CNetworkTransport;

/// Connections that break at any byte.
class NetworkLossTest : public NetworkTest
{
    Q_OBJECT

private slots:
    void aReplyThatWasCutBeginsAnew()
    {
        Answers answers = logIn();
        const Query query = ask("1", answers);
        const std::string reply = groupsReply(query.id, 40);
        m_server->peer()->sendRaw(reply.substr(0, reply.size() / 2));
        m_server->peer()->close();
        QTRY_COMPARE(m_server->peerCount(), std::size_t(2));
        m_server->peer()->sendRaw(groupsReply(waitFor<Query>().id, 40));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.last().records.size(), std::size_t(40));
    }

    void aServerThatDiesAfterAnyByteItSendsLeavesOneAnswerForEachRequest()
    {
        // Everything that a server says in a conversation; one byte more each time, then the end of the connection.
        Answers answers;
        std::size_t requests = 0;
        std::size_t cut = 0;
        for (bool died = true; died; ++cut) {
            FakeServer server;
            server.greets = server.logsIn = false;
            std::size_t left = cut;
            died = false;
            server.onMessage = [&](FakePeer& peer, const Message& message) {
                std::string reply;
                if (std::holds_alternative<Hello>(message)) {
                    reply = samples::frameOf(encode(server.welcome));
                } else if (const auto* logIn = std::get_if<LogIn>(&message)) {
                    reply =
                        samples::frameOf(encode(LogInReply{logIn->id, {}, boost::make_shared<nvservice::CUserInfo>()}));
                } else if (const auto* query = std::get_if<Query>(&message)) {
                    reply = groupsReply(query->id, 1);
                } else if (const auto* operate = std::get_if<Operate>(&message)) {
                    reply = samples::frameOf(doneReply(operate->id));
                }
                const bool dies = !died && reply.size() > left;
                if (dies) {
                    reply.resize(left);
                }
                left -= std::min(left, reply.size());
                peer.sendRaw(reply);
                if (dies) {
                    died = true;
                    peer.close();
                }
                return true;
            };
            QVERIFY(server.start());
            CNetworkTransport transport(server.address());
            transport.logIn("admin", "secret", answers.onLogIn());
            transport.query(queryOf("1"), answers.onReply());
            transport.operate(operationOf("op"), answers.onReply());
            requests += 3;
            QVERIFY(waitUntil([&] { return answers.count() == requests; }));
        }
        QVERIFY(cut > 500);
        QCOMPARE(answers.count(), requests);
    }

    void aServerThatDiesAfterAnyByteItReadsLeavesOneAnswerForEachRequest()
    {
        Answers answers;
        std::size_t requests = 0;
        std::size_t cut = 0;
        for (bool died = true; died; ++cut) {
            // A relay that swallows what the client sends after so many bytes, once.
            FakeServer server;
            server.onMessage = &answerAtOnce;
            QVERIFY(server.start());
            QTcpServer relay;
            QVERIFY(relay.listen(QHostAddress::LocalHost));
            std::size_t left = cut;
            died = false;
            QObject::connect(&relay, &QTcpServer::newConnection, &relay, [&] {
                QTcpSocket* client = relay.nextPendingConnection();
                auto* upstream = new QTcpSocket(client);
                upstream->connectToHost(QHostAddress::LocalHost, server.serverPort());
                for (QTcpSocket* end : {client, upstream}) {
                    end->setSocketOption(QAbstractSocket::LowDelayOption, 1);
                }
                QObject::connect(upstream, &QTcpSocket::readyRead, client, [=] { client->write(upstream->readAll()); });
                QObject::connect(client, &QTcpSocket::readyRead, upstream, [&, client, upstream] {
                    QByteArray bytes = client->readAll();
                    const bool dies = !died && std::size_t(bytes.size()) > left;
                    if (dies) {
                        bytes.truncate(int(left));
                    }
                    left -= std::min(left, std::size_t(bytes.size()));
                    upstream->write(bytes);
                    if (dies) {
                        died = true;
                        client->disconnectFromHost();
                        upstream->disconnectFromHost();
                    }
                });
            });
            QAV::NetworkServer address = server.address();
            address.port = relay.serverPort();
            CNetworkTransport transport(address);
            transport.logIn("admin", "secret", answers.onLogIn());
            transport.query(queryOf("1"), answers.onReply());
            transport.operate(operationOf("op"), answers.onReply());
            requests += 3;
            QVERIFY(waitUntil([&] { return answers.count() == requests; }));
        }
        QVERIFY(cut > 500);
        QCOMPARE(answers.count(), requests);
    }

    void aLostFramingCostsTheConnectionAndNothingMore()
    {
        Answers answers = logIn();
        for (const std::uint32_t length : {0U, 4U, 0x7FFFFFFFU, 0xFFFFFFFFU, std::uint32_t(MaxMessageBytes) + 1U}) {
            const std::size_t peers = m_server->peerCount();
            m_transport->query(queryOf("1"), answers.onReply());
            waitFor<Query>();
            const std::size_t before = answers.count();
            m_server->peer()->sendRaw(littleEndian(length) + "rubbish");
            QTRY_COMPARE(m_server->peerCount(), peers + 1);
            m_server->peer()->sendRaw(groupsReply(waitFor<Query>().id, 1));
            QTRY_COMPARE(answers.count(), before + 1);
            QVERIFY(answers.last().error.isSuccess());
        }
    }

    void theCentreAnswersOnceWhateverHappensToTheConnections()
    {
        QAV::CKolmClientCenter centre;
        m_server->onMessage = &answerAtOnce;
        FakeServer dead;
        QVERIFY(dead.start());
        dead.greets = false;
        QAV::NetworkServer deadAddress = dead.address();
        deadAddress.connectDeadline = std::chrono::milliseconds(300);
        QVERIFY(centre.addServer("甲", "SH01", boost::make_shared<CNetworkTransport>(m_server->address())).isSuccess());
        QVERIFY(centre.addServer("乙", "BJ02", boost::make_shared<CNetworkTransport>(deadAddress)).isSuccess());
        Answers logIn;
        centre.getClientByName("甲")->logIn_async(
            "admin", "secret",
            [handler = logIn.onLogIn()](const utils::NVError& error,
                                        const boost::shared_ptr<nvservice::CUserInfo>& user) { handler(error, user); });
        QTRY_COMPARE(logIn.count(), std::size_t(1));
        Answers answers;
        centre.queryData_async(
            boost::make_shared<nvservice::CKolmQueryDataReq>(queryOf("")),
            [handler = answers.onReply()](const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records,
                                          int total, const bson::BSONObj&) { handler({error, records, total, {}}); });
        QTRY_COMPARE(answers.count(), std::size_t(1));
        QCOMPARE(answers.last().records.size(), std::size_t(2));
        QCOMPARE(answers.last().error.errorMsg(), std::string("分系统“乙”：无法连接：服务端在规定时间内没有响应"));
    }

    void aRequestThatRunsOutIsCancelledAtTheServer()
    {
        logIn();
        QAV::CKolmClientCenter centre;
        QVERIFY(
            centre.addServer("甲", "SH01", boost::shared_ptr<CNetworkTransport>(m_transport.release())).isSuccess());
        centre.setDeadline(std::chrono::milliseconds(50));
        Answers answers;
        centre.queryData_async(boost::make_shared<nvservice::CKolmQueryDataReq>(queryOf("")),
                               [handler = answers.onReply()](const utils::NVError& error, const auto&, int,
                                                             const auto&) { handler({error, {}, 0, {}}); });
        QCOMPARE(waitFor<Cancel>().id, waitFor<Query>().id);
        QTRY_COMPARE(answers.count(), std::size_t(1));
        QCOMPARE(answers.last().error.errorMsg(), std::string("分系统“甲”未应答：超过 50 毫秒"));
    }
};

TEST_WITHOUT_WIDGETS(NetworkLossTest)
#include "tst_network_loss.moc"
