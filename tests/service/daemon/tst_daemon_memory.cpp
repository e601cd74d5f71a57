// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/DaemonProcess.h"
#include "service/daemon/Installation.h"
#include "service/sampledata/SampleData.h"
#include "support/TestProgram.h"

#include <nvservice/Codec.h>

#include <QElapsedTimer>

#include <memory>

using namespace testservice;
using nvservice::DataType::AccountGroup;
using nvservice::DataType::Institution;

namespace
{

constexpr double BytesInMebibyte = 1024 * 1024;

/// Memory that the process has in use now, in MiB; 0 when there is no such process.
double residentMebibytes(qint64 process)
{
    QFile file(QStringLiteral("/proc/%1/statm").arg(process));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    return file.readAll().split(' ').value(1).toDouble() * static_cast<double>(::sysconf(_SC_PAGESIZE)) /
           BytesInMebibyte;
}

/// The most that the process has had in use, in MiB; 0 when there is no such process.
double peakMebibytes(qint64 process)
{
    QFile file(QStringLiteral("/proc/%1/status").arg(process));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith("VmHWM:")) {
            return line.mid(6).simplified().split(' ').first().toDouble() / 1024;
        }
    }
    return 0;
}

} // namespace

/// What clients that read next to nothing cost the real daemon.
class DaemonMemoryTest : public QObject
{
    Q_OBJECT

private slots:
    void halfSentMessagesCostBoundedMemory()
    {
        constexpr int senders = 63;
        constexpr std::size_t sentBytes = 7 * 1024 * 1024; // of each
        constexpr int limit = 32;                          // MiB of messages that are being received
        constexpr int quietRounds = 50;
        QTemporaryDir directory(directoryTemplate());
        Installation installation;
        DaemonProcess daemon(directory.path());
        daemon.configure(installation.fixture.location(), East, {}, {},
                         "[limits]\nreceived_mebibytes = " + QByteArray::number(limit) +
                             "\n[timeouts]\nmessage_seconds = 600\n[workers]\nrequests = 4\n"
                             "[monitor]\naddress = \"127.0.0.1\"\nport = 0\n");
        QString errors;
        QVERIFY2(daemon.start(errors), qPrintable(errors));
        RawClient other;
        QVERIFY(enter(other, daemon.port()));
        std::vector<std::unique_ptr<RawClient>> clients;
        std::vector<std::size_t> sent(senders, 4);
        for (int i = 0; i < senders; ++i) {
            clients.push_back(std::make_unique<RawClient>());
            QVERIFY(enter(*clients.back(), daemon.port()));
        }
        const double before = residentMebibytes(daemon.id());
        for (const auto& client : clients) {
            client->sendBytes("\0\0\x80\0", 4); // the length: 8 MiB
        }
        const QByteArray piece(64 * 1024, 'x');
        double most = 0;
        double mostReceived = 0;
        for (int quiet = 0; quiet < quietRounds; ++quiet) {
            for (std::size_t i = 0; i < clients.size(); ++i) {
                QSslSocket& socket = clients[i]->socket();
                if (sent[i] < sentBytes && socket.bytesToWrite() == 0) {
                    socket.write(piece);
                    sent[i] += static_cast<std::size_t>(piece.size());
                    quiet = 0;
                }
                socket.flush();
            }
            COMPARE_CODE(other.query(Institution), EErrorCode::Success);
            most = std::max(most, residentMebibytes(daemon.id()));
            mostReceived = std::max(mostReceived, metric(daemon.monitorPort(), "qav_received_bytes") / BytesInMebibyte);
        }
        qInfo("%d half-sent messages: %.0f MiB in use before, %.0f MiB at most, %.0f MiB of messages", senders, before,
              most, mostReceived);
        QCOMPARE(static_cast<int>(mostReceived), limit);
#ifndef QAV_SHADOW_MEMORY
        constexpr double ofConnections = 24; // what their sockets keep
        QVERIFY2(most < before + limit + ofConnections, qPrintable(QString::number(most)));
#endif
        // Who goes makes room, for others who wait and for a whole message.
        for (const auto& client : clients) {
            client->cut();
        }
        QTRY_COMPARE_WITH_TIMEOUT(metric(daemon.monitorPort(), "qav_received_bytes"), 0.0, 60000);
        COMPARE_CODE(other.query(Institution, std::string(50000, '7')), EErrorCode::InvalidValue);
    }

