// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Installation.h"
#include "support/TestProgram.h"

#include <QElapsedTimer>
#include <QTcpSocket>

#include <memory>

using namespace testservice;
using nvservice::DataType::AccountGroup;
using nvservice::DataType::Institution;

namespace
{

/// Sends one byte after the other until the daemon has had enough; how long that took. -1 when it never has.
qint64 trickle(QTcpSocket& socket, const QByteArray& bytes)
{
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; socket.state() == QAbstractSocket::ConnectedState && timer.elapsed() < 60000; ++i) {
        socket.write(bytes.constData() + i % bytes.size(), 1);
        socket.waitForDisconnected(50);
        socket.readAll();
    }
    return socket.state() == QAbstractSocket::UnconnectedState ? timer.elapsed() : -1;
}

QByteArray bytesOf(const bson::BSONObj& message)
{
    return {message.objdata(), message.objsize()};
}

} // namespace

/// The course of a connection over real sockets: cancellation, keep-alive, and clients that take their time.
class DaemonCourseTest : public InstallationTest
{
    Q_OBJECT

private slots:
    void cancelledReplyEndsInItsMiddle()
    {
        m_installation->useTls();
        constexpr int groups = 30000;
        storeGroups(m_installation->fixture, groups);
        DaemonThread daemon(m_installation->configuration);
        RawClient client;
        QVERIFY(enter(client, daemon.port(), certificates().authority()));
        client.socket().setReadBufferSize(4096);
        const std::int64_t id = client.sendQuery(AccountGroup);
        QVERIFY(client.expect<wire::ReplyBegin>());
        client.send(wire::encode(wire::Cancel{id}));
        client.socket().setReadBufferSize(0);
        const RawClient::Answer answer = client.answerTo(id);
        COMPARE_CODE(answer, EErrorCode::Cancelled);
        QVERIFY2(answer.records.size() < groups, qPrintable(QString::number(answer.records.size())));
        COMPARE_CODE(client.query(Institution), EErrorCode::Success);
    }

