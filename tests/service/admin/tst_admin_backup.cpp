#include "service/admin/AdminFixture.h"

#include "service/admin/SqliteCopy.h"
#include "service/store/Journal.h"
#include "service/store/Schema.h"

#include <QDir>
#include <QFileInfo>
#include <QtTest>

#include <atomic>
#include <thread>

#include <csignal>

using namespace testservice;

namespace
{

service::StorePtr opened(const QString& file)
{
    service::StoreOptions options;
    options.location = file;
    utils::NVError error;
    return service::Store::open(options, error);
}

std::int64_t numberIn(const QString& file, const QString& sql)
{
    const service::StorePtr store = opened(file);
    service::Query query(store->connection(), sql);
    return query.runAndNext() ? query.integer(0) : -1;
}

/// A copy of the fixture's database that nobody has open.
QString closedCopy(AdminFixture& fixture, const char* name)
{
    const QString file = fixture.path(name);
    service::copySqliteDatabase(fixture.storeName(), file, {});
    service::leaveWriteAheadMode(file);
    return file;
}

/// Fills the audit with so many megabytes.
void makeLarge(AdminFixture& fixture, int megabytes)
{
    service::Connection& connection = fixture.store().connection();
    service::Transaction transaction(connection, service::Transaction::EKind::Write);
    service::AuditWriter writer(connection, fixture.server(0));
    service::AuditRow row;
    row.login = "filler";
    bson::BSONObjBuilder body;
    body.append("text", std::string(1024 * 1024, 'x'));
    row.after = body.obj();
    for (int i = 0; i < megabytes; ++i)
        writer.insert(row);
    transaction.commit();
}

void damage(const QString& name)
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.size() > 10 * 4096);
    file.seek(5 * 4096);
    file.write(QByteArray(4096 * 5, '\x5a'));
}

/// Runs the tool and stops it by a signal as soon as the file is there. False when it was done before anybody looked.
bool stopWhenThere(QProcess& process, const QStringList& arguments, const QString& file, int signal)
{
    process.start(adminProgram(), arguments);
    while (!process.waitForFinished(1)) {
        if (!QFile::exists(file))
            continue;
        ::kill(static_cast<pid_t>(process.processId()), signal);
        process.waitForFinished(30000);
        break;
    }
    return process.exitStatus() == QProcess::CrashExit || process.exitCode() == 128 + signal;
}

constexpr int Attempts = 10; ///< to stop a program in time, on a machine that has much to do

} // namespace

class AdminBackupTest : public QObject
{
    Q_OBJECT

private slots:
    void backupHoldsEverythingInOneSoundFile()
    {
        AdminFixture fixture;
        fixture.storedGroup("甲组");
        const QString file = fixture.path("backup.db");
        const Outcome outcome = fixture.run(QStringList{"backup", file, "--json"});
        COMPARE_EXIT(outcome, 0);
        const QJsonObject json = outcome.json().object();
        QCOMPARE(json.value("verified"), QJsonValue(true));
        QCOMPARE(json.value("bytes"), QJsonValue(static_cast<int>(QFileInfo(file).size())));
        QCOMPARE(json.value("servers"), QJsonValue(2));
        QCOMPARE(json.value("groups"), QJsonValue(1));
        QCOMPARE(json.value("accounts"), QJsonValue(16));
        QCOMPARE(json.value("schemaVersion"), QJsonValue(service::schemaMigrations().back().number));
        QCOMPARE(QFileInfo(file).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
        const QStringList beside = QFileInfo(file).dir().entryList({"backup.db?*"}, QDir::Files);
        QVERIFY2(beside.isEmpty(), qPrintable(beside.join(' ')));
        const service::StorePtr copy = opened(file);
        QVERIFY(copy);
        QCOMPARE(contentOf(*copy), fixture.content());
        COMPARE_EXIT(runAdmin({"verify", file}), 0);
    }

    void backupReplacesNothingUnlessForced()
    {
        AdminFixture fixture;
        const QString file = fixture.path("backup.db");
        writeFile(file, "mine");
        const Outcome refused = fixture.run(QStringList{"backup", file});
        COMPARE_EXIT(refused, 1);
        QCOMPARE(readFile(file), QByteArray("mine"));
        COMPARE_EXIT(fixture.run(QStringList{"backup", file, "--force"}), 0);
        COMPARE_EXIT(runAdmin({"verify", file}), 0);
    }

    void fileThatCannotBeWrittenIsNamed_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::newRow("folder that is missing") << "missing";
        QTest::newRow("folder that is a file") << "file";
    }
    void fileThatCannotBeWrittenIsNamed()
    {
        QFETCH(QString, folder);
        AdminFixture fixture;
        writeFile(fixture.path("file"), "x");
        const QString target = fixture.path(qPrintable(folder + "/target"));
        for (const QStringList& command :
             {QStringList{"backup", target}, {"export", "--server", "E", "--accounts", target}}) {
            const Outcome outcome = fixture.run(command);
            COMPARE_EXIT(outcome, 1);
            QVERIFY2(outcome.errors.startsWith(target + "："), qPrintable(outcome.errors));
        }
        QCOMPARE(readFile(fixture.path("file")), QByteArray("x"));
    }

