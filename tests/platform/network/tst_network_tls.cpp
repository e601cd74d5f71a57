// SPDX-License-Identifier: Apache-2.0
#include "platform/network/FakeServer.h"
#include "support/TestProgram.h"
#include "support/UnexpectedLog.h"

#include <QProcess>

using namespace support;
using QAV::CNetworkTransport;
using QAV::EConnectionState;
using EKind = TestCertificates::EKind;

/// Whom the client talks to, and whom it doesn't.
class NetworkTlsTest : public QObject
{
    Q_OBJECT

    /// What a log-in at a server that can't be trusted is answered with.
    static std::string refusalOf(const QAV::NetworkServer& server)
    {
        CNetworkTransport transport(server);
        Answers answers;
        transport.logIn("admin", "secret", answers.onLogIn());
        if (!QTest::qWaitFor([&] { return answers.count() == 1; }, 30000)) {
            return "no answer";
        }
        return answers.at(0).error.errorMsg();
    }

private slots:
    void initTestCase()
    {
        m_certificates = std::make_unique<TestCertificates>();
        QVERIFY(QSslSocket::supportsSsl());
    }

    void init() { m_log = std::make_unique<UnexpectedLog>(); }
    void cleanup() { m_log.reset(); }

    void aServerOfATrustedAuthorityIsAccepted_data()
    {
        const support::DataRows<QString> row("host");
        row("by name", "localhost");
        row("by address", "127.0.0.1");
    }
    void aServerOfATrustedAuthorityIsAccepted()
    {
        QFETCH(QString, host);
        FakeServer server;
        server.useTls(*m_certificates);
        QVERIFY(server.start());
        QAV::NetworkServer address = addressOf(server);
        address.host = host.toStdString();
        CNetworkTransport transport(address);
        Answers answers;
        transport.logIn("admin", "secret", answers.onLogIn());
        QTRY_COMPARE(answers.count(), std::size_t(1));
        QVERIFY2(answers.at(0).error.isSuccess(), answers.at(0).error.errorMsg().c_str());
        QVERIFY(transport.state() == EConnectionState::Connected);
        transport.query(queryOf(""), answers.onReply());
        QTRY_VERIFY(server.peer()->count<wire::Query>() == 1);
        server.peer()->sendRaw(groupsReply(server.peer()->take<wire::Query>()->id, 50));
        QTRY_COMPARE(answers.count(), std::size_t(2));
        QCOMPARE(answers.at(1).records.size(), std::size_t(50));
    }

    void anExpiredCertificateIsRefused()
    {
        const std::string refusal = refusalAt(EKind::Expired);
        QVERIFY2(refusal.find("服务端证书已过期") != std::string::npos, refusal.c_str());
    }

    void aCertificateOfAnotherHostIsRefused()
    {
        const std::string refusal = refusalAt(EKind::WrongHost);
        QVERIFY2(refusal.find("服务端证书不属于主机 127.0.0.1（证书属于 elsewhere.example") != std::string::npos,
                 refusal.c_str());
    }

    void aCertificateOfAnUnknownAuthorityIsRefused()
    {
        FakeServer server;
        server.useTls(*m_certificates, EKind::OtherAuthority);
        QVERIFY(server.start());
        QAV::NetworkServer address = addressOf(server);
        std::string refusal = refusalOf(address);
        QVERIFY2(refusal.find("颁发机构不受信任（stranger）") != std::string::npos, refusal.c_str());
        // The operating system doesn't know the test's authorities either.
        address.caFile.clear();
        refusal = refusalOf(address);
        QVERIFY2(refusal.find("颁发机构不受信任（stranger）") != std::string::npos, refusal.c_str());
        QVERIFY(server.peerCount() > 0);
        for (std::size_t i = 0; i < server.peerCount(); ++i) {
            QCOMPARE(server.peer(i)->receivedBytes, std::size_t(0)); // not a word was said to it
        }
    }

    void aSelfSignedCertificateIsRefused()
    {
        const std::string refusal = refusalAt(EKind::SelfSigned);
        QVERIFY2(refusal.find("颁发机构不受信任") != std::string::npos, refusal.c_str());
    }

    void anAuthorityFileThatIsMissingOrHoldsNoneIsReported()
    {
        FakeServer server;
        server.useTls(*m_certificates);
        QVERIFY(server.start());
        QAV::NetworkServer address = server.address();
        for (const QString& file : {QString("/nowhere/ca.pem"), m_certificates->key()}) {
            address.caFile = file.toStdString();
            QCOMPARE(refusalOf(address), "无法连接：证书文件无法读取或不含证书：" + address.caFile);
        }
        QCOMPARE(server.peerCount(), std::size_t(0));
    }

