// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"
#include "support/TestProgram.h"

#include <QFile>

#include <thread>

using namespace testservice;
using service::Store;
using service::StoreOptions;
using service::StorePtr;

/// What only a database in a file can suffer.
class SqliteFileTest : public QObject
{
    Q_OBJECT

private slots:
    void foreignFileIsRefusedAndLeftAlone()
    {
        const QTemporaryDir directory(directoryTemplate());
        StoreOptions options;
        utils::NVError error;
        options.location = directory.filePath("text.db");
        QFile text(options.location);
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write(QByteArray(20000, 'x'));
        text.close();
        QVERIFY(!Store::open(options, error));
        QCOMPARE(static_cast<int>(error.code()), static_cast<int>(EErrorCode::StorageFailure));
        QVERIFY(text.open(QIODevice::ReadOnly));
        QCOMPARE(text.readAll(), QByteArray(20000, 'x'));

        options = StoreOptions::forCreating(directory.filePath("no/such/folder/x.db"));
        QVERIFY(!Store::open(options, error));
        QVERIFY(error.errorMsg().find("无法打开") != std::string::npos);
    }

    void missingFileIsCreatedOnlyWhereThatIsAskedFor()
    {
        const QTemporaryDir directory(directoryTemplate());
        const QString location = directory.filePath("mistyped.db");
        StoreOptions options;
        options.location = location;
        utils::NVError error;
        QVERIFY(!Store::open(options, error));
        QCOMPARE(error.errorMsg(), "数据库文件不存在（" + location.toStdString() + "）");
        QVERIFY(!QFile::exists(location));

        const StorePtr store = Store::open(StoreOptions::forCreating(location), error);
        QVERIFY2(store, error.errorMsg().c_str());
        // A thread that connects later finds the file gone and does not make an empty one.
        QVERIFY(QFile::remove(location));
        std::string problem;
        std::thread([&] {
            try {
                store->connection();
            } catch (const service::StoreError& failure) {
                problem = failure.what();
            }
        }).join();
        QCOMPARE(problem, "数据库文件不存在（" + location.toStdString() + "）");
        QVERIFY(!QFile::exists(location));
    }

    void aFileThatIsDeletedOrReplacedWhileOpenIsSaidAtTheNextOperation_data()
    {
        const support::DataRows<bool> row("isReplaced");
        row("deleted", false);
        row("replaced", true);
    }

    void aFileThatIsDeletedOrReplacedWhileOpenIsSaidAtTheNextOperation()
    {
        QFETCH(bool, isReplaced);
        ServiceFixture fixture;
        fixture.storedGroup("先");
        const auto session = fixture.admin();
        const QString file = fixture.location();
        QVERIFY(QFile::rename(file, file + ".moved"));
        if (isReplaced) {
            QVERIFY(QFile::copy(file + ".moved", file));
        }
        const std::string text = "数据库文件已被删除或替换，请恢复文件并重新启动";
        const auto add = group("后", First, {future("8001")});
        const service::Reply added = operate(fixture.east(), session, EZvDataOperation::Add, add, "op");
        QCOMPARE(added.error.errorMsg(), text);
        COMPARE_CODE(added, EErrorCode::StorageFailure);
        QCOMPARE(query(fixture.east(), session, nvservice::DataType::AccountGroup).error.errorMsg(), text);

        QFile::remove(file);
        QVERIFY(QFile::rename(file + ".moved", file));
        QCOMPARE(groupNames(query(fixture.east(), session, nvservice::DataType::AccountGroup)),
                 (std::vector<std::string>{"先"}));
    }

    void failureOfABusyDatabaseMayPass_data()
    {
        const support::DataRows<QString, bool> row("code", "mayPass");
        row("busy", "5", true);
        row("busy, extended", "517", true);
        row("locked", "6", true);
        row("input or output", "10", false);
        row("corrupt", "11", false);
        row("full disk", "13", false);
        row("constraint", "19", false);
        row("no code", "", false);
    }

    void failureOfABusyDatabaseMayPass()
    {
        QFETCH(QString, code);
        const QSqlError error(QString(), "text", QSqlError::StatementError, code);
        QTEST(service::StoreError::fromSqlite(error).mayPass(), "mayPass");
    }

    void newDatabaseIsReadableByItsOwnerOnly()
    {
        const QTemporaryDir directory(directoryTemplate());
        const QString location = directory.filePath("new.db");
        utils::NVError error;
        const StorePtr store = Store::open(StoreOptions::forCreating(location), error);
        QVERIFY2(store, error.errorMsg().c_str());
        const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        for (const char* suffix : {"", "-wal", "-shm"}) {
            const QFileInfo file(location + suffix);
            QVERIFY2(file.exists(), suffix);
            QVERIFY2((file.permissions() & others) == 0, suffix);
        }
    }

    void fullDiskRefusesTheChangeAndKeepsTheRest()
    {
        StoreOptions options;
        options.maxPages = 110;
        ServiceFixture fixture(options);
        const auto session = fixture.admin();
        int stored = 0;
        service::Reply reply;
        while (stored < 10000) {
            const auto add = group("组" + std::to_string(stored), First, {future("8001"), future("8002")});
            const QStringList before = stored % 50 == 0 ? fixture.content() : QStringList();
            reply = operate(fixture.east(), session, EZvDataOperation::Add, add, "op" + std::to_string(stored));
            if (!reply.error.isSuccess()) {
                break;
            }
            ++stored;
        }
        QVERIFY(stored > 5 && stored < 10000);
        COMPARE_CODE(reply, EErrorCode::StorageFailure);
        QVERIFY2(reply.error.errorMsg().find("空间不足") != std::string::npos, reply.error.errorMsg().c_str());
        QCOMPARE(fixture.number("SELECT count(*) FROM account_group"), stored);
        QCOMPARE(fixture.number("SELECT count(*) FROM account_group_member"), 2 * stored);
        QCOMPARE(fixture.number("SELECT count(*) FROM account_group_history"), stored);
        QCOMPARE(fixture.number("SELECT count(*) FROM audit"), stored);
        QCOMPARE(fixture.number("SELECT count(*) FROM operation_log"), stored);
        QVERIFY(fixture.store().checkIntegrity().isSuccess());
        QCOMPARE(query(fixture.east(), session, nvservice::DataType::AccountGroup).totalCount, stored);
    }

    void brokenPagesAreFoundAndReported()
    {
        QString file;
        const QTemporaryDir directory(directoryTemplate());
        {
            ServiceFixture fixture;
            for (int i = 0; i < 50; ++i) {
                fixture.storedGroup("组" + std::to_string(i));
            }
            fixture.exec("PRAGMA wal_checkpoint(TRUNCATE)");
            file = directory.filePath("broken.db");
            QVERIFY(QFile::copy(fixture.location(), file));
        }
        QFile broken(file);
        QVERIFY(broken.open(QIODevice::ReadWrite));
        for (qint64 page = 8; page * 4096 < broken.size(); ++page) {
            broken.seek(page * 4096);
            broken.write(QByteArray(200, '\xA5'));
        }
        broken.close();
        utils::NVError error;
        StoreOptions options;
        options.location = file;
        const StorePtr store = Store::open(options, error);
        const utils::NVError found = store ? store->checkIntegrity() : error;
        QCOMPARE(static_cast<int>(found.code()), static_cast<int>(EErrorCode::StorageFailure));
        QVERIFY2(found.errorMsg().find("损坏") != std::string::npos, found.errorMsg().c_str());
    }
};

TEST_WITHOUT_WIDGETS(SqliteFileTest)
#include "tst_sqlite_file.moc"