    void backupIsReportedUnderTheNameOfItsFile()
    {
        AdminFixture fixture;
        const QString file = fixture.path("100%3.db");
        const Outcome outcome = fixture.run(QStringList{"backup", file});
        COMPARE_EXIT(outcome, 0);
        QVERIFY2(outcome.output.contains(file + QString("（%1字节）").arg(QFileInfo(file).size())),
                 qPrintable(outcome.output));
    }

    void backupUnderLoadShowsOneMoment()
    {
        AdminFixture fixture;
        const auto session = fixture.admin();
        makeLarge(fixture, 20);
        std::atomic<bool> isOver = false;
        std::atomic<int> added = 0;
        std::thread writer([&] {
            while (!isOver) {
                const auto record = group("组" + std::to_string(added + 1), First, {future("8001"), future("8002")});
                if (operate(fixture.east(), session, EZvDataOperation::Add, record).error.isSuccess())
                    ++added;
            }
        });
        QTRY_VERIFY(added > 5);
        const int before = added;
        const QString file = fixture.path("backup.db");
        const Outcome outcome = fixture.run(QStringList{"backup", file});
        const int after = added;
        isOver = true;
        writer.join();
        COMPARE_EXIT(outcome, 0);
        const auto groups = static_cast<int>(numberIn(file, "SELECT count(*) FROM account_group"));
        QVERIFY2(groups >= before && groups <= after + 1, qPrintable(QString::number(groups)));
        QVERIFY2(after > before, "somebody wrote meanwhile");
        // Group, history and audit of one operation are there together or not at all.
        QCOMPARE(numberIn(file, "SELECT count(*) FROM account_group_member"), 2 * groups);
        QCOMPARE(numberIn(file, "SELECT count(*) FROM account_group_history"), groups);
        QCOMPARE(numberIn(file, "SELECT count(*) FROM audit WHERE login <> 'filler'"), groups);
    }

