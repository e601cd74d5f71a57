// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"

#include "service/store/Journal.h"
#include "service/store/Query.h"
#include "service/store/Schema.h"
#include "support/TestProgram.h"

using namespace testservice;
using service::Connection;
using service::Query;
using service::Store;
using service::StoreError;
using service::StoreOptions;
using service::StorePtr;

class StoreTest : public QObject
{
    Q_OBJECT

    static StorePtr openAt(const QString& location, utils::NVError& error)
    {
        StoreOptions options;
        options.location = location;
        return Store::open(options, error);
    }

    static int newestVersion() { return service::schemaMigrations().back().number; }

    static int versionOf(const QString& location)
    {
        StoreOptions options;
        options.location = location;
        Connection connection(options, "version");
        return service::schemaVersion(connection);
    }

private slots:
    void emptyDatabaseGetsTheNewestSchemaAndKeepsItWhenOpenedAgain()
    {
        const TestDatabase database;
        utils::NVError error;
        for (int i = 0; i < 2; ++i) {
            const StorePtr store = openAt(database.location(), error);
            QVERIFY2(store, error.errorMsg().c_str());
            QVERIFY(store->checkIntegrity().isSuccess());
            QVERIFY(store->subSystems(error).empty());
        }
        QCOMPARE(versionOf(database.location()), newestVersion());
    }

    void everyOlderVersionIsBroughtUpToDateWithItsData()
    {
        constexpr std::size_t WithOperationLog = 2;
        constexpr std::size_t WithRiskSettings = 3;
        const auto& all = service::schemaMigrations();
        for (std::size_t count = 1; count <= all.size(); ++count) {
            const TestDatabase database;
            StoreOptions options;
            options.location = database.location();
            {
                Connection connection(options, "old");
                service::migrateSchema(connection, {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(count)});
                QCOMPARE(service::schemaVersion(connection), static_cast<int>(count));
                connection.exec("INSERT INTO sub_system (name, system_tag) VALUES ('旧分系统', 'OLD')");
                connection.exec("INSERT INTO account_group (server_id, group_id, name, revision, modified_by,"
                                " modified_at) VALUES (1, 1, '旧组', 1, 'x', 0)");
                if (count >= WithOperationLog) {
                    connection.exec("INSERT INTO operation_log (server_id, login, operation_id, at, digest, outcome,"
                                    " message) VALUES (1, 'x', 'old', 0, '', 0, '')");
                }
            }
            utils::NVError error;
            const StorePtr store = Store::open(options, error);
            QVERIFY2(store, error.errorMsg().c_str());
            QCOMPARE(store->subSystems(error).at(0).name, std::string("旧分系统"));
            QCOMPARE(versionOf(options.location), newestVersion());
            const service::SubSystem server = store->subSystems(error)[0];
            const auto logged = service::findOperation({store->connection(), server}, "x", "old");
            QCOMPARE(logged.has_value(), count >= WithOperationLog);
            QCOMPARE(logged ? logged->newId : 0, std::int64_t{0});
            // A group that is older than its configuration gets one.
            QVERIFY(count >= WithRiskSettings || service::findRiskConfig({store->connection(), server}, 1));
        }
    }

    void newerVersionIsRefusedAndLeftAlone()
    {
        const TestDatabase database;
        StoreOptions options;
        options.location = database.location();
        utils::NVError error;
        {
            const StorePtr store = Store::open(options, error);
            store->connection().exec("INSERT INTO schema_version VALUES (1000, 0)");
        }
        QVERIFY(!Store::open(options, error));
        QCOMPARE(static_cast<int>(error.code()), static_cast<int>(EErrorCode::StorageFailure));
        QVERIFY2(error.errorMsg().find("1000") != std::string::npos, error.errorMsg().c_str());
        QCOMPARE(versionOf(options.location), 1000);
    }

    void failedMigrationLeavesThePreviousVersion()
    {
        const TestDatabase database;
        StoreOptions options;
        options.location = database.location();
        auto migrations = service::schemaMigrations();
        migrations.push_back(
            {newestVersion() + 1, {"CREATE TABLE extra (id INTEGER)", "CREATE TABLE extra (id INTEGER)"}});
        {
            Connection connection(options, "half");
            QVERIFY_EXCEPTION_THROWN(service::migrateSchema(connection, migrations), StoreError);
            QCOMPARE(service::schemaVersion(connection), newestVersion());
            QVERIFY_EXCEPTION_THROWN(connection.exec("SELECT count(*) FROM extra"), StoreError);
        }
        utils::NVError error;
        QVERIFY(Store::open(options, error));
    }

    void databaseOfAnotherProgramIsRefused()
    {
        const TestDatabase database;
        StoreOptions options;
        options.location = database.location();
        Connection(options, "foreign").exec("CREATE TABLE recipes (name TEXT)");
        utils::NVError error;
        QVERIFY(!Store::open(options, error));
        QVERIFY2(error.errorMsg().find("其他程序") != std::string::npos, error.errorMsg().c_str());
    }

