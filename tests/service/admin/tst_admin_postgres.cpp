// SPDX-License-Identifier: Apache-2.0
#include "service/admin/AdminFixture.h"

#include "service/admin/Backup.h"
#include "service/engine/Refusal.h"
#include "support/TestProgram.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

using namespace testservice;

/// Backups of PostgreSQL databases, which its own programs make.
class AdminPostgresTest : public AdminTest
{
    Q_OBJECT

    /// Runs the tool with other environment variables.
    static Outcome runIn(const QStringList& variables, const QStringList& arguments)
    {
        QProcess process;
        QStringList environment = QProcess::systemEnvironment();
        process.setEnvironment(environment + variables);
        process.start(adminProgram(), arguments);
        if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit) {
            return {};
        }
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

private slots:
    void initTestCase() { QVERIFY(TestDatabase::isPostgres()); }

    void backupIsVerifiedAndRestoredElsewhere()
    {
        m_fixture->storedGroup("甲组");
        const QString file = m_fixture->path("backup.dump");
        const Outcome backup = m_fixture->run(QStringList{"backup", file, "--json"});
        COMPARE_EXIT(backup, 0);
        QCOMPARE(backup.json().object().value("bytes"), QJsonValue(static_cast<int>(QFileInfo(file).size())));
        QCOMPARE(beside(file), QStringList());
        COMPARE_EXIT(runAdmin({"verify", file}), 0);

        const TestDatabase target;
        const Outcome restored = runAdmin({"restore", file, "--store", target.location(), "--as", "boss", "--json"});
        COMPARE_EXIT(restored, 0);
        QCOMPARE(restored.json().object().value("groups"), QJsonValue(1));
        QCOMPARE(restored.json().object().value("accounts"), QJsonValue(16));
        const Outcome list = runAdmin({"group", "list", "--server", "E", "--json", "--store", target.location()});
        QCOMPARE(list.item("id", 1).value("name"), QJsonValue("甲组"));
        const Outcome audit = runAdmin({"audit", "--server", "E", "--json", "--store", target.location()});
        QCOMPARE(audit.json().array().at(0).toObject().value("key"), QJsonValue("database"));
        QCOMPARE(audit.json().array().at(0).toObject().value("login"), QJsonValue(toolUserAsBoss()));
        // It can be written, with numbers that go on where those of the backup end.
        COMPARE_EXIT(runAdmin({"user", "add", "li", "--server", "E", "--store", target.location()}, "geheim-01\n"), 0);
    }

    void checkReadsTheWholeDatabase()
    {
        m_fixture->storedGroup("甲组");
        const Outcome clean = m_fixture->run("check --json");
        COMPARE_EXIT(clean, 0);
        QCOMPARE(clean.json().object().value("integrity"), QJsonValue(""));
        m_fixture->exec("UPDATE account SET state_code = 5 WHERE account_id = '8001' AND server_id = 1");
        const Outcome found = m_fixture->run("check --json");
        COMPARE_EXIT(found, 4);
        QCOMPARE(found.json().object().value("findings").toArray().size(), 1);
    }

    void databaseInUseIsRestoredOnlyByForce()
    {
        const QString file = m_fixture->path("backup.dump");
        COMPARE_EXIT(m_fixture->run(QStringList{"backup", file}), 0);
        m_fixture->storedGroup("später");
        COMPARE_ERROR(m_fixture->run(QStringList{"restore", file}), 1, "正被其他程序使用");
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group"), 1);
        COMPARE_EXIT(m_fixture->run(QStringList{"restore", file, "--force"}), 0);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group"), 0);
    }

