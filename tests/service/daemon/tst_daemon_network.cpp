// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Installation.h"
#include "service/engine/Password.h"
#include "support/TestProgram.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>
#include <ctime>
#include <limits>
#include <sys/socket.h>

using namespace testservice;
using nvservice::DataType::Account;
using nvservice::DataType::AccountGroup;
using nvservice::DataType::Institution;

namespace
{

} // namespace

/// The daemon in this process, with real sockets.
class DaemonNetworkTest : public InstallationTest
{
    Q_OBJECT

private slots:
    void clientWithoutTlsGetsNothingFromATlsPort()
    {
        m_installation->useTls();
        DaemonThread daemon(m_installation->configuration);
        RawClient client;
        QVERIFY(client.open(daemon.port()));
        QVERIFY(!client.hello());
        QVERIFY(client.waitUntilClosed());
    }

    void connectionThatIsCutInTheMiddleOfATlsRecordHarmsNobody()
    {
        m_installation->useTls();
        DaemonThread daemon(m_installation->configuration);
        RawClient other;
        QVERIFY(enter(other, daemon.port(), certificates().authority()));
        for (const bool isDamaged : {false, true}) {
            RawClient client;
            QVERIFY(enter(client, daemon.port(), certificates().authority()));
            client.sendQuery(Account);
            // A record of 64 bytes that ends after a few, or after as many that nobody encrypted.
            const QByteArray record = QByteArray("\x17\x03\x03\0\x40", 5) + QByteArray(isDamaged ? 64 : 9, 'x');
            QCOMPARE(::send(static_cast<int>(client.socket().socketDescriptor()), record.constData(),
                            static_cast<std::size_t>(record.size()), MSG_NOSIGNAL),
                     static_cast<ssize_t>(record.size()));
            if (isDamaged) {
                QVERIFY(client.waitUntilClosed());
            } else {
                client.cut();
            }
            QTRY_COMPARE(daemon.log().filter("connection_closed").size(), isDamaged ? 2 : 1);
            COMPARE_CODE(other.query(Account), EErrorCode::Success);
        }
    }

    void slowReaderCostsBoundedMemoryAndDelaysNobody()
    {
        m_installation->useMonitor();
        m_installation->configuration.limits.heldMebibytesPerConnection = 8;
        constexpr int groups = 20000;
        constexpr int queries = 20; // together far beyond what the system's buffers take
        storeGroups(m_installation->fixture, groups);
        DaemonThread daemon(m_installation->configuration);
        RawClient slow, other;
        QVERIFY(enter(slow, daemon.port()) && enter(other, daemon.port()));
        slow.socket().setReadBufferSize(16 * 1024);
        for (int i = 0; i < queries; ++i) {
            slow.sendQuery(AccountGroup);
        }
        const auto limit = m_installation->configuration.limits.outputBytesPerConnection + 512 * 1024;
        double most = 0;
        // The system's buffers are full and the daemon's too.
        const auto isFull = [&] {
            most = std::max(most, metric(daemon.monitorPort(), "qav_output_bytes"));
            return most > m_installation->configuration.limits.outputBytesPerConnection;
        };
        QTRY_VERIFY_WITH_TIMEOUT(isFull(), 60000);
        for (int i = 0; i < 20; ++i) {
            most = std::max(most, metric(daemon.monitorPort(), "qav_output_bytes"));
            COMPARE_CODE(other.query(Institution), EErrorCode::Success);
        }
        QVERIFY2(most < limit, qPrintable(QString::number(most)));
        QVERIFY(metric(daemon.monitorPort(), "qav_requests_under_way") >= queries / 2.0);
        // It gets everything in the end.
        slow.socket().setReadBufferSize(0);
        int ends = 0;
        std::int64_t records = 0;
        while (ends < queries) {
            const auto message = slow.next();
            QVERIFY(message);
            if (const auto* end = std::get_if<wire::ReplyEnd>(&*message)) {
                QVERIFY(end->error.isSuccess());
                records += end->recordCount;
                ++ends;
            }
        }
        QCOMPARE(records, std::int64_t{groups} * queries);
        QTRY_COMPARE(metric(daemon.monitorPort(), "qav_output_bytes"), 0.0);
    }