    void aServerThatKnowsOnlyOldTlsIsRefused()
    {
        QProcess old;
        old.start("openssl", {"s_server", "-accept", "127.0.0.1:0", "-cert", m_certificates->certificate(), "-key",
                              m_certificates->key(), "-tls1_1", "-cipher", "ALL:@SECLEVEL=0"});
        QByteArray said;
        QRegularExpressionMatch port;
        const auto isReady = [&] {
            said += old.readAll();
            port = QRegularExpression(R"(ACCEPT \S+:(\d+))").match(said);
            return port.hasMatch();
        };
        QTRY_VERIFY_WITH_TIMEOUT(isReady(), 60000);
        QAV::NetworkServer address;
        address.host = "127.0.0.1";
        address.port = port.captured(1).toUShort();
        address.caFile = m_certificates->authority().toStdString();
        const std::string refusal = refusalOf(address);
        old.kill();
        old.waitForFinished();
        QCOMPARE(refusal, std::string("无法连接：服务端不支持TLS 1.2及以上版本，为安全起见不予连接"));
    }

    void aServerWithoutTlsIsRefused()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        connect(&server, &QTcpServer::newConnection, this, [&] {
            QTcpSocket* socket = server.nextPendingConnection();
            socket->write("220 hello\r\n");
        });
        QAV::NetworkServer address;
        address.host = "127.0.0.1";
        address.port = server.serverPort();
        QCOMPARE(refusalOf(address), std::string("无法连接：对方没有使用TLS加密"));
    }

    void aServerThatSaysNothingIsGivenUp()
    {
        QTcpServer silent;
        QVERIFY(silent.listen(QHostAddress::LocalHost));
        QAV::NetworkServer address;
        address.host = "127.0.0.1";
        address.port = silent.serverPort();
        address.connectDeadline = std::chrono::milliseconds(200);
        for (const bool encrypted : {true, false}) {
            address.encrypted = encrypted;
            QCOMPARE(refusalOf(address), std::string("无法连接：服务端在规定时间内没有响应"));
        }
    }

    void plainConnectionsLeaveTheMachineNever()
    {
        QAV::NetworkServer address;
        address.host = "192.0.2.1";
        address.port = 1;
        address.encrypted = false;
        QCOMPARE(refusalOf(address), std::string("无法连接：未加密的连接只能用于本机：192.0.2.1"));
        address.host = "example.org";
        QVERIFY(!CNetworkTransport::check(address).isSuccess());
        for (const char* host : {"127.0.0.1", "127.8.9.10", "::1", "localhost"}) {
            address.host = host;
            QVERIFY2(CNetworkTransport::check(address).isSuccess(), host);
        }
        address.port = 0;
        QCOMPARE(CNetworkTransport::check(address).code(), utils::EErrorCode::InvalidValue);
        address.port = 1;
        address.host.clear();
        QCOMPARE(CNetworkTransport::check(address).code(), utils::EErrorCode::InvalidValue);
    }

    void aConnectionThatIsCutInTheMiddleOfARecordIsMadeAgain()
    {
        FakeServer server;
        server.useTls(*m_certificates);
        QVERIFY(server.start());
        // Between client and server stands a relay that passes on only so many bytes of the server's.
        QTcpServer relay;
        QVERIFY(relay.listen(QHostAddress::LocalHost));
        qint64 passed = 0;
        qint64 cut = 0;
        int cuts = 0;
        connect(&relay, &QTcpServer::newConnection, this, [&] {
            QTcpSocket* client = relay.nextPendingConnection();
            auto* upstream = new QTcpSocket(client);
            upstream->connectToHost(QHostAddress::LocalHost, server.serverPort());
            connect(client, &QTcpSocket::readyRead, upstream, [=] { upstream->write(client->readAll()); });
            connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
            connect(upstream, &QTcpSocket::readyRead, client, [&, client, upstream] {
                const QByteArray bytes = upstream->readAll().left(int(std::max<qint64>(0, cut - passed)));
                passed += client->write(bytes);
                if (passed >= cut && client->state() == QAbstractSocket::ConnectedState) {
                    ++cuts;
                    cut += 97; // a little more the next time
                    passed = 0;
                    client->disconnectFromHost();
                }
            });
        });
        QAV::NetworkServer address = addressOf(server);
        address.port = relay.serverPort();
        CNetworkTransport transport(address);
        QTRY_VERIFY_WITH_TIMEOUT(transport.state() == EConnectionState::Connected, 60000);
        QVERIFY(cuts > 5);
    }

private:
    QAV::NetworkServer addressOf(const FakeServer& server) const
    {
        QAV::NetworkServer address = server.address();
        address.caFile = m_certificates->authority().toStdString();
        return address;
    }

    std::string refusalAt(EKind kind)
    {
        FakeServer server;
        server.useTls(*m_certificates, kind);
        if (!server.start()) {
            return "no server";
        }
        return refusalOf(addressOf(server));
    }

    std::unique_ptr<TestCertificates> m_certificates;
    std::unique_ptr<UnexpectedLog> m_log;
};

TEST_WITHOUT_WIDGETS(NetworkTlsTest)
#include "tst_network_tls.moc"