    void largestOperationsSideBySideTakeWhatTheDocumentSays()
    {
        constexpr int operations = 8; // as many as there is room for at a time
        const int entries = support::setting("QAV_MEMORY_ENTRIES", 150000);
        QTemporaryDir directory(directoryTemplate());
        Installation installation;
        std::vector<int> groups;
        for (int i = 0; i < operations; ++i) {
            groups.push_back(installation.fixture.storedGroup("组" + std::to_string(i))->groupId);
        }
        DaemonProcess daemon(directory.path());
        daemon.configure(installation.fixture.location(), East, {}, {}, "[timeouts]\nmessage_seconds = 600\n");
        QString errors;
        QVERIFY2(daemon.start(errors), qPrintable(errors));
        // Very many short entries, which take most in memory for their bytes.
        auto config = boost::make_shared<nvservice::CAccountGroupRCConfig>();
        config->setRevision(1);
        config->rcRule.lists.resize(1);
        config->rcRule.lists[0].traderType = nvservice::EZvTraderType::Stock;
        for (int i = 0; i < entries; ++i) {
            nvservice::CTradeLimitEntry entry;
            entry.securityCode = std::to_string(1000000 + i);
            entry.securityName = "名";
            config->rcRule.lists[0].entries.push_back(entry);
        }
        std::vector<std::unique_ptr<RawClient>> clients;
        std::vector<std::int64_t> ids;
        while (clients.size() < groups.size()) {
            clients.push_back(std::make_unique<RawClient>());
            QVERIFY(enter(*clients.back(), daemon.port()));
        }
        for (std::size_t i = 0; i < clients.size(); ++i) {
            config->groupId = groups[i];
            ids.push_back(clients[i]->sendOperation(nvservice::DataType::GroupRiskConfig, EZvDataOperation::Modify,
                                                    config, "op-" + std::to_string(i)));
        }
        double most = 0;
        for (std::size_t i = 0; i < clients.size(); ++i) {
            COMPARE_CODE(clients[i]->answerTo(ids[i]), EErrorCode::Success);
            most = peakMebibytes(daemon.id());
        }
        qInfo("%d operations of %.1f MiB: %.0f MiB at most", operations,
              nvservice::encodeRecord(*config).objsize() / BytesInMebibyte, most);
        QVERIFY(most > 0);
#ifndef QAV_SHADOW_MEMORY
        constexpr double ofTheDocument = 5 * 128 + 96; // MiB: of messages, of the program
        QVERIFY2(most < ofTheDocument, qPrintable(QString::number(most)));
#endif
    }

    void slowReadersOfLargeRepliesCostBoundedMemory()
    {
        const int groups = support::setting("QAV_MEMORY_GROUPS", 20000);
        const int readers = support::setting("QAV_MEMORY_READERS", 8);
        const int seconds = support::setting("QAV_MEMORY_SECONDS", 8);
        const int limit = support::setting("QAV_MEMORY_LIMIT", 128); // MiB of answers that are held
        constexpr int queriesOfEach = 20;

        QTemporaryDir directory(directoryTemplate());
        const QString store = directory.filePath("store.db");
        service::SampleOptions sample;
        sample.servers = 1;
        sample.groups = groups;
        sample.accounts = 5000;
        support::makeSampleDatabase(store, sample);
        const support::RealService service(store);
        addUser(service.store(), service.server(0), "reader", "right", {}, None);

        DaemonProcess daemon(directory.path());
        daemon.configure(store, QString::fromStdString(service.server(0).name), certificates().certificate(),
                         certificates().key(),
                         "[limits]\nheld_mebibytes_per_connection = 48\nheld_mebibytes = " + QByteArray::number(limit) +
                             "\n"
                             "[workers]\nrequests = 4\n[monitor]\naddress = \"127.0.0.1\"\nport = 0\n");
        QString errors;
        QVERIFY2(daemon.start(errors), qPrintable(errors));
        RawClient other;
        QVERIFY(enter(other, daemon.port(), certificates().authority(), "reader"));
        COMPARE_CODE(other.query(AccountGroup), EErrorCode::Success);
        const double before = residentMebibytes(daemon.id());

        std::vector<std::unique_ptr<RawClient>> slow;
        for (int i = 0; i < readers; ++i) {
            slow.push_back(std::make_unique<RawClient>());
            QVERIFY(enter(*slow.back(), daemon.port(), certificates().authority(), "reader"));
            slow.back()->socket().setReadBufferSize(1024);
            for (int query = 0; query < queriesOfEach; ++query) {
                slow.back()->sendQuery(AccountGroup);
            }
        }
        QElapsedTimer timer;
        timer.start();
        double most = 0;
        double mostHeld = 0;
        int answered = 0;
        for (qint64 second = 0; timer.elapsed() < 1000LL * seconds; second = timer.elapsed() / 1000) {
            for (const auto& client : slow) {
                if (client->socket().isReadable() && client->socket().waitForReadyRead(1)) {
                    client->socket().read(1);
                }
            }
            COMPARE_CODE(other.query(Institution), EErrorCode::Success);
            ++answered;
            most = std::max(most, residentMebibytes(daemon.id()));
            mostHeld = std::max(mostHeld, metric(daemon.monitorPort(), "qav_held_bytes") / BytesInMebibyte);
            if (timer.elapsed() / 1000 != second) {
                qInfo("%3lld s: %.0f MiB in use, %.0f MiB of answers held, %d queries of another client answered",
                      second, residentMebibytes(daemon.id()),
                      metric(daemon.monitorPort(), "qav_held_bytes") / BytesInMebibyte, answered);
            }
        }
        qInfo("%.0f MiB before, %.0f MiB at most, %.0f MiB of answers held at most", before, most, mostHeld);
        const double oneReply = 2300.0 * groups / BytesInMebibyte;
        constexpr double unknownReply = 16; // what one of an unknown size is expected to take
        QVERIFY2(mostHeld < limit + oneReply + unknownReply, qPrintable(QString::number(mostHeld)));
#ifndef QAV_SHADOW_MEMORY
        QVERIFY2(most < before + limit + oneReply + unknownReply, qPrintable(QString::number(most)));
#endif
        // Who reads like everybody else gets everything.
        COMPARE_CODE(other.query(AccountGroup), EErrorCode::Success);
    }
};

TEST_WITHOUT_WIDGETS(DaemonMemoryTest)
#include "tst_daemon_memory.moc"