    void clientThatTakesNothingIsCutAfterAWhile()
    {
        m_installation->configuration.timeouts.stallSeconds = 1;
        storeGroups(m_installation->fixture, 20000);
        DaemonThread daemon(m_installation->configuration);
        RawClient client;
        QVERIFY(enter(client, daemon.port()));
        client.socket().setReadBufferSize(1024);
        for (int i = 0; i < 10; ++i) {
            client.sendQuery(AccountGroup);
        }
        QTRY_VERIFY_WITH_TIMEOUT(daemon.hasLogged("\"reason\":\"stalled\""), 60000);
    }

    void clientThatIsGoneInTheMiddleOfAReplyLeavesNothingBehind()
    {
        m_installation->useMonitor();
        storeGroups(m_installation->fixture, 5000);
        DaemonThread daemon(m_installation->configuration);
        for (int i = 0; i < 20; ++i) {
            RawClient client;
            QVERIFY(enter(client, daemon.port()));
            client.sendQuery(AccountGroup);
            if (i % 2 == 0) {
                QVERIFY(client.next());
            }
            client.cut();
        }
        QTRY_COMPARE(metric(daemon.monitorPort(), "qav_connections"), 0.0);
        QTRY_COMPARE(metric(daemon.monitorPort(), "qav_requests_under_way"), 0.0);
        QCOMPARE(metric(daemon.monitorPort(), "qav_output_bytes"), 0.0);
    }

    void connectionsAreLimitedInAllAndOfAnAddress_data()
    {
        const support::DataRows<int, int> row("inAll", "ofAddress");
        row("in all", 3, 100);
        row("of an address", 100, 3);
    }
    void connectionsAreLimitedInAllAndOfAnAddress()
    {
        QFETCH(int, inAll);
        QFETCH(int, ofAddress);
        m_installation->configuration.limits.connections = inAll;
        m_installation->configuration.limits.connectionsPerAddress = ofAddress;
        DaemonThread daemon(m_installation->configuration);
        std::vector<std::unique_ptr<RawClient>> clients;
        for (int i = 0; i < 3; ++i) {
            clients.push_back(std::make_unique<RawClient>());
            QVERIFY(enter(*clients.back(), daemon.port()));
        }
        RawClient refused;
        QVERIFY(!enter(refused, daemon.port()));
        QVERIFY(daemon.hasLogged("connection_refused"));
        clients.pop_back();
        QTRY_VERIFY(daemon.hasLogged("connection_closed"));
        RawClient next;
        QVERIFY(enter(next, daemon.port()));
    }

    void strangerWhoSaysNothingIsSentAway()
    {
        m_installation->configuration.timeouts.handshakeSeconds = 1;
        DaemonThread plain(m_installation->configuration);
        RawClient silent;
        QVERIFY(silent.open(plain.port()));
        const auto fault = silent.expect<wire::Fault>();
        QVERIFY(fault);
        QCOMPARE(fault->error.code(), EErrorCode::DeadlineExceeded);
        QVERIFY(silent.waitUntilClosed());

        m_installation->useTls();
        DaemonThread encrypted(m_installation->configuration);
        QTcpSocket socket; // never begins with TLS
        socket.connectToHost("127.0.0.1", static_cast<quint16>(encrypted.port()));
        QVERIFY(socket.waitForConnected());
        QVERIFY(socket.waitForDisconnected(60000));
    }

    void framingErrorIsToldBeforeTheConnectionIsClosed()
    {
        DaemonThread daemon(m_installation->configuration);
        RawClient client;
        QVERIFY(enter(client, daemon.port()));
        const QByteArray junk(100000, '\xFF');
        client.sendBytes(junk.constData(), static_cast<std::size_t>(junk.size()));
        const auto fault = client.expect<wire::Fault>();
        QVERIFY(fault);
        QCOMPARE(fault->error.code(), EErrorCode::Malformed);
        QVERIFY(client.waitUntilClosed());
    }

    void wrongPasswordAndUnknownUserTakeTheSameTime()
    {
        m_installation->configuration.logIns.failuresPerUser = 1000;
        m_installation->configuration.logIns.failuresPerAddress = 1000;
        m_installation->fixture.exec(QString("UPDATE app_user SET password_hash = '%1' WHERE login = 'admin'")
                                         .arg(service::hashPassword("right").c_str()));
        DaemonThread daemon(m_installation->configuration);
        RawClient client;
        QVERIFY(client.open(daemon.port()) && client.hello());
        std::clock_t known = std::numeric_limits<std::clock_t>::max();
        std::clock_t unknown = known;
        // Processor time of this process, which is both sides: whatever else the machine does is not in it.
        const auto measure = [&](const char* user, std::clock_t& fastest) {
            const std::clock_t begin = std::clock();
            const utils::NVError error = client.logIn(user, "wrong");
            fastest = std::min(fastest, std::clock() - begin);
            QCOMPARE(static_cast<int>(error.code()), static_cast<int>(EErrorCode::NotLoggedIn));
            QCOMPARE(error.errorMsg(), std::string("用户名或密码错误"));
        };
        for (int i = 0; i < 8; ++i) {
            measure("admin", known);
            measure("nobody", unknown);
        }
        QVERIFY2(known < 2 * unknown && unknown < 2 * known, qPrintable(QString("%1 %2").arg(known).arg(unknown)));
    }