    void passwordIsNotInTheListOfProcesses()
    {
        // Stands for pg_dump, tells how it was called and calls it.
        const QString folder = m_fixture->path("bin");
        QVERIFY(QDir().mkpath(folder));
        writeFile(folder + "/pg_dump", "#!/bin/sh\necho \"$PGPASSWORD $*\" > \"$0.called\"\nexec " +
                                           QStandardPaths::findExecutable("pg_dump").toUtf8() + " \"$@\"\n");
        QVERIFY(QFile::setPermissions(folder + "/pg_dump", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        const QString store = m_fixture->storeName().replace("qav@", "qav:ge%40heim@");
        const Outcome outcome = runIn({"PATH=" + folder + ':' + qEnvironmentVariable("PATH")},
                                      {"backup", m_fixture->path("backup.dump"), "--store", store});
        COMPARE_EXIT(outcome, 0);
        const QString called = QString::fromUtf8(readFile(folder + "/pg_dump.called"));
        QVERIFY2(called.startsWith("ge@heim --format=custom"), qPrintable(called));
        QCOMPARE(called.count("heim"), 1);
        QVERIFY(called.contains("postgresql://qav@"));
    }

    void missingProgramIsNamedWithWhatToRun()
    {
        const QString file = m_fixture->path("backup.dump");
        const Outcome outcome =
            runIn({"PATH=" + m_fixture->path("nothing")}, {"backup", file, "--store", m_fixture->storeName()});
        COMPARE_ERROR(outcome, 1, "没有找到 pg_dump");
        QVERIFY(outcome.errors.contains("pg_dump --format=custom"));
        QVERIFY(!QFile::exists(file));
    }

    void everyChangedByteIsFound()
    {
        const QString name = m_fixture->path("backup.dump");
        COMPARE_EXIT(m_fixture->run(QStringList{"backup", name}), 0);
        const QByteArray whole = readFile(name);
        int tried = 0;
        for (int at = 0; at < whole.size(); at += at < 64 || at > whole.size() - 256 ? 1 : 101, ++tried) {
            QByteArray changed = whole;
            changed[at] = static_cast<char>(changed.at(at) ^ (1 << (tried % 8)));
            writeFile(name, changed);
            try {
                service::verifyBackup(name);
                QFAIL(qPrintable(QString("byte %1 of %2").arg(at).arg(whole.size())));
            } catch (const service::StoreError&) {
            } catch (const service::Refusal&) {
            }
        }
        QVERIFY(tried > 400);
        writeFile(name, whole);
        QVERIFY(service::verifyBackup(name).hasSeal);
    }

    void whatIsNotOfTheSchemaIsFound_data()
    {
        const support::DataRows<QString, QString> row("statement", "named");
        row("trigger",
            "CREATE FUNCTION f() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NULL; END'; "
            "CREATE TRIGGER bad AFTER INSERT ON audit FOR EACH ROW EXECUTE FUNCTION f()",
            "TRIGGER public audit bad");
        row("table", "CREATE TABLE bad (x BIGINT)", "TABLE public bad");
        row("table with a known beginning", "CREATE TABLE \"audit x\" (x BIGINT)", "TABLE public audit x");
        row("view", "CREATE VIEW bad AS SELECT 1", "VIEW public bad");
        row("index", "CREATE INDEX bad ON audit (login)", "INDEX public bad");
        row("rule", "CREATE RULE bad AS ON INSERT TO audit DO INSTEAD NOTHING", "RULE public audit bad");
        row("rights of others", "GRANT SELECT ON audit TO PUBLIC", "");
    }
    void whatIsNotOfTheSchemaIsFound()
    {
        QFETCH(QString, statement);
        QFETCH(QString, named);
        m_fixture->exec(statement);
        const QString file = m_fixture->path("backup.dump");
        const Outcome outcome = m_fixture->run(QStringList{"backup", file});
        COMPARE_EXIT(outcome, named.isEmpty() ? 0 : 3);
        QVERIFY2(named.isEmpty() || outcome.errors.contains("结构与本程序的不同：" + named),
                 qPrintable(outcome.errors));
        QCOMPARE(QFile::exists(file), named.isEmpty());
    }

    void brokenAndForeignDumpsAreNoBackups()
    {
        const QString file = m_fixture->path("backup.dump");
        COMPARE_EXIT(m_fixture->run(QStringList{"backup", file}), 0);
        const QByteArray whole = readFile(file);
        writeFile(file, whole.left(whole.size() / 2));
        COMPARE_ERROR(runAdmin({"verify", file}), 1, "pg_restore 失败");

        const TestDatabase other;
        service::StoreOptions options;
        options.location = other.location();
        service::Connection(options, "other").exec("CREATE TABLE theirs (x INTEGER)");
        QProcess dump;
        dump.start("pg_dump", {"--format=custom", "--file", file, "--table=theirs", "--dbname", other.location()});
        QVERIFY(dump.waitForFinished(60000));
        QCOMPARE(dump.exitCode(), 0);
        COMPARE_ERROR(m_fixture->run(QStringList{"restore", file, "--force"}), 1, "不是数据服务的备份");

        writeFile(file, whole);
        COMPARE_ERROR(runAdmin({"restore", file, "--store", other.location(), "--force"}), 3, "属于其他程序");
        COMPARE_ERROR(runAdmin({"restore", file, "--store", m_fixture->path("sqlite.db")}), 1, "种类不同");
    }
};

TEST_WITHOUT_WIDGETS(AdminPostgresTest)
#include "tst_admin_postgres.moc"
