// SPDX-License-Identifier: Apache-2.0
#include "service/DurableWriter.h"
#include "service/ServiceFixture.h"
#include "support/TestProgram.h"

#include "service/store/Query.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

#include <csignal>
#include <cstdio>
#include <thread>

using namespace testservice;
using service::Query;

namespace
{

constexpr int RoundsOfADatabase = 50; ///< so that the checks of a long run stay quick
constexpr int PatienceMs = 60000;

int upTo(int most)
{
    return static_cast<int>(QRandomGenerator::global()->bounded(most + 1));
}

/// A PostgreSQL server that may be killed.
class OwnServer
{
public:
    OwnServer() : m_folder(QDir::temp().filePath("qav-kill-%1").arg(QCoreApplication::applicationPid()))
    {
        m_isUp = run({"start", m_folder, "shared_buffers=32MB"});
        qputenv("QAV_TEST_POSTGRES", m_folder.toUtf8());
    }
    ~OwnServer() { run({"stop", m_folder}); }

    bool isUp() const { return m_isUp; }

    bool killAndRestart() const
    {
        QFile file(m_folder + "/data/postmaster.pid");
        const bool isKilled = file.open(QIODevice::ReadOnly) && ::kill(file.readLine().trimmed().toInt(), SIGKILL) == 0;
        return isKilled && run({"restart", m_folder});
    }

private:
    static bool run(const QStringList& arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(support::sourceFile("tests/support/postgres/cluster.sh"), arguments);
        return process.waitForFinished(2 * PatienceMs) && process.exitCode() == 0;
    }

    QString m_folder;
    bool m_isUp = false;
};

/// The process that writes.
class Writer
{
public:
    Writer(const QString& location, const QString& run)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationFilePath(), {"--write", location, run});
    }

    /// Waits for as many more operations to be acknowledged.
    bool waitFor(int more)
    {
        for (more += m_acknowledged.size(); m_acknowledged.size() < more; read()) {
            if (!m_process.canReadLine() && !m_process.waitForReadyRead(PatienceMs)) {
                return false;
            }
        }
        return true;
    }

    bool kill()
    {
        m_process.kill();
        const bool isKilled = m_process.waitForFinished() && m_process.exitStatus() == QProcess::CrashExit;
        read();
        return isKilled;
    }

    const QStringList& acknowledged() const { return m_acknowledged; }

private:
    void read()
    {
        while (m_process.canReadLine()) {
            m_acknowledged << QString::fromUtf8(m_process.readLine()).trimmed();
        }
    }

    QProcess m_process;
    QStringList m_acknowledged;
};

/// Kills one of the server's processes that the writer talks to; the server then ends all others and recovers.
bool killBackend(service::Store& store)
{
    int process = 0;
    store.read([&process](service::Connection& connection) {
        Query query(connection, "SELECT pid FROM pg_stat_activity WHERE datname = current_database()"
                                " AND pid <> pg_backend_pid() AND backend_type = 'client backend'"
                                " ORDER BY random() LIMIT 1");
        process = query.runAndNext() ? static_cast<int>(query.integer(0)) : 0;
    });
    return process != 0 && ::kill(process, SIGKILL) == 0;
}

} // namespace