    void migrationsAreNumberedWithoutGaps()
    {
        int expected = 0;
        for (const service::Migration& migration : service::schemaMigrations()) {
            QCOMPARE(migration.number, ++expected);
        }
    }

    void readOnlyStoreAnswersQueriesAndRefusesChanges()
    {
        ServiceFixture fixture;
        const auto session = fixture.admin();
        const GroupPtr record = fixture.storedGroup("组");
        StoreOptions options;
        options.location = fixture.location();
        options.readOnly = true;
        utils::NVError error;
        const StorePtr store = Store::open(options, error);
        QVERIFY2(store, error.errorMsg().c_str());
        const auto engines = service::DataEngine::openAll(store, error);
        QCOMPARE(query(*engines.at(0), session, nvservice::DataType::AccountGroup).totalCount, 1);
        const service::Reply reply = operate(*engines.at(0), session, EZvDataOperation::Delete, record);
        COMPARE_CODE(reply, EErrorCode::StorageFailure);
        QVERIFY2(reply.error.errorMsg().find("只读") != std::string::npos, reply.error.errorMsg().c_str());
        QVERIFY(fixture.current(record->groupId));
    }

    void lockedDatabaseIsAnErrorAfterTheTimeout()
    {
        StoreOptions options;
        options.busyTimeoutMs = 50;
        ServiceFixture fixture(options);
        const auto session = fixture.admin();
        const GroupPtr record = fixture.storedGroup("组");
        StoreOptions other;
        other.location = fixture.location();
        Connection intruder(other, "intruder");
        intruder.beginWrite();
        const service::Reply reply = operate(fixture.east(), session, EZvDataOperation::Delete, record, "a");
        COMPARE_CODE(reply, EErrorCode::StorageFailure);
        QVERIFY2(reply.error.errorMsg().find("占用") != std::string::npos, reply.error.errorMsg().c_str());
        // Readers are not held up, and the same operation works as soon as the other one is done.
        QCOMPARE(query(fixture.east(), session, nvservice::DataType::AccountGroup).totalCount, 1);
        intruder.rollback();
        COMPARE_CODE(operate(fixture.east(), session, EZvDataOperation::Delete, record, "a"), EErrorCode::Success);
    }

    void failureOfAnyStatementLeavesNothingHalfDone_data()
    {
        const support::DataRows<int> row("operation");
        row("add", static_cast<int>(EZvDataOperation::Add));
        row("modify", static_cast<int>(EZvDataOperation::Modify));
        row("delete", static_cast<int>(EZvDataOperation::Delete));
    }
    void failureOfAnyStatementLeavesNothingHalfDone()
    {
        QFETCH(int, operation);
        int remaining = -1;
        StoreOptions options;
        options.faultHook = failureAfter(remaining);
        ServiceFixture fixture(options);
        const auto session = fixture.admin();
        const GroupPtr record = fixture.storedGroup("旧");
        record->groupName = "新";
        record->accounts.push_back(future("8002"));
        const auto kind = static_cast<EZvDataOperation>(operation);
        const QStringList before = fixture.content();
        int failures = 0;
        for (int statement = 0;; ++statement) {
            remaining = statement;
            const service::Reply reply = operate(fixture.east(), session, kind, record, "once");
            remaining = -1;
            if (reply.error.isSuccess()) {
                break;
            }
            ++failures;
            COMPARE_CODE(reply, EErrorCode::StorageFailure);
            QCOMPARE(fixture.content(), before);
            QVERIFY(statement < 200);
        }
        QVERIFY(failures > 10);
        QCOMPARE(fixture.number("SELECT count(*) FROM audit"), 1);
        QCOMPARE(fixture.number("SELECT count(*) FROM operation_log"), 1);
        QVERIFY(fixture.store().checkIntegrity().isSuccess());
    }

    void failureOfAnyStatementOfAQueryIsAnErrorWithoutRecords()
    {
        int remaining = -1;
        StoreOptions options;
        options.faultHook = failureAfter(remaining);
        ServiceFixture fixture(options);
        const auto session = fixture.admin();
        fixture.storedGroup("组");
        namespace DataType = nvservice::DataType;
        for (const int type : {DataType::AccountGroup, DataType::Product, DataType::Account, DataType::GroupRiskConfig,
                               DataType::Category, DataType::Institution, DataType::Security}) {
            const std::string key = type == DataType::GroupRiskConfig ? "1" : "";
            int failures = 0;
            for (int statement = 0;; ++statement) {
                remaining = statement;
                const service::Reply reply = query(fixture.east(), session, type, key);
                const bool everyStatementRan = remaining >= 0;
                remaining = -1;
                if (everyStatementRan) {
                    break;
                }
                // The end of a reading transaction changes nothing, so its failure may go unseen.
                failures += reply.error.isSuccess() ? 0 : 1;
                if (!reply.error.isSuccess()) {
                    QVERIFY(reply.records.empty());
                }
            }
            QVERIFY(failures >= 3);
        }
    }