    void eachSideHearsOfTheOtherWhileNothingHappens()
    {
        m_installation->configuration.timeouts.keepAliveSeconds = 1;
        DaemonThread daemon(m_installation->configuration);
        RawClient silent, quiet;
        QVERIFY(enter(silent, daemon.port()) && enter(quiet, daemon.port()));
        // The silent one is cut, after three intervals at the earliest; the other one answers what it is asked.
        QElapsedTimer timer;
        timer.start();
        int pings = 0;
        while (silent.socket().state() == QAbstractSocket::ConnectedState && timer.elapsed() < 60000) {
            silent.socket().waitForReadyRead(20);
            silent.socket().readAll();
            quiet.socket().waitForReadyRead(20);
            const QByteArray heard = quiet.socket().readAll();
            if (!heard.isEmpty()) {
                QVERIFY(heard.contains("ping"));
                quiet.send(wire::encode(wire::Pong{++pings}));
            }
        }
        QCOMPARE(silent.socket().state(), QAbstractSocket::UnconnectedState);
        QVERIFY2(timer.elapsed() > 2000, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(daemon.hasLogged("\"reason\":\"timeout\""));
        QVERIFY2(pings >= 1, qPrintable(QString::number(pings)));
        COMPARE_CODE(quiet.query(Institution), EErrorCode::Success);
        quiet.send(wire::encode(wire::Ping{4711}));
        const auto pong = quiet.expect<wire::Pong>();
        QVERIFY(pong);
        QCOMPARE(pong->id, std::int64_t{4711});
    }

    void whoTricklesBytesGetsNoMoreTimeForThat_data()
    {
        const support::DataRows<bool, int> row("encrypted", "stage");
        row("TLS handshake", true, 0);
        row("hello", false, 0);
        row("log-in", false, 1);
    }
    void whoTricklesBytesGetsNoMoreTimeForThat()
    {
        QFETCH(bool, encrypted);
        QFETCH(int, stage);
        if (encrypted) {
            m_installation->useTls();
        }
        m_installation->configuration.timeouts.handshakeSeconds = stage == 0 ? 1 : 60;
        m_installation->configuration.timeouts.logInSeconds = stage == 1 ? 1 : 60;
        DaemonThread daemon(m_installation->configuration);
        QTcpSocket socket;
        socket.connectToHost(QStringLiteral("127.0.0.1"), static_cast<quint16>(daemon.port()));
        QVERIFY(socket.waitForConnected());
        const QByteArray hello = bytesOf(wire::encode(
            wire::Hello{wire::OldestProtocol, wire::NewestProtocol, wire::sdkVersion(), std::string(900, 'c')}));
        // The head of a TLS record of 16 KB, a hello, or the pings of somebody who never logs in.
        QByteArray bytes = QByteArray("\x16\x03\x01\x40\0\x01\0\x3f\xfc\x03\x03", 11) + QByteArray(16373, 'r');
        if (!encrypted) {
            bytes = stage == 0 ? hello : bytesOf(wire::encode(wire::Ping{1}));
        }
        if (stage == 1) {
            socket.write(hello);
            QVERIFY(socket.waitForReadyRead());
        }
        const qint64 milliseconds = trickle(socket, bytes);
        QVERIFY2(milliseconds >= 500 && milliseconds < 30000, qPrintable(QString::number(milliseconds)));
    }

    void halfSentMessageOfAUserIsNotWaitedForWithoutEnd()
    {
        m_installation->configuration.timeouts.messageSeconds = 1;
        DaemonThread daemon(m_installation->configuration);
        RawClient user, other;
        QVERIFY(enter(user, daemon.port()) && enter(other, daemon.port()));
        user.sendBytes("\0\0\x80\0 and no more", 16); // of 8 MiB
        const auto fault = user.expect<wire::Fault>();
        QVERIFY(fault);
        QCOMPARE(fault->error.code(), EErrorCode::DeadlineExceeded);
        QVERIFY(user.waitUntilClosed());
        COMPARE_CODE(other.query(Institution), EErrorCode::Success);
    }

    void whoNeverLogsInMakesRoomForOthers_data()
    {
        const support::DataRows<bool> row("ofAddress");
        row("in all", false);
        row("of an address", true);
    }
    void whoNeverLogsInMakesRoomForOthers()
    {
        QFETCH(bool, ofAddress);
        (ofAddress ? m_installation->configuration.limits.connectionsPerAddress
                   : m_installation->configuration.limits.connections) = 3;
        DaemonThread daemon(m_installation->configuration);
        RawClient user;
        QVERIFY(enter(user, daemon.port()));
        std::vector<std::unique_ptr<RawClient>> idle;
        for (int i = 0; i < 10; ++i) {
            idle.push_back(std::make_unique<RawClient>());
            QVERIFY(idle.back()->open(daemon.port()) && idle.back()->hello());
        }
        QVERIFY(idle.front()->waitUntilClosed());
        QCOMPARE(daemon.log().filter("\"reason\":\"crowded_out\"").size(), 8);
        QCOMPARE(daemon.log().filter("connection_refused").size(), 0);
        RawClient late;
        QVERIFY(enter(late, daemon.port()));
        COMPARE_CODE(user.query(Institution), EErrorCode::Success);
    }

    void manyLongOperationsOfOneClientDelayNoOther()
    {
        m_installation->useTls();
        const int groupId = m_installation->fixture.storedGroup("甲")->groupId;
        DaemonThread daemon(m_installation->configuration);
        RawClient busy, other;
        QVERIFY(enter(busy, daemon.port(), certificates().authority()));
        QVERIFY(enter(other, daemon.port(), certificates().authority()));
        auto config = boost::make_shared<nvservice::CAccountGroupRCConfig>();
        config->groupId = groupId;
        config->setRevision(1);
        config->rcRule.lists.resize(1);
        config->rcRule.lists[0].traderType = nvservice::EZvTraderType::Stock;
        for (int i = 0; i < 30000; ++i) {
            nvservice::CTradeLimitEntry entry;
            entry.securityCode = std::to_string(1000000 + i);
            entry.securityName = "一个相当长的证券名称";
            config->rcRule.lists[0].entries.push_back(entry);
        }
        wire::Operate operate;
        operate.request.dataType = nvservice::DataType::GroupRiskConfig;
        operate.request.operation = EZvDataOperation::Modify;
        operate.request.data = config;
        std::vector<qint64> times;
        for (int i = 0; i < 3; ++i) {
            operate.id = busy.nextId();
            operate.request.operationId = "op-" + std::to_string(i);
            busy.send(wire::encode(operate)); // 3 MB
            while (!busy.socket().waitForReadyRead(0) && busy.socket().bytesAvailable() == 0) {
                QElapsedTimer timer;
                timer.start();
                COMPARE_CODE(other.query(Institution), EErrorCode::Success);
                times.push_back(timer.nsecsElapsed() / 1000);
            }
            COMPARE_CODE(busy.answerTo(operate.id), EErrorCode::Success);
        }
        std::sort(times.begin(), times.end());
        QVERIFY(times.size() >= 30);
        qInfo("%zu queries of another client meanwhile: median %lld us, 99 %% within %lld us, longest %lld us",
              times.size(), times[times.size() / 2], times[times.size() * 99 / 100], times.back());
    }
};

TEST_WITHOUT_WIDGETS(DaemonCourseTest)
#include "tst_daemon_course.moc"
