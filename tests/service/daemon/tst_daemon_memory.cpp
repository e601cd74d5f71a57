#include "service/daemon/DaemonProcess.h"
#include "service/daemon/Installation.h"
#include "service/sampledata/SampleData.h"

#include <QElapsedTimer>
#include <QtTest>

#include <memory>
#include <vector>

using namespace testservice;
using nvservice::DataType::AccountGroup;
using nvservice::DataType::Institution;

namespace
{

constexpr double Mebibyte = 1024 * 1024;

/// Memory that the process has in use now, in MiB; 0 when there is no such process.
double residentMebibytes(qint64 process)
{
    QFile file(QStringLiteral("/proc/%1/statm").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toDouble() * static_cast<double>(::sysconf(_SC_PAGESIZE)) / Mebibyte;
}

double metric(int monitorPort, const QString& name)
{
    for (const QString& line : httpGet(monitorPort, "/metrics").body.split('\n')) {
        if (line.startsWith(name + ' '))
            return line.mid(name.size() + 1).toDouble();
    }
    return -1;
}

int numberOf(const char* variable, int otherwise)
{
    return qEnvironmentVariableIsSet(variable) ? qEnvironmentVariableIntValue(variable) : otherwise;
}

} // namespace

/// What clients that read next to nothing cost the real daemon.
class DaemonMemoryTest : public QObject
{
    Q_OBJECT

private slots:
    void slowReadersOfLargeRepliesCostBoundedMemory()
    {
        const int groups = numberOf("QAV_MEMORY_GROUPS", 20000);
        const int readers = numberOf("QAV_MEMORY_READERS", 8);
        const int seconds = numberOf("QAV_MEMORY_SECONDS", 8);
        const int limit = numberOf("QAV_MEMORY_LIMIT", 128); // MiB of answers that are held
        constexpr int queriesOfEach = 20;

        QTemporaryDir directory(directoryTemplate());
        service::StoreOptions options;
        options.location = directory.filePath("store.db");
        utils::NVError error;
        const service::StorePtr store = service::Store::open(options, error);
        QVERIFY(store);
        service::SampleOptions sample;
        sample.servers = 1;
        sample.groups = groups;
        sample.accounts = 5000;
        QVERIFY(service::generateSampleData(*store, sample).isSuccess());
        const auto engine = service::DataEngine::openAll(store, error).at(0);
        addUser(*store, store->subSystems(error).at(0), "reader", "right", {}, None);

        DaemonProcess daemon(directory.path());
        daemon.configure(options.location, QString::fromStdString(engine->serverName()), certificates().certificate(),
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
            for (int query = 0; query < queriesOfEach; ++query)
                slow.back()->sendQuery(AccountGroup);
        }
        QElapsedTimer timer;
        timer.start();
        double most = 0;
        double mostHeld = 0;
        int answered = 0;
        for (qint64 second = 0; timer.elapsed() < 1000LL * seconds; second = timer.elapsed() / 1000) {
            for (const auto& client : slow) {
                if (client->socket().isReadable() && client->socket().waitForReadyRead(1))
                    client->socket().read(1);
            }
            COMPARE_CODE(other.query(Institution), EErrorCode::Success);
            ++answered;
            most = std::max(most, residentMebibytes(daemon.id()));
            mostHeld = std::max(mostHeld, metric(daemon.monitorPort(), "qav_held_bytes") / Mebibyte);
            if (timer.elapsed() / 1000 != second)
                qInfo("%3lld s: %.0f MiB in use, %.0f MiB of answers held, %d queries of another client answered",
                      second, residentMebibytes(daemon.id()), metric(daemon.monitorPort(), "qav_held_bytes") / Mebibyte,
                      answered);
        }
        qInfo("%.0f MiB before, %.0f MiB at most, %.0f MiB of answers held at most", before, most, mostHeld);
        const double oneReply = 2300.0 * groups / Mebibyte;
        constexpr double unknownReply = 16; // what one of an unknown size is expected to take
        QVERIFY2(mostHeld < limit + oneReply + unknownReply, qPrintable(QString::number(mostHeld)));
#ifndef QAV_SHADOW_MEMORY
        QVERIFY2(most < before + limit + oneReply + unknownReply, qPrintable(QString::number(most)));
#endif
        // Who reads like everybody else gets everything.
        COMPARE_CODE(other.query(AccountGroup), EErrorCode::Success);
    }
};

QTEST_GUILESS_MAIN(DaemonMemoryTest)
#include "tst_daemon_memory.moc"
