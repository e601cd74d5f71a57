// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Installation.h"
#include "support/TestProgram.h"

#include <QTcpSocket>

#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <atomic>
#include <memory>

using namespace testservice;

namespace
{

/// What the system says to be free of a disk of 200 GiB, in MiB; below 0 it says the truth.
std::atomic<std::int64_t> freeMebibytes{-1};

constexpr std::uint64_t Mebibyte = 1024 * 1024;

} // namespace

/// Takes the place of the system's.
extern "C" int statvfs(const char* path, struct statvfs* disk) noexcept
{
    if (freeMebibytes < 0) {
        const int folder = ::open(path, O_RDONLY | O_CLOEXEC);
        const int result = fstatvfs(folder, disk);
        ::close(folder);
        return result;
    }
    *disk = {};
    disk->f_frsize = 4096;
    disk->f_blocks = 200 * 1024 * Mebibyte / 4096;
    disk->f_bavail = static_cast<std::uint64_t>(freeMebibytes) * Mebibyte / 4096;
    disk->f_bfree = disk->f_blocks;
    return 0;
}

/// What the daemon says of itself to the machine that it runs on.
class DaemonMonitorTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { freeMebibytes = -1; }

    void healthAndMetricsAreToldOverHttp()
    {
        Installation installation;
        installation.useMonitor();
        DaemonThread daemon(installation.configuration);
        RawClient client;
        QVERIFY(enter(client, daemon.port()));
        HttpReply reply = httpGet(daemon.monitorPort(), "/health");
        QCOMPARE(reply.status, 200);
        QCOMPARE(reply.body, QString("{\"status\":\"ok\",\"connections\":1,\"warnings\":[]}\n"));
        reply = httpGet(daemon.monitorPort(), "/metrics");
        QCOMPARE(reply.status, 200);
        QVERIFY(reply.body.contains("qav_requests_total{kind=\"log_in\",outcome=\"success\"} 1"));
        QVERIFY(reply.body.contains("qav_connections 1"));
        QVERIFY(reply.body.contains("qav_queue_depth{queue=\"requests\"} 0"));
        QCOMPARE(httpGet(daemon.monitorPort(), "/health", "HEAD").body, QString());
        QCOMPARE(httpGet(daemon.monitorPort(), "/secret").status, 404);
        QCOMPARE(httpGet(daemon.monitorPort(), "/health", "POST").status, 405);
        QCOMPARE(httpGet(daemon.monitorPort(), "/a b").status, 400);
        installation.fixture.exec("ALTER TABLE sub_system RENAME TO gone");
        reply = httpGet(daemon.monitorPort(), "/health");
        QCOMPARE(reply.status, 503);
        QVERIFY(reply.body.contains("store_failure"));
        installation.fixture.exec("ALTER TABLE gone RENAME TO sub_system");
    }

    void fullDiskIsToldByHealth_data()
    {
        const support::DataRows<int, int, QString> row("mebibytes", "status", "text");
        row("enough", 4096, 200, "\"status\":\"ok\",\"connections\":0,\"warnings\":[]");
        row("nearly full", 4095, 200, "\"status\":\"ok\",\"connections\":0,\"warnings\":[\"disk_nearly_full\"]");
        row("room for a change", 128, 200, "\"warnings\":[\"disk_nearly_full\"]");
        row("full", 127, 503, "\"status\":\"disk_full\"");
    }
    void fullDiskIsToldByHealth()
    {
        QFETCH(int, mebibytes);
        QFETCH(QString, text);
        Installation installation;
        installation.useMonitor();
        DaemonThread daemon(installation.configuration);
        freeMebibytes = mebibytes;
        const HttpReply reply = httpGet(daemon.monitorPort(), "/health");
        QTEST(reply.status, "status");
        QVERIFY2(reply.body.contains(text), qPrintable(reply.body));
    }

    void halfOpenConnectionsDoNotKeepOthersFromTheirAnswer()
    {
        Installation installation;
        installation.useMonitor();
        DaemonThread daemon(installation.configuration);
        std::vector<std::unique_ptr<QTcpSocket>> halfOpen;
        const auto openMore = [&](int count) {
            for (int i = 0; i < count; ++i) {
                halfOpen.push_back(std::make_unique<QTcpSocket>());
                halfOpen.back()->connectToHost(QStringLiteral("127.0.0.1"), static_cast<quint16>(daemon.monitorPort()));
                QVERIFY(halfOpen.back()->waitForConnected());
                halfOpen.back()->write(i % 2 == 0 ? "" : "GET /health HTTP/1.1\r\nHost:");
                halfOpen.back()->flush();
            }
        };
        for (int round = 0; round < 5; ++round) {
            openMore(20);
            QCOMPARE(httpGet(daemon.monitorPort(), "/health").status, 200);
            QCOMPARE(httpGet(daemon.monitorPort(), "/metrics").status, 200);
        }
        // Who made room, and who was too slow: none stays.
        for (const auto& socket : halfOpen) {
            QVERIFY(socket->state() == QAbstractSocket::UnconnectedState || socket->waitForDisconnected(30000));
        }
    }
};

TEST_WITHOUT_WIDGETS(DaemonMonitorTest)
#include "tst_daemon_monitor.moc"
