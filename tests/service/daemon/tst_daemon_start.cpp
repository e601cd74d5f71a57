// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/DaemonProcess.h"
#include "service/daemon/Installation.h"
#include "service/daemon/NotifySocket.h"
#include "service/daemon/StoreOpener.h"
#include "service/store/Schema.h"
#include "support/TestProgram.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>

using namespace testservice;
using service::daemon::StoreOpener;

namespace
{

/// Stands where a PostgreSQL server should be.
class NoDatabase
{
public:
    enum class EManner { Refusing, Mute };

    explicit NoDatabase(EManner manner)
    {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this, manner] {
            QTcpSocket* const socket = m_server.nextPendingConnection();
            ++m_attempts;
            if (manner == EManner::Refusing) {
                socket->abort();
            }
        });
        m_server.listen(QHostAddress::LocalHost);
    }

    int attempts() const { return m_attempts; }
    QString location() const
    {
        // One connection for each attempt.
        return QStringLiteral(
                   "postgresql://qav@127.0.0.1:%1/qav?sslmode=disable&gssencmode=disable&connect_timeout=600")
            .arg(m_server.serverPort());
    }

private:
    QTcpServer m_server;
    int m_attempts = 0;
};

} // namespace

/// The real daemon, whose surroundings are not as it needs them when it is started.
class DaemonStartTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory{directoryTemplate()};

