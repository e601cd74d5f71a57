// SPDX-License-Identifier: Apache-2.0
#include "service/admin/AdminFixture.h"

#include "service/admin/Backup.h"
#include "service/engine/Refusal.h"
#include "support/TestProgram.h"

using namespace testservice;

/// What is no backup, or not as it was made.
class AdminVerifyTest : public AdminTest
{
    Q_OBJECT

    static void damage(const QString& name)
    {
        QFile file(name);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.size() > 10 * 4096);
        file.seek(5 * 4096);
        file.write(QByteArray(4096 * 5, '\x5a'));
    }

private slots:
    void damagedFileIsNoBackup_data()
    {
        const support::DataRows<QString, int, QString> row("kind", "exitCode", "reason");
        row("damaged pages", "damaged", 3, "损坏");
        row("cut", "cut", 3, "损坏");
        row("text", "text", 1, "该文件不是备份");
        row("foreign database", "foreign", 3, "属于其他程序");
        row("newer version", "newer", 3, "请升级程序");
        row("missing", "missing", 1, "无法读取文件");
    }
    void damagedFileIsNoBackup()
    {
        QFETCH(QString, kind);
        QFETCH(int, exitCode);
        QFETCH(QString, reason);
        if (kind == "newer") {
            m_fixture->exec("INSERT INTO schema_version VALUES (999, 0)");
        }
        const QString file = m_fixture->closedCopy("backup.db");
        if (kind == "damaged") {
            damage(file);
        }
        if (kind == "cut") {
            QVERIFY(QFile::resize(file, QFileInfo(file).size() / 2));
        }
        if (kind == "text") {
            writeFile(file, "SQLite format? no, only text");
        }
        if (kind == "foreign") {
            QFile::remove(file);
            service::Connection(service::StoreOptions::forCreating(file), "foreign")
                .exec("CREATE TABLE theirs (x INTEGER)");
        }
        if (kind == "missing") {
            QFile::remove(file);
        }
        const QString target = m_fixture->path("target.db");
        for (const QStringList& command :
             {QStringList{"verify", file}, QStringList{"restore", file, "--store", target}}) {
            COMPARE_ERROR(runAdmin(command), exitCode, reason);
        }
        QVERIFY(!QFile::exists(target));
        QCOMPARE(beside(target), QStringList());
    }

    void everyChangedByteIsFound()
    {
        m_fixture->storedGroup("甲组");
        const QString name = m_fixture->path("backup.db");
        COMPARE_EXIT(m_fixture->run(QStringList{"backup", name}), 0);
        COMPARE_EXIT(runAdmin({"verify", name}), 0);
        const QByteArray whole = readFile(name);
        QFile file(name);
        QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
        int tried = 0;
        // Every byte of the first page and of the end, some of all others, each in another bit.
        for (int at = 0; at < whole.size(); at += at < 4096 || at > whole.size() - 256 ? 1 : 97, ++tried) {
            const QByteArray changed(1, static_cast<char>(whole.at(at) ^ (1 << (tried % 8))));
            QVERIFY(file.seek(at) && file.write(changed) == 1);
            try {
                service::verifyBackup(name);
                QFAIL(qPrintable(QString("byte %1 of %2").arg(at).arg(whole.size())));
            } catch (const service::StoreError&) {
            } catch (const service::Refusal&) {
            }
            QVERIFY(file.seek(at) && file.write(whole.mid(at, 1)) == 1);
        }
        QVERIFY(tried > 5000);
        file.seek(whole.size() / 2);
        file.write("other");
        COMPARE_ERROR(runAdmin({"verify", name}), 3, "备份已损坏：内容与其校验和不符");
    }

    void copyWithoutAChecksumIsGoodAndSaysSo()
    {
        const QString file = m_fixture->closedCopy("copy.db");
        COMPARE_OUTPUT(runAdmin({"verify", file}), 0, "没有校验和");
        QCOMPARE(runAdmin({"verify", file, "--json"}).json().object().value("checksum"), QJsonValue(false));
        const QString backup = m_fixture->path("backup.db");
        const Outcome sealed = m_fixture->run(QStringList{"backup", backup, "--json"});
        QCOMPARE(sealed.json().object().value("checksum"), QJsonValue(true));
        const Outcome verified = runAdmin({"verify", backup});
        COMPARE_EXIT(verified, 0);
        QVERIFY(!verified.output.contains("校验和"));
    }

    void changesBesideABackupAreRefused()
    {
        const QString file = m_fixture->path("backup.db");
        COMPARE_EXIT(m_fixture->run(QStringList{"backup", file}), 0);
        writeFile(file + "-wal", "somebody's");
        COMPARE_EXIT(runAdmin({"verify", file}), 1);
        COMPARE_EXIT(runAdmin({"restore", file, "--store", m_fixture->path("new.db")}), 1);
        QCOMPARE(readFile(file + "-wal"), QByteArray("somebody's"));
    }

    void whatIsNotOfTheSchemaIsFound_data()
    {
        const support::DataRows<QString, QString> row("statement", "named");
        row("trigger", "CREATE TRIGGER bad AFTER INSERT ON audit BEGIN DELETE FROM audit; END", "trigger bad");
        row("table", "CREATE TABLE bad (x)", "table bad");
        row("view", "CREATE VIEW bad AS SELECT 1", "view bad");
        row("index", "CREATE INDEX bad ON audit (login)", "index bad");
        row("missing index", "DROP INDEX audit_by_time", "index audit_by_time");
        row("other index", "DROP INDEX audit_by_time; CREATE INDEX audit_by_time ON audit (at)", "index audit_by_time");
        row("column", "ALTER TABLE audit ADD COLUMN bad INTEGER", "table audit");
        row("planner", "ANALYZE", "");
    }
    void whatIsNotOfTheSchemaIsFound()
    {
        QFETCH(QString, statement);
        QFETCH(QString, named);
        for (const QString& part : statement.split("; C")) {
            m_fixture->exec(part.startsWith("REATE") ? "C" + part : part);
        }
        const QString backup = m_fixture->path("backup.db");
        const QString copy = m_fixture->closedCopy("copy.db");
        for (const Outcome& outcome : {runAdmin({"verify", copy}), m_fixture->run(QStringList{"backup", backup}),
                                       runAdmin({"restore", copy, "--store", m_fixture->path("new.db")})}) {
            COMPARE_EXIT(outcome, named.isEmpty() ? 0 : 3);
            QVERIFY2(named.isEmpty() || outcome.errors.contains("结构与本程序的不同：" + named),
                     qPrintable(outcome.errors));
        }
        QCOMPARE(QFile::exists(backup), named.isEmpty());
    }
};

TEST_WITHOUT_WIDGETS(AdminVerifyTest)
#include "tst_admin_verify.moc"