    void noTextOfALibraryReachesAClient_data()
    {
        const support::DataRows<QString> row("table");
        row("log-in", "app_user");
        row("query", "institution");
        row("operation", "account_group_history");
    }
    void noTextOfALibraryReachesAClient()
    {
        QFETCH(QString, table);
        DaemonThread daemon(m_installation->configuration);
        RawClient user, stranger;
        QVERIFY(enter(user, daemon.port()));
        QVERIFY(stranger.open(daemon.port()) && stranger.hello());
        m_installation->fixture.exec(qPrintable("ALTER TABLE " + table + " RENAME TO gone"));
        utils::NVError error;
        if (table == "app_user") {
            error = stranger.logIn("admin", "right");
        } else if (table == "institution") {
            error = user.query(Institution).error;
        } else {
            error = user.operate(AccountGroup, EZvDataOperation::Add, group("甲", First, {future("8001")}), "1").error;
        }
        QCOMPARE(error.code(), EErrorCode::StorageFailure);
        QCOMPARE(error.errorMsg(), std::string("数据库操作失败"));
        QVERIFY2(daemon.hasLogged("no such table"), qPrintable(daemon.log().join('\n')));
        QVERIFY(daemon.hasLogged("\"event\":\"store_failure\""));
    }

    void eachSubSystemHasItsPort()
    {
        m_installation->configuration.listen.push_back(m_installation->configuration.listen[0]);
        m_installation->configuration.listen[1].subSystem = "西分系统";
        DaemonThread daemon(m_installation->configuration);
        RawClient east, west;
        QVERIFY(enter(east, daemon.port(0)));
        QVERIFY(west.open(daemon.port(1)));
        west.send(wire::encode(wire::Hello{wire::OldestProtocol, wire::NewestProtocol, wire::sdkVersion(), "x"}));
        const auto welcome = west.expect<wire::Welcome>();
        QVERIFY(welcome);
        QCOMPARE(welcome->systemTag, std::string("W"));
        // The users of one are nobody at the other.
        QCOMPARE(west.logIn("admin", "right").code(), EErrorCode::NotLoggedIn);
    }

    void daemonThatCannotServeSaysWhy()
    {
        const auto errorOf = [&](const auto& change) {
            auto configuration = m_installation->configuration;
            change(configuration);
            return QString::fromStdString(DaemonThread(configuration).startError().errorMsg());
        };
        using service::daemon::Configuration;
        QVERIFY(errorOf([](Configuration& c) { c.listen[0].subSystem = "北"; }).contains("没有分系统“北”"));
        QVERIFY(errorOf([](Configuration& c) { c.listen[0].subSystem.clear(); }).contains("多个分系统"));
        QVERIFY(errorOf([](Configuration& c) { c.listen[0].address = QHostAddress("0.0.0.0"); }).contains("回环"));
        QVERIFY(errorOf([](Configuration& c) { c.store = "/nonexistent/x.db"; }).size() > 5);
        QTcpServer taken;
        QVERIFY(taken.listen(QHostAddress::LocalHost));
        QVERIFY(errorOf([&](Configuration& c) { c.listen[0].port = taken.serverPort(); }).contains("无法监听"));
        // An address with a scope looks like a place of the text that it stands in.
        QVERIFY(errorOf([](Configuration& c) {
                    c.monitor = {QHostAddress("fe80::1%3"), 9};
                }).startsWith("无法监听 fe80::1%3 端口 9："));
        QVERIFY(errorOf([](Configuration& c) {
                    c.listen[0].plaintext = false;
                    c.tls = {"/nonexistent.pem", "/nonexistent.key"};
                }).contains("证书"));
    }
};

TEST_WITHOUT_WIDGETS(DaemonNetworkTest)
#include "tst_daemon_network.moc"