private slots:
    void init()
    {
        m_manager = std::make_unique<NotifySocket>(m_directory.filePath("notify"));
        QVERIFY(m_manager->isOpen());
        m_daemon = std::make_unique<DaemonProcess>(m_directory.path());
        m_daemon->setEnvironment("NOTIFY_SOCKET", m_manager->path());
    }

    void cleanup()
    {
        m_daemon.reset();
        QFile::remove(m_manager->path());
        m_manager.reset();
    }

    void databaseThatIsAwayIsTriedAgainAndAgain()
    {
        const NoDatabase database(NoDatabase::EManner::Refusing);
        m_daemon->configure(database.location(), East, {}, {});
        m_daemon->launch();
        QTRY_VERIFY_WITH_TIMEOUT(database.attempts() >= 4, 60000);
        // The reason is the same each time.
        QCOMPARE(m_daemon->log().filter("waiting_for_store").size(), 1);
        QVERIFY(m_daemon->log().filter("waiting_for_store")[0].contains("无法连接数据库"));
        QTRY_COMPARE(m_manager->count("STATUS=正在等待数据库：无法连接数据库"), 1);
        // The start would time out without a second extension.
        QTRY_VERIFY_WITH_TIMEOUT(m_manager->count("EXTEND_TIMEOUT_USEC=30000000") >= 2, 20000);
        QCOMPARE(m_daemon->log().filter("listening").size(), 0);
        m_daemon->hangUp();
        const int before = database.attempts();
        QTRY_VERIFY_WITH_TIMEOUT(database.attempts() > before, 60000);
        QCOMPARE(m_manager->count("READY=1"), 0);
        m_daemon->terminate();
        QCOMPARE(m_daemon->waitForEnd(), 0);
        QVERIFY(m_daemon->log().last().contains("\"event\":\"stopped\""));
        QCOMPARE(m_manager->count("STOPPING=1"), 1);
    }

    void stopSignalEndsAnAttemptThatGetsNoAnswer()
    {
        const NoDatabase database(NoDatabase::EManner::Mute);
        m_daemon->configure(database.location(), East, {}, {});
        m_daemon->launch();
        QTRY_COMPARE_WITH_TIMEOUT(database.attempts(), 1, 60000);
        m_daemon->terminate();
        QCOMPARE(m_daemon->waitForEnd(), 0);
        QCOMPARE(database.attempts(), 1);
    }

    void pausesGrow()
    {
        using std::chrono::milliseconds;
        QCOMPARE(StoreOpener::pauseAfter(1), milliseconds(250));
        for (int failures = 2; failures < 6; ++failures) {
            QCOMPARE(StoreOpener::pauseAfter(failures), 2 * StoreOpener::pauseAfter(failures - 1));
        }
        QCOMPARE(StoreOpener::pauseAfter(1000), milliseconds(10000));
    }

    void longMigrationExtendsTheStart()
    {
        const TestDatabase database;
        service::StoreOptions options;
        options.location = database.location();
        service::Connection old(options, "old");
        service::migrateSchema(old, {service::schemaMigrations().front()});
        old.exec("INSERT INTO sub_system (name, system_tag) VALUES ('" + East + "', 'E')");
        m_daemon->configure(database.location(), East, {}, {});
        {
            const service::Transaction lock(old, service::Transaction::EKind::Write);
            m_daemon->launch();
            QTRY_VERIFY_WITH_TIMEOUT(m_manager->count("EXTEND_TIMEOUT_USEC=") >= 3, 20000);
            QVERIFY(m_manager->heard().contains("STATUS=正在打开数据库"));
            QCOMPARE(m_manager->count("READY=1"), 0);
        }
        QString errors;
        QVERIFY2(m_daemon->waitUntilStarted(errors), qPrintable(errors));
        QTRY_COMPARE(m_manager->count("READY=1"), 1);
    }

    void defectOfTheConfigurationEndsTheStartAtOnce_data()
    {
        const support::DataRows<QString, QString, QString> row("location", "key", "error");
        const NoDatabase away(NoDatabase::EManner::Refusing);
        const QString file = m_directory.filePath("mistyped.db");
        row("file that is not there", file, certificates().key(), "数据库文件不存在（" + file + "）\n");
        row("URL that is none", "postgresql://[::1", certificates().key(), "数据库地址无效（");
        row("key of another certificate", away.location(), certificates().otherKey(), "不匹配");
        row("missing key", away.location(), m_directory.filePath("no.key"), "无法读取私钥文件");
    }

    void defectOfTheConfigurationEndsTheStartAtOnce()
    {
        QFETCH(QString, location);
        QFETCH(QString, key);
        QFETCH(QString, error);
        m_daemon->configure(location, East, certificates().certificate(), key);
        QString errors;
        QVERIFY(!m_daemon->start(errors));
        QCOMPARE(m_daemon->waitForEnd(), 2);
        QVERIFY2(errors.contains(error), qPrintable(errors));
        QVERIFY(!QFile::exists(m_directory.filePath("mistyped.db")));
        QCOMPARE(m_manager->count("READY=1"), 0);
    }

    void failureThatStaysEndsTheStart()
    {
        const TestDatabase database;
        service::StoreOptions options;
        options.location = database.location();
        service::Connection(options, "foreign").exec("CREATE TABLE recipes (name TEXT)");
        m_daemon->configure(database.location(), East, {}, {});
        QString errors;
        QVERIFY(!m_daemon->start(errors));
        QCOMPARE(m_daemon->waitForEnd(), 1);
        QVERIFY2(errors.contains("其他程序"), qPrintable(errors));
    }

    /// On a machine that has only what Debian calls essential: a shell, but no program to send signals.
    void reloadCommandOfTheUnitNeedsNothingButAShell()
    {
        Installation installation;
        m_daemon->configure(installation.fixture.location(), East, certificates().certificate(), certificates().key());
        QString errors;
        QVERIFY2(m_daemon->start(errors), qPrintable(errors));
        QFile unit(support::builtFile("packaging/qav-dataserviced.service"));
        QVERIFY(unit.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(unit.readAll()).split('\n').filter("ExecReload=");
        QCOMPARE(lines.size(), 1);
        QStringList words = QProcess::splitCommand(lines[0].section('=', 1));
        QProcess command;
        QProcessEnvironment environment;
        environment.insert("PATH", "/nonexistent");
        environment.insert("MAINPID", QString::number(m_daemon->id()));
        command.setProcessEnvironment(environment);
        QCOMPARE(words.takeFirst(), QString("/bin/sh"));
        command.start("/bin/sh", words);
        QVERIFY(command.waitForFinished());
        QCOMPARE(command.exitCode(), 0);
        QTRY_COMPARE(m_manager->count("RELOADING=1"), 1);
        QTRY_COMPARE(m_manager->count("READY=1"), 2);
        QCOMPARE(m_daemon->log().filter("certificate_reloaded").size(), 1);
    }

private:
    std::unique_ptr<NotifySocket> m_manager;
    std::unique_ptr<DaemonProcess> m_daemon;
};

TEST_WITHOUT_WIDGETS(DaemonStartTest)
#include "tst_daemon_start.moc"