    void damagedFileIsNoBackup_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("reason");
        QTest::newRow("damaged pages") << "damaged" << 3 << "损坏";
        QTest::newRow("cut") << "cut" << 3 << "损坏";
        QTest::newRow("text") << "text" << 1 << "该文件不是备份";
        QTest::newRow("foreign database") << "foreign" << 3 << "属于其他程序";
        QTest::newRow("newer version") << "newer" << 3 << "请升级程序";
        QTest::newRow("missing") << "missing" << 1 << "无法读取文件";
    }

    void damagedFileIsNoBackup()
    {
        QFETCH(QString, kind);
        QFETCH(int, exitCode);
        QFETCH(QString, reason);
        AdminFixture fixture;
        if (kind == "newer")
            fixture.exec("INSERT INTO schema_version VALUES (999, 0)");
        const QString file = closedCopy(fixture, "backup.db");
        if (kind == "damaged")
            damage(file);
        if (kind == "cut")
            QVERIFY(QFile::resize(file, QFileInfo(file).size() / 2));
        if (kind == "text")
            writeFile(file, "SQLite format? no, only text");
        if (kind == "foreign") {
            QFile::remove(file);
            service::StoreOptions options;
            options.location = file;
            service::Connection(options, "foreign").exec("CREATE TABLE theirs (x INTEGER)");
        }
        if (kind == "missing")
            QFile::remove(file);
        const QString target = fixture.path("target.db");
        for (const QStringList& command :
             {QStringList{"verify", file}, QStringList{"restore", file, "--store", target}}) {
            const Outcome outcome = runAdmin(command);
            COMPARE_EXIT(outcome, exitCode);
            QVERIFY2(outcome.errors.contains(reason), qPrintable(outcome.errors));
        }
        QVERIFY(!QFile::exists(target));
        QVERIFY(!QFile::exists(target + ".partial"));
    }

    void restoreBringsTheBackupBackAndRemembersIt()
    {
        AdminFixture fixture;
        fixture.storedGroup("甲组");
        const QString target = closedCopy(fixture, "target.db");
        const QString backup = fixture.path("backup.db");
        COMPARE_EXIT(fixture.run(QStringList{"backup", backup}), 0);
        opened(target)->connection().exec("UPDATE account_group SET name = 'geändert'");
        const Outcome outcome = runAdmin({"restore", backup, "--store", target, "--as", "boss", "--json"});
        COMPARE_EXIT(outcome, 0);
        QCOMPARE(outcome.json().object().value("groups"), QJsonValue(1));
        QCOMPARE(numberIn(target, "SELECT count(*) FROM account_group WHERE name = '甲组'"), 1);
        QCOMPARE(numberIn(target, "SELECT count(*) FROM audit WHERE login = 'boss' AND record_key = 'database'"), 2);
        QStringList restored = contentOf(*opened(target));
        const auto isNew = [](const QString& row) {
            return row.contains("|boss|") || row.startsWith("sqlite_sequence");
        };
        QStringList original = fixture.content();
        for (QStringList* rows : {&restored, &original})
            rows->erase(std::remove_if(rows->begin(), rows->end(), isNew), rows->end());
        QCOMPARE(restored, original);
    }

    void restoreMakesADatabaseThatIsMissing()
    {
        AdminFixture fixture;
        fixture.storedGroup("甲组");
        const QString backup = closedCopy(fixture, "backup.db");
        const QString target = fixture.path("new.db");
        writeFile(target + "-wal", "left behind by a database that is gone");
        COMPARE_EXIT(runAdmin({"restore", backup, "--store", target}), 0);
        QCOMPARE(numberIn(target, "SELECT count(*) FROM account_group"), 1);
        QVERIFY(opened(target)->checkIntegrity().isSuccess());
    }

    void databaseInUseIsRestoredOnlyByForce()
    {
        AdminFixture fixture;
        const QString backup = closedCopy(fixture, "backup.db");
        fixture.storedGroup("später");
        const QStringList before = fixture.content();
        // The fixture's own connection is idle, and yet it has the database open.
        const Outcome refused = fixture.run(QStringList{"restore", backup});
        COMPARE_EXIT(refused, 1);
        QVERIFY2(refused.errors.contains("正被其他程序使用"), qPrintable(refused.errors));
        QCOMPARE(fixture.content(), before);

        COMPARE_EXIT(fixture.run(QStringList{"restore", backup, "--force", "--as", "boss"}), 0);
        QCOMPARE(fixture.number("SELECT count(*) FROM account_group"), 0);
        QVERIFY(fixture.store().checkIntegrity().isSuccess());
        QVERIFY(fixture.storedGroup("neu"));
        QCOMPARE(fixture.number("SELECT count(*) FROM account_group"), 1);
    }

    void databaseThatSomebodyWritesIsNotRestored()
    {
        AdminFixture fixture;
        const QString backup = closedCopy(fixture, "backup.db");
        const QStringList before = fixture.content();
        {
            service::Transaction lock(fixture.store().connection(), service::Transaction::EKind::Write);
            COMPARE_EXIT(fixture.run(QStringList{"restore", backup}), 1);
        }
        QCOMPARE(fixture.content(), before);
    }

    void brokenDatabaseIsKeptAsideWhenItIsReplaced()
    {
        AdminFixture fixture;
        const QString backup = closedCopy(fixture, "backup.db");
        const QString target = fixture.path("target.db");
        writeFile(target, QByteArray(8192, 'x'));
        const Outcome refused = runAdmin({"restore", backup, "--store", target});
        COMPARE_EXIT(refused, 1);
        QVERIFY(refused.errors.contains("不是可用的数据库"));
        QCOMPARE(readFile(target), QByteArray(8192, 'x'));
        COMPARE_EXIT(runAdmin({"restore", backup, "--store", target, "--force"}), 0);
        QVERIFY(opened(target));
        const QStringList aside = QFileInfo(target).dir().entryList({"target.db.replaced-*"}, QDir::Files);
        QCOMPARE(aside.size(), 1);
        QCOMPARE(readFile(QFileInfo(target).dir().filePath(aside.first())), QByteArray(8192, 'x'));
    }

    void databaseIsNotRestoredFromItself()
    {
        AdminFixture fixture;
        const QString file = closedCopy(fixture, "backup.db");
        const Outcome outcome = runAdmin({"restore", file, "--store", file, "--force"});
        COMPARE_EXIT(outcome, 1);
        QVERIFY(outcome.errors.contains("同一个文件"));
        COMPARE_EXIT(runAdmin({"verify", file}), 0);
    }

    void databaseOfAnOlderVersionCanBeBackedUpAndRestored()
    {
        const QTemporaryDir directory(directoryTemplate());
        const QString old = directory.filePath("old.db");
        {
            service::StoreOptions options;
            options.location = old;
            service::Connection connection(options, "old");
            service::migrateSchema(connection, {service::schemaMigrations().front()});
            connection.exec("INSERT INTO sub_system (name, system_tag) VALUES ('旧', 'OLD')");
        }
        const QString backup = directory.filePath("backup.db");
        const Outcome outcome = runAdmin({"backup", backup, "--store", old, "--json"});
        COMPARE_EXIT(outcome, 0);
        QCOMPARE(outcome.json().object().value("schemaVersion"), QJsonValue(1));
        const QString target = directory.filePath("target.db");
        COMPARE_EXIT(runAdmin({"restore", backup, "--store", target}), 0);
        QCOMPARE(numberIn(target, "SELECT max(version) FROM schema_version"),
                 service::schemaMigrations().back().number);
        QCOMPARE(numberIn(target, "SELECT count(*) FROM sub_system WHERE system_tag = 'OLD'"), 1);
    }

    void killedRestoreLeavesTheOldContentAsAWhole()
    {
        AdminFixture fixture;
        fixture.storedGroup("alt");
        const QString old = closedCopy(fixture, "old.db");
        makeLarge(fixture, 40);
        fixture.exec("UPDATE account_group SET name = 'neu'");
        const QString backup = closedCopy(fixture, "backup.db");
        const QString target = fixture.path("target.db");
        bool isOld = false;
        for (int attempt = 0; attempt < Attempts && !isOld; ++attempt) {
            QFile::remove(target);
            QVERIFY(QFile::copy(old, target));
            QProcess process;
            // The journal is there as long as the old content can come back.
            stopWhenThere(process, {"restore", backup, "--store", target}, target + "-journal", SIGKILL);
            QVERIFY(opened(target)->checkIntegrity().isSuccess());
            isOld = numberIn(target, "SELECT count(*) FROM account_group WHERE name = 'alt'") == 1;
            const std::int64_t rows = numberIn(target, "SELECT count(*) FROM audit");
            QVERIFY2(isOld ? rows == 0 : rows >= 40, qPrintable(QString::number(rows)));
        }
        QVERIFY(isOld);
        COMPARE_EXIT(runAdmin({"restore", backup, "--store", target}), 0);
        QCOMPARE(numberIn(target, "SELECT count(*) FROM account_group WHERE name = 'neu'"), 1);
    }

    void interruptedBackupLeavesNothing()
    {
        AdminFixture fixture;
        makeLarge(fixture, 60);
        const QString file = fixture.path("backup.db");
        bool isStopped = false;
        for (int attempt = 0; attempt < Attempts && !isStopped; ++attempt) {
            QFile::remove(file);
            QProcess process;
            isStopped =
                stopWhenThere(process, {"backup", file, "--store", fixture.storeName()}, file + ".partial", SIGINT);
        }
        QVERIFY(isStopped);
        QCOMPARE(QFileInfo(file).dir().entryList({"backup.db*"}, QDir::Files), QStringList());
    }
};

QTEST_GUILESS_MAIN(AdminBackupTest)
#include "tst_admin_backup.moc"