/// QAV_KILL_ROUNDS in the environment says how often; with QAV_KILL_POSTGRES it is on a PostgreSQL server.
class DurabilityTest : public QObject
{
    Q_OBJECT

private slots:
    void acknowledgedOperationsSurviveAnyKillAndNoneIsAppliedTwice()
    {
        const bool isPostgres = qEnvironmentVariableIsSet("QAV_KILL_POSTGRES");
        const int rounds = support::setting("QAV_KILL_ROUNDS", 20);
        qputenv("QAV_TEST_FOLDER", QDir::tempPath().toUtf8()); // a real disk, so that kills meet commits that wait
        // Goes after the fixture's database, which goes with the application.
        static std::unique_ptr<OwnServer> server;
        if (isPostgres) {
            server = std::make_unique<OwnServer>();
            qAddPostRoutine([] { server.reset(); });
            QVERIFY(server->isUp());
        }
        std::unique_ptr<ServiceFixture> fixture;
        service::SessionPtr session;
        qint64 acknowledged = 0;
        int unacknowledged = 0;
        int sentAgain = 0;
        int serverKills = 0;
        for (int round = 0; round < rounds; ++round) {
            if (round % RoundsOfADatabase == 0) {
                fixture.reset();
                fixture = std::make_unique<ServiceFixture>();
                session = fixture->session("writer", everyRight());
            }
            const QString run = QString("r%1").arg(round);
            Writer writer(fixture->location(), run);
            // Now and then it dies before it has said anything, otherwise in the middle of its work.
            const bool isEarly = round % 10 == 9;
            if (!isEarly) {
                QVERIFY(writer.waitFor(1 + upTo(40)));
            }
            // The writer survives the server's death and goes on.
            if (isPostgres && !isEarly && round % 2 == 1) {
                QVERIFY(round % 4 == 1 ? killBackend(fixture->store()) : server->killAndRestart());
                QVERIFY(writer.waitFor(1 + upTo(20)));
                ++serverKills;
            }
            std::this_thread::sleep_for(std::chrono::microseconds(upTo(isEarly ? 100000 : 4000)));
            QVERIFY(writer.kill());

            const Aftermath aftermath = aftermathOf(fixture->store(), run, writer.acknowledged());
            QVERIFY2(aftermath.findings.isEmpty(), qPrintable(aftermath.findings.join('\n')));
            acknowledged += writer.acknowledged().size();
            unacknowledged += aftermath.unacknowledged;
            sentAgain += sendAgain(*fixture, session, run, aftermath);
            QVERIFY(!QTest::currentTestFailed());
        }
        QVERIFY(acknowledged > rounds / 2);
        std::printf(
            "%d kills of the writer, %d of the server; %lld operations acknowledged, all stored once; %d stored "
            "without an answer; %d sent again, stored once\n",
            rounds, serverKills, static_cast<long long>(acknowledged), unacknowledged, sentAgain);
    }

private:
    /// The operation of every thread that was not answered may be stored or not; sent again, it is there once.
    int sendAgain(ServiceFixture& fixture, const service::SessionPtr& session, const QString& run,
                  const Aftermath& before)
    {
        int sent = 0;
        for (int thread = 0; thread < 4; ++thread) {
            int number = 0;
            const auto id = [&] { return QString("%1-%2-%3").arg(run).arg(thread).arg(number).toStdString(); };
            while (before.stored.count(id() + "m") != 0) {
                ++number;
            }
            const service::Reply reply = operate(fixture.east(), session, EZvDataOperation::Add,
                                                 group(id(), First, {future("8001"), future("8002")}), id());
            if (!reply.error.isSuccess()) {
                QTest::qFail(reply.error.errorMsg().c_str(), __FILE__, __LINE__);
            }
            ++sent;
        }
        const Aftermath after = aftermathOf(fixture.store(), run, {});
        if (!after.findings.isEmpty()) {
            QTest::qFail(qPrintable(after.findings.join('\n')), __FILE__, __LINE__);
        }
        return sent;
    }
};

namespace
{

/// Makes what a writer needs.
int prepare(const QString& location)
{
    fill(*support::openStore(location));
    const support::RealService service(location);
    service::StoredUser user;
    user.login = "writer";
    user.passwordHash = "-";
    user.enabled = true;
    user.rights = everyRight();
    service::insertUser({service.store().connection(), service.server(0)}, user);
    return 0;
}

/// Compares a store with the acknowledged operations, one to a line of the standard input.
int check(const QString& location, const QString& run)
{
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) {
        return 2;
    }
    QStringList acknowledged = QString::fromUtf8(input.readAll()).split('\n', Qt::SkipEmptyParts);
    const Aftermath aftermath = aftermathOf(*support::openStore(location), run, acknowledged);
    std::printf("%d operations acknowledged, %d stored without an answer, %d findings\n", acknowledged.size(),
                aftermath.unacknowledged, aftermath.findings.size());
    for (const QString& finding : aftermath.findings) {
        std::printf("%s\n", qPrintable(finding));
    }
    return aftermath.findings.isEmpty() && !acknowledged.isEmpty() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--write") {
        return writeWithoutEnd(arguments.value(2), arguments.value(3));
    }
    if (arguments.value(1) == "--prepare") {
        return prepare(arguments.value(2));
    }
    if (arguments.value(1) == "--check") {
        return check(arguments.value(2), arguments.value(3));
    }
    DurabilityTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_durability.moc"