    void textsAreEqualAndInOrderByteForByte()
    {
        ServiceFixture fixture;
        Connection& connection = fixture.store().connection();
        const service::ServerData data{connection, fixture.server(0)};
        const std::vector<std::string> ordered = {"A", "B", "Z", "_", "a", "b", "z", "ä", "一", "丁", "\U0001F600"};
        for (auto id = ordered.rbegin(); id != ordered.rend(); ++id) {
            service::putAccount(data, *account(EZVBrokerType::Gold, *id), 0, false);
        }
        std::vector<std::string> found;
        for (const service::StoredAccount& stored : service::loadAccounts(data, std::nullopt)) {
            if (stored.info->brokerType == EZVBrokerType::Gold) {
                found.push_back(stored.info->accountId);
            }
        }
        QCOMPARE(found, ordered);
        fixture.storedGroup("a");
        fixture.storedGroup("A");
        fixture.storedGroup("a ");
        QVERIFY(service::findGroupByName(data, "A") == 2);
        QVERIFY(!service::findGroupByName(data, "ä"));
    }

    void numbersHave64Bits()
    {
        ServiceFixture fixture;
        fixture.storedGroup("组");
        const std::int64_t late = std::int64_t{1} << 60;
        Query(fixture.store().connection(), "UPDATE account_group SET modified_at = ?, revision = ?")
            .bind(late)
            .bind(late + 1)
            .run();
        const auto stored = service::findGroup({fixture.store().connection(), fixture.server(0)}, 1);
        QCOMPARE(stored->lastChange.at, late);
        QCOMPARE(stored->record->revision(), late + 1);
        const std::string unknown = std::to_string(late);
        QCOMPARE(fixture.query(nvservice::DataType::AccountGroup, unknown).totalCount, 0);
    }

    void textWithANulCharacterIsRefusedBeforeItReachesTheDatabase()
    {
        ServiceFixture fixture;
        const auto session = fixture.admin();
        const std::string broken("a\0b", 3);
        const auto add = group("组", First, {future("8001")});
        COMPARE_CODE(operate(fixture.east(), session, EZvDataOperation::Add, add, broken), EErrorCode::InvalidValue);
        COMPARE_CODE(operate(fixture.east(), session, EZvDataOperation::Add, group(broken, First, {future("8001")})),
                     EErrorCode::InvalidValue);
        COMPARE_CODE(operate(fixture.east(), session, EZvDataOperation::Add, group("组", First, {future(broken)})),
                     EErrorCode::InvalidValue);
        add->setSystemTag(broken);
        COMPARE_CODE(operate(fixture.east(), session, EZvDataOperation::Add, add), EErrorCode::InvalidValue);
        QCOMPARE(fixture.number("SELECT count(*) FROM audit WHERE outcome <> 0"), 4);
        QCOMPARE(fixture.number("SELECT count(*) FROM account_group"), 0);
        QCOMPARE(static_cast<int>(fixture.east().logIn(broken, "x").error.code()),
                 static_cast<int>(EErrorCode::NotLoggedIn));
        Query lookUp(fixture.store().connection(), "SELECT count(*) FROM account_group WHERE name = ?");
        QVERIFY_EXCEPTION_THROWN(lookUp.bind(broken), StoreError);
    }

    void membersOfAnotherServerAndDoubleNamesAreImpossibleInTheSchema()
    {
        ServiceFixture fixture;
        fixture.storedGroup("组");
        const auto refuses = [&](const char* sql) {
            try {
                fixture.exec(sql);
            } catch (const StoreError&) {
                return true;
            }
            return false;
        };
        // Rows 1 to 8 are the accounts of the east server, 9 and more those of the west.
        QVERIFY(refuses("INSERT INTO account_group_member VALUES (1, 1, 9, 5)"));
        QVERIFY(refuses("INSERT INTO account_group_member VALUES (1, 1, 1, 5)"));
        QVERIFY(refuses("INSERT INTO account_group_member VALUES (1, 99, 2, 0)"));
        QVERIFY(refuses("INSERT INTO account_group VALUES (1, 2, '组', NULL, 1, 'x', 0, NULL)"));
        QVERIFY(refuses("INSERT INTO account_group VALUES (1, 2, '别', 77, 1, 'x', 0, NULL)"));
        QVERIFY(refuses("DELETE FROM account WHERE id = 1"));
        QVERIFY(refuses("DELETE FROM institution"));
        QVERIFY(!refuses("INSERT INTO account_group_member VALUES (1, 1, 2, 5)"));
    }
};

TEST_WITHOUT_WIDGETS(StoreTest)
#include "tst_store.moc"
