// SPDX-License-Identifier: Apache-2.0
#include "service/admin/AdminFixture.h"

#include "service/admin/PartialFile.h"
#include "service/engine/Refusal.h"
#include "service/store/Journal.h"
#include "service/store/Query.h"
#include "service/store/Schema.h"
#include "support/TestProgram.h"

#include <QDir>
#include <QFileInfo>

#include <atomic>
#include <thread>

#include <csignal>

using namespace testservice;

namespace
{

std::int64_t numberIn(const QString& file, const QString& sql)
{
    return support::RealService(file).number(sql);
}

/// Fills the audit with so many megabytes.
void makeLarge(AdminFixture& fixture, int megabytes)
{
    service::Connection& connection = fixture.store().connection();
    service::Transaction transaction(connection, service::Transaction::EKind::Write);
    const service::ServerData data{connection, fixture.server(0)};
    service::AuditRow row;
    row.login = "filler";
    bson::BSONObjBuilder body;
    body.append("text", std::string(1024 * 1024, 'x'));
    row.after = body.obj();
    for (int i = 0; i < megabytes; ++i) {
        service::insertAudit(data, row);
    }
    transaction.commit();
}

/// Runs the tool and stops it by a signal as soon as something is beside the file. False when it was done before
/// anybody looked.
bool stopWhenThere(QProcess& process, const QStringList& arguments, const QString& file, int signal)
{
    process.start(adminProgram(), arguments);
    while (!process.waitForFinished(1)) {
        if (beside(file).isEmpty()) {
            continue;
        }
        ::kill(static_cast<pid_t>(process.processId()), signal);
        process.waitForFinished(30000);
        break;
    }
    return process.exitStatus() == QProcess::CrashExit || process.exitCode() == 128 + signal;
}

constexpr int Attempts = 10; ///< to stop a program in time, on a machine that has much to do

} // namespace

class AdminBackupTest : public AdminTest
{
    Q_OBJECT

private slots:
    void backupHoldsEverythingInOneSoundFile()
    {
        m_fixture->storedGroup("甲组");
        const QString file = m_fixture->path("backup.db");
        const Outcome outcome = m_fixture->run(QStringList{"backup", file, "--json"});
        COMPARE_EXIT(outcome, 0);
        const QJsonObject json = outcome.json().object();
        QCOMPARE(json.value("verified"), QJsonValue(true));
        QCOMPARE(json.value("bytes"), QJsonValue(static_cast<int>(QFileInfo(file).size())));
        QCOMPARE(json.value("servers"), QJsonValue(2));
        QCOMPARE(json.value("groups"), QJsonValue(1));
        QCOMPARE(json.value("accounts"), QJsonValue(16));
        QCOMPARE(json.value("schemaVersion"), QJsonValue(service::schemaMigrations().back().number));
        QCOMPARE(QFileInfo(file).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
        QCOMPARE(beside(file), QStringList());
        COMPARE_EXIT(runAdmin({"verify", file}), 0);
        const service::StorePtr copy = support::openStore(file);
        QVERIFY(copy);
        QCOMPARE(contentOf(*copy), m_fixture->content());
    }

    void backupReplacesNothingUnlessForced()
    {
        const QString file = m_fixture->path("backup.db");
        writeFile(file, "mine");
        const Outcome refused = m_fixture->run(QStringList{"backup", file});
        COMPARE_EXIT(refused, 1);
        QCOMPARE(readFile(file), QByteArray("mine"));
        COMPARE_EXIT(m_fixture->run(QStringList{"backup", file, "--force"}), 0);
        COMPARE_EXIT(runAdmin({"verify", file}), 0);
    }

    void fileThatCannotBeWrittenIsNamed_data()
    {
        const support::DataRows<QString> row("folder");
        row("folder that is missing", "missing");
        row("folder that is a file", "file");
    }
    void fileThatCannotBeWrittenIsNamed()
    {
        QFETCH(QString, folder);
        writeFile(m_fixture->path("file"), "x");
        const QString target = m_fixture->path(qPrintable(folder + "/target"));
        for (const QStringList& command :
             {QStringList{"backup", target}, {"export", "--server", "E", "--accounts", target}}) {
            const Outcome outcome = m_fixture->run(command);
            COMPARE_EXIT(outcome, 1);
            QVERIFY2(outcome.errors.startsWith(target + "："), qPrintable(outcome.errors));
        }
        QCOMPARE(readFile(m_fixture->path("file")), QByteArray("x"));
    }

    void backupIsReportedUnderTheNameOfItsFile()
    {
        const QString file = m_fixture->path("100%3.db");
        COMPARE_OUTPUT(m_fixture->run(QStringList{"backup", file}), 0,
                       file + QString("（%1字节）").arg(QFileInfo(file).size()));
    }

    void whatIsThereAlreadyIsLeftAlone_data()
    {
        const support::DataRows<QString, bool> row("there", "isRefused");
        for (const char* ending : {".partial", ".partial-wal", ".partial-journal", ".tmp"}) {
            row(ending, QString("backup.db") + ending, false);
        }
        for (const char* ending : {"", "-wal", "-shm", "-journal"}) {
            row(QString("itself") + ending, QString("backup.db") + ending, true);
        }
    }
    void whatIsThereAlreadyIsLeftAlone()
    {
        QFETCH(QString, there);
        QFETCH(bool, isRefused);
        const QString file = m_fixture->path("backup.db");
        const QString other = QFileInfo(file).dir().filePath(there);
        writeFile(other, "mine");
        const Outcome outcome = m_fixture->run(QStringList{"backup", file});
        COMPARE_EXIT(outcome, isRefused ? 1 : 0);
        QVERIFY(!isRefused || outcome.errors.contains("文件已存在：" + other));
        QCOMPARE(readFile(other), QByteArray("mine"));
        QCOMPARE(beside(file).filter("partial-"), QStringList{there}.filter("partial-"));
    }

    void onlyAPlainFileThatIsNotOfTheDatabaseIsReplaced()
    {
        m_fixture->storedGroup("甲组");
        const QString elsewhere = m_fixture->path("elsewhere");
        writeFile(elsewhere, "mine");
        const QString link = m_fixture->path("link.db");
        QVERIFY(QFile::link(elsewhere, link));
        const QString dangling = m_fixture->path("dangling.db");
        QVERIFY(QFile::link(m_fixture->path("nowhere"), dangling));
        const QString folder = m_fixture->path("folder.db");
        QVERIFY(QDir().mkpath(folder));
        const QStringList before = m_fixture->content();
        for (const QString& file : {link, dangling, folder, m_fixture->storeName(), m_fixture->storeName() + "-wal"}) {
            for (const QStringList& force : {QStringList(), QStringList{"--force"}}) {
                COMPARE_EXIT(m_fixture->run(QStringList{"backup", file} + force), 1);
                COMPARE_EXIT(m_fixture->run(QStringList{"export", "--server", "E", "--institutions", file} + force), 1);
            }
        }
        QCOMPARE(readFile(elsewhere), QByteArray("mine"));
        QVERIFY(QFileInfo(link).isSymLink() && QFileInfo(dangling).isSymLink() && QFileInfo(folder).isDir());
        QCOMPARE(m_fixture->content(), before);
        COMPARE_EXIT(m_fixture->run("check"), 0);
    }

    void fileThatAppearsMeanwhileIsLeftAlone()
    {
        const QTemporaryDir directory(directoryTemplate());
        const QString file = directory.filePath("x");
        {
            service::PartialFile partial(file, false);
            partial.write("ours");
            writeFile(file, "mine");
            QVERIFY_EXCEPTION_THROWN(partial.commit(), service::Refusal);
        }
        QCOMPARE(readFile(file), QByteArray("mine"));
        QCOMPARE(beside(file), QStringList());
        QVERIFY(QFile::remove(file));
        QVERIFY(QFile::link(directory.filePath("nowhere"), file));
        {
            service::PartialFile partial(file, false);
            partial.write("ours");
            QVERIFY_EXCEPTION_THROWN(partial.commit(), service::Refusal);
        }
        QVERIFY(QFileInfo(file).isSymLink());
    }

    void backupUnderLoadShowsOneMoment()
    {
        const auto session = m_fixture->admin();
        makeLarge(*m_fixture, 20);
        std::atomic<bool> isOver = false;
        std::atomic<int> added = 0;
        std::thread writer([&] {
            while (!isOver) {
                const auto record = group("组" + std::to_string(added + 1), First, {future("8001"), future("8002")});
                if (operate(m_fixture->east(), session, EZvDataOperation::Add, record).error.isSuccess()) {
                    ++added;
                }
            }
        });
        QTRY_VERIFY(added > 5);
        const int before = added;
        const QString file = m_fixture->path("backup.db");
        const Outcome outcome = m_fixture->run(QStringList{"backup", file});
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

    void restoreBringsTheBackupBackAndRemembersIt()
    {
        m_fixture->storedGroup("甲组");
        const QString target = m_fixture->closedCopy("target.db");
        const QString backup = m_fixture->path("backup.db");
        COMPARE_EXIT(m_fixture->run(QStringList{"backup", backup}), 0);
        support::openStore(target)->connection().exec("UPDATE account_group SET name = 'geändert'");
        const Outcome outcome = runAdmin({"restore", backup, "--store", target, "--as", "boss", "--json"});
        COMPARE_EXIT(outcome, 0);
        QCOMPARE(outcome.json().object().value("groups"), QJsonValue(1));
        QCOMPARE(numberIn(target, "SELECT count(*) FROM account_group WHERE name = '甲组'"), 1);
        QCOMPARE(
            numberIn(target, "SELECT count(*) FROM audit WHERE login LIKE '% as boss' AND record_key = 'database'"), 2);
        QStringList restored = contentOf(*support::openStore(target));
        // Every group and configuration begins anew.
        const auto isNew = [](const QString& row) {
            return row.contains(" as boss|") || row.startsWith("sqlite_sequence") || row.startsWith("epoch|") ||
                   row.startsWith("account_group|") || row.startsWith("group_risk_config|");
        };
        QStringList original = m_fixture->content();
        for (QStringList* rows : {&restored, &original}) {
            rows->erase(std::remove_if(rows->begin(), rows->end(), isNew), rows->end());
        }
        QCOMPARE(restored, original);
    }

    void restoreMakesADatabaseThatIsMissing()
    {
        m_fixture->storedGroup("甲组");
        const QString backup = m_fixture->closedCopy("backup.db");
        const QString target = m_fixture->path("new.db");
        writeFile(target + "-wal", "left behind by a database that is gone");
        COMPARE_EXIT(runAdmin({"restore", backup, "--store", target}), 0);
        QCOMPARE(numberIn(target, "SELECT count(*) FROM account_group"), 1);
        QVERIFY(support::openStore(target)->checkIntegrity().isSuccess());
        const QDir folder = QFileInfo(target).dir();
        const QStringList aside = folder.entryList({"new.db.replaced-*-wal"});
        QCOMPARE(aside.size(), 1);
        QCOMPARE(readFile(folder.filePath(aside.first())), QByteArray("left behind by a database that is gone"));
    }

    void databaseInUseIsRestoredOnlyByForce()
    {
        const QString backup = m_fixture->closedCopy("backup.db");
        m_fixture->storedGroup("später");
        const QStringList before = m_fixture->content();
        // The fixture's own connection is idle, and yet it has the database open.
        COMPARE_ERROR(m_fixture->run(QStringList{"restore", backup}), 1, "正被其他程序使用");
        QCOMPARE(m_fixture->content(), before);

        COMPARE_EXIT(m_fixture->run(QStringList{"restore", backup, "--force", "--as", "boss"}), 0);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group"), 0);
        QVERIFY(m_fixture->store().checkIntegrity().isSuccess());
        QVERIFY(m_fixture->storedGroup("neu"));
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group"), 1);
    }

    void databaseThatSomebodyWritesIsNotRestored()
    {
        const QString backup = m_fixture->closedCopy("backup.db");
        const QStringList before = m_fixture->content();
        {
            service::Transaction lock(m_fixture->store().connection(), service::Transaction::EKind::Write);
            COMPARE_EXIT(m_fixture->run(QStringList{"restore", backup}), 1);
        }
        QCOMPARE(m_fixture->content(), before);
    }

    void brokenDatabaseIsKeptAsideWhenItIsReplaced()
    {
        const QString backup = m_fixture->closedCopy("backup.db");
        const QString target = m_fixture->path("target.db");
        writeFile(target, QByteArray(8192, 'x'));
        COMPARE_ERROR(runAdmin({"restore", backup, "--store", target}), 1, "不是可用的数据库");
        QCOMPARE(readFile(target), QByteArray(8192, 'x'));
        COMPARE_EXIT(runAdmin({"restore", backup, "--store", target, "--force"}), 0);
        QVERIFY(support::openStore(target));
        const QStringList aside = QFileInfo(target).dir().entryList({"target.db.replaced-*"}, QDir::Files);
        QCOMPARE(aside.size(), 1);
        QCOMPARE(readFile(QFileInfo(target).dir().filePath(aside.first())), QByteArray(8192, 'x'));
    }

    void databaseIsNotRestoredFromItself()
    {
        const QString file = m_fixture->closedCopy("backup.db");
        COMPARE_ERROR(runAdmin({"restore", file, "--store", file, "--force"}), 1, "同一个文件");
        COMPARE_EXIT(runAdmin({"verify", file}), 0);
    }

    void databaseOfAnOlderVersionCanBeBackedUpAndRestored()
    {
        const QTemporaryDir directory(directoryTemplate());
        const QString old = directory.filePath("old.db");
        {
            service::Connection connection(service::StoreOptions::forCreating(old), "old");
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
        m_fixture->storedGroup("alt");
        const QString old = m_fixture->closedCopy("old.db");
        makeLarge(*m_fixture, 40);
        m_fixture->exec("UPDATE account_group SET name = 'neu'");
        const QString backup = m_fixture->closedCopy("backup.db");
        const QString target = m_fixture->path("target.db");
        bool isOld = false;
        for (int attempt = 0; attempt < Attempts && !isOld; ++attempt) {
            QFile::remove(target);
            QVERIFY(QFile::copy(old, target));
            QProcess process;
            // The journal is there as long as the old content can come back.
            stopWhenThere(process, {"restore", backup, "--store", target}, target, SIGKILL);
            QVERIFY(support::openStore(target)->checkIntegrity().isSuccess());
            isOld = numberIn(target, "SELECT count(*) FROM account_group WHERE name = 'alt'") == 1;
            const std::int64_t rows = numberIn(target, "SELECT count(*) FROM audit");
            QVERIFY2(isOld ? rows == 0 : rows >= 40, qPrintable(QString::number(rows)));
            QCOMPARE(numberIn(target, "SELECT count(*) FROM epoch"), isOld ? 0 : 2);
        }
        QVERIFY(isOld);
        COMPARE_EXIT(runAdmin({"restore", backup, "--store", target}), 0);
        QCOMPARE(numberIn(target, "SELECT count(*) FROM account_group WHERE name = 'neu'"), 1);
    }

    void interruptedBackupLeavesNothing()
    {
        makeLarge(*m_fixture, 60);
        const QString file = m_fixture->path("backup.db");
        bool isStopped = false;
        for (int attempt = 0; attempt < Attempts && !isStopped; ++attempt) {
            QFile::remove(file);
            QProcess process;
            isStopped = stopWhenThere(process, {"backup", file, "--store", m_fixture->storeName()}, file, SIGINT);
        }
        QVERIFY(isStopped);
        QVERIFY(!QFile::exists(file));
        QCOMPARE(beside(file), QStringList());
    }
};

TEST_WITHOUT_WIDGETS(AdminBackupTest)
#include "tst_admin_backup.moc"
