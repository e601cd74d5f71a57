// SPDX-License-Identifier: Apache-2.0
#include "service/store/Schema.h"
#include "service/store/Query.h"

#include <utils/Translation.h>

#include <QDateTime>

namespace service
{

namespace
{

const char* const VersionTable =
    "CREATE TABLE schema_version (version INTEGER NOT NULL PRIMARY KEY, applied_at BIGINT NOT NULL)";

// Times are milliseconds since 1970 UTC. `revision` counts from 1. Accounts are never deleted (state 5 closes them), so
// the history may refer to them by id.
const QStringList MasterData = {
    "CREATE TABLE sub_system ("
    " id @ID@, name TEXT NOT NULL UNIQUE, system_tag TEXT NOT NULL UNIQUE,"
    " next_group_id INTEGER NOT NULL DEFAULT 1)",

    "CREATE TABLE institution ("
    " server_id BIGINT NOT NULL REFERENCES sub_system (id), institution_id INTEGER NOT NULL, name TEXT NOT NULL,"
    " PRIMARY KEY (server_id, institution_id), UNIQUE (server_id, name))@KEYED@",

    "CREATE TABLE app_user ("
    " id @ID@, server_id BIGINT NOT NULL REFERENCES sub_system (id), login TEXT NOT NULL, display_name TEXT NOT NULL,"
    " institution_id INTEGER, password_hash TEXT NOT NULL, enabled INTEGER NOT NULL DEFAULT 1,"
    " UNIQUE (server_id, login),"
    " FOREIGN KEY (server_id, institution_id) REFERENCES institution (server_id, institution_id))",

    "CREATE TABLE user_right ("
    " user_id BIGINT NOT NULL REFERENCES app_user (id) ON DELETE CASCADE, right_id INTEGER NOT NULL,"
    " PRIMARY KEY (user_id, right_id))@KEYED@",

    "CREATE TABLE account ("
    " id @ID@, server_id BIGINT NOT NULL REFERENCES sub_system (id), broker_type INTEGER NOT NULL,"
    " account_id TEXT NOT NULL, unit_id TEXT NOT NULL DEFAULT '', account_name TEXT NOT NULL DEFAULT '',"
    " institution_id INTEGER, state_code INTEGER NOT NULL DEFAULT 0, excluded INTEGER NOT NULL DEFAULT 0,"
    " UNIQUE (server_id, broker_type, account_id, unit_id), UNIQUE (server_id, id),"
    " FOREIGN KEY (server_id, institution_id) REFERENCES institution (server_id, institution_id))",

    "CREATE TABLE product ("
    " server_id BIGINT NOT NULL REFERENCES sub_system (id), product_id INTEGER NOT NULL, name TEXT NOT NULL,"
    " institution_id INTEGER, excluded INTEGER NOT NULL DEFAULT 0,"
    " PRIMARY KEY (server_id, product_id), UNIQUE (server_id, name),"
    " FOREIGN KEY (server_id, institution_id) REFERENCES institution (server_id, institution_id))@KEYED@",

    "CREATE TABLE product_account ("
    " server_id BIGINT NOT NULL, product_id INTEGER NOT NULL, account_id BIGINT NOT NULL,"
    " PRIMARY KEY (server_id, product_id, account_id),"
    " FOREIGN KEY (server_id, product_id) REFERENCES product (server_id, product_id) ON DELETE CASCADE,"
    " FOREIGN KEY (server_id, account_id) REFERENCES account (server_id, id))@KEYED@",

    // `extra` holds the fields of a record that this version does not know, as BSON.
    "CREATE TABLE account_group ("
    " server_id BIGINT NOT NULL REFERENCES sub_system (id), group_id INTEGER NOT NULL, name TEXT NOT NULL,"
    " institution_id INTEGER, revision BIGINT NOT NULL, modified_by TEXT NOT NULL, modified_at BIGINT NOT NULL,"
    " extra @BLOB@, PRIMARY KEY (server_id, group_id), UNIQUE (server_id, name),"
    " FOREIGN KEY (server_id, institution_id) REFERENCES institution (server_id, institution_id))",

    "CREATE TABLE account_group_member ("
    " server_id BIGINT NOT NULL, group_id INTEGER NOT NULL, account_id BIGINT NOT NULL, position INTEGER NOT NULL,"
    " PRIMARY KEY (server_id, group_id, account_id),"
    " FOREIGN KEY (server_id, group_id) REFERENCES account_group (server_id, group_id) ON DELETE CASCADE,"
    " FOREIGN KEY (server_id, account_id) REFERENCES account (server_id, id))@KEYED@",

    // Without a body the configuration is the record's default.
    "CREATE TABLE group_risk_config ("
    " server_id BIGINT NOT NULL, group_id INTEGER NOT NULL, revision BIGINT NOT NULL, body @BLOB@,"
    " modified_by TEXT NOT NULL, modified_at BIGINT NOT NULL, PRIMARY KEY (server_id, group_id),"
    " FOREIGN KEY (server_id, group_id) REFERENCES account_group (server_id, group_id) ON DELETE CASCADE)@KEYED@",

    // The group as every change left it; `operation` is the operation code. `members` lists account row ids in order,
    // separated by commas. A delete keeps the last state and the risk configuration that went with the group.
    "CREATE TABLE account_group_history ("
    " server_id BIGINT NOT NULL REFERENCES sub_system (id), group_id INTEGER NOT NULL, revision BIGINT NOT NULL,"
    " operation INTEGER NOT NULL, changed_by TEXT NOT NULL, changed_at BIGINT NOT NULL, name TEXT NOT NULL,"
    " institution_id INTEGER, members TEXT NOT NULL, extra @BLOB@, risk_config @BLOB@,"
    " PRIMARY KEY (server_id, group_id, revision))@KEYED@",

    // `outcome` is the error code, 0 for success. `before_body` and `after_body` are records as BSON.
    "CREATE TABLE audit ("
    " id @ID@, server_id BIGINT NOT NULL REFERENCES sub_system (id), at BIGINT NOT NULL, login TEXT NOT NULL,"
    " operation INTEGER NOT NULL, data_type INTEGER NOT NULL, record_key TEXT NOT NULL, operation_id TEXT NOT NULL,"
    " outcome INTEGER NOT NULL, message TEXT NOT NULL, before_body @BLOB@, after_body @BLOB@)",
    "CREATE INDEX audit_by_time ON audit (server_id, at)",
    "CREATE INDEX audit_by_record ON audit (server_id, record_key, at)",
};

// The answers to operations by operation id, with digests of the requests.
const QStringList RepeatedOperations = {
    "CREATE TABLE operation_log ("
    " server_id BIGINT NOT NULL REFERENCES sub_system (id), login TEXT NOT NULL, operation_id TEXT NOT NULL,"
    " at BIGINT NOT NULL, digest TEXT NOT NULL, outcome INTEGER NOT NULL, message TEXT NOT NULL,"
    " PRIMARY KEY (server_id, login, operation_id))@KEYED@",
    "CREATE INDEX operation_log_by_time ON operation_log (at)",
};

// `session` identifies the log-in that made the change, because a user may log in at several places. The first revision
// of every configuration, the default one, has no row here. `body` includes the e-mail rules.
const QStringList RiskSettings = {
    "CREATE TABLE group_risk_config_history ("
    " server_id BIGINT NOT NULL REFERENCES sub_system (id), group_id INTEGER NOT NULL, revision BIGINT NOT NULL,"
    " changed_by TEXT NOT NULL, changed_at BIGINT NOT NULL, session TEXT NOT NULL, data_type INTEGER NOT NULL,"
    " body @BLOB@, PRIMARY KEY (server_id, group_id, revision))",

    "INSERT INTO group_risk_config (server_id, group_id, revision, modified_by, modified_at)"
    " SELECT g.server_id, g.group_id, 1, g.modified_by, g.modified_at FROM account_group g"
    " WHERE NOT EXISTS (SELECT 1 FROM group_risk_config c WHERE c.server_id = g.server_id"
    " AND c.group_id = g.group_id)",

    "ALTER TABLE sub_system ADD COLUMN next_rule_id BIGINT NOT NULL DEFAULT 1",

    "CREATE TABLE category ("
    " server_id BIGINT NOT NULL REFERENCES sub_system (id), category_id INTEGER NOT NULL, name TEXT NOT NULL,"
    " category_type INTEGER NOT NULL, sys_type INTEGER NOT NULL, parent_id INTEGER,"
    " PRIMARY KEY (server_id, category_id),"
    " FOREIGN KEY (server_id, parent_id) REFERENCES category (server_id, category_id))@KEYED@",

    "CREATE TABLE security ("
    " server_id BIGINT NOT NULL REFERENCES sub_system (id), market TEXT NOT NULL, security_code TEXT NOT NULL,"
    " name TEXT NOT NULL, sys_type INTEGER NOT NULL, trader_type INTEGER NOT NULL,"
    " PRIMARY KEY (server_id, market, security_code))@KEYED@",
    "CREATE INDEX security_by_trader_type ON security (server_id, trader_type)",
};

// The ids of earlier operations are not needed any more.
const QStringList AnsweredIds = {"ALTER TABLE operation_log ADD COLUMN new_id BIGINT NOT NULL DEFAULT 0"};

// One row per server and restored backup: the revision that all records got, above all earlier ones, and the next ids.
// By tag, because a server that the backup does not have may be created again.
const QStringList Epochs = {
    "CREATE TABLE epoch ("
    " system_tag TEXT NOT NULL, revision BIGINT NOT NULL, next_group_id INTEGER NOT NULL,"
    " next_rule_id BIGINT NOT NULL, began_at BIGINT NOT NULL, PRIMARY KEY (system_tag, revision))@KEYED@",
};

// The institution of a row's group when the row was written, so that those who are bound to one find their rows. The
// indexes end with the id, which SQLite adds itself: many rows may have the same time. Refusals are few, so their
// indexes cost the changes nothing.
const QStringList AuditOrders = {
    "ALTER TABLE audit ADD COLUMN institution_id INTEGER",
    "UPDATE audit SET institution_id = (SELECT h.institution_id FROM account_group_history h"
    " WHERE h.server_id = k.server_id AND h.group_id = k.group_id AND h.changed_at <= audit.at"
    " ORDER BY h.revision DESC LIMIT 1)"
    " FROM (SELECT DISTINCT h.server_id, h.group_id,"
    " replace(replace(s.system_tag, '\\', '\\\\'), '|', '\\|') || '|' || h.group_id AS record_key"
    " FROM account_group_history h JOIN sub_system s ON s.id = h.server_id) k"
    " WHERE audit.server_id = k.server_id AND audit.record_key = k.record_key"
    " AND audit.data_type IN (625, 7131, 23460)",
    "DROP INDEX audit_by_time",
    "DROP INDEX audit_by_record",
    "CREATE INDEX audit_by_time ON audit (server_id, at@TIE@)",
    "CREATE INDEX audit_by_record ON audit (server_id, record_key, at@TIE@)",
    "CREATE INDEX audit_by_user ON audit (server_id, login, at@TIE@)",
    "CREATE INDEX audit_by_institution ON audit (server_id, institution_id, at@TIE@)"
    " WHERE institution_id IS NOT NULL",
    "CREATE INDEX audit_of_refusals ON audit (server_id, at@TIE@) WHERE outcome <> 0",
    "CREATE INDEX audit_by_outcome ON audit (server_id, outcome, at@TIE@) WHERE outcome <> 0",
};

QString inWordsOf(bool isPostgres, QString sql)
{
    if (!isPostgres) {
        return sql.replace(QLatin1String("@ID@"), QLatin1String("INTEGER PRIMARY KEY AUTOINCREMENT"))
            .replace(QLatin1String("@BLOB@"), QLatin1String("BLOB"))
            .replace(QLatin1String("@KEYED@"), QLatin1String(" WITHOUT ROWID"))
            .remove(QLatin1String("@TIE@"));
    }
    // As in SQLite, integers have 64 bits, and texts are compared byte by byte.
    return sql.replace(QLatin1String(" INTEGER"), QLatin1String(" BIGINT"))
        .replace(QLatin1String(" TEXT"), QLatin1String(" TEXT COLLATE \"C\""))
        .replace(QLatin1String("@ID@"), QLatin1String("BIGINT GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY"))
        .replace(QLatin1String("@BLOB@"), QLatin1String("BYTEA"))
        .replace(QLatin1String("@TIE@"), QLatin1String(", id"))
        .remove(QLatin1String("@KEYED@"));
}

/// With its row in `schema_version`.
QStringList statementsOf(const Migration& migration, bool isPostgres)
{
    QStringList statements;
    if (migration.number == 1) {
        statements << QString::fromLatin1(VersionTable);
    }
    statements << migration.statements;
    statements << QStringLiteral("INSERT INTO schema_version (version, applied_at) VALUES (%1, %2)")
                      .arg(QString::number(migration.number), QString::number(QDateTime::currentMSecsSinceEpoch()));
    for (QString& statement : statements) {
        statement = inWordsOf(isPostgres, statement);
    }
    return statements;
}

bool hasTables(Connection& connection, const QString& like)
{
    const QString tables = connection.isPostgres()
                               ? QStringLiteral("pg_tables WHERE schemaname = current_schema() AND tablename")
                               : QStringLiteral("sqlite_master WHERE type = 'table' AND name");
    Query query(connection, QStringLiteral("SELECT count(*) FROM ") + tables + QStringLiteral(" LIKE ?"));
    query.bind(like.toStdString());
    return query.runAndNext() && query.integer(0) > 0;
}

} // namespace

const std::vector<Migration>& schemaMigrations()
{
    static const std::vector<Migration> migrations = {
        {1, MasterData}, {2, RepeatedOperations}, {3, RiskSettings}, {4, AnsweredIds}, {5, Epochs}, {6, AuditOrders}};
    return migrations;
}

int schemaVersion(Connection& connection)
{
    if (!hasTables(connection, QStringLiteral("schema_version"))) {
        if (hasTables(connection, QStringLiteral("%"))) {
            throw StoreError(utils::EErrorCode::StorageFailure,
                             utils::text("service", "该数据库属于其他程序，不能使用"));
        }
        return 0;
    }
    Query query(connection, QStringLiteral("SELECT max(version) FROM schema_version"));
    return query.runAndNext() ? static_cast<int>(query.integer(0)) : 0;
}

void migrateSchema(Connection& connection, const std::vector<Migration>& migrations)
{
    for (;;) {
        // Another process may migrate at the same time, so the version is read again under the write lock.
        const int seen = schemaVersion(connection);
        const int newest = migrations.back().number;
        if (seen > newest) {
            throw StoreError(
                utils::EErrorCode::StorageFailure,
                utils::filled(utils::text("service", "数据库版本（%1）高于本程序支持的版本（%2），请升级程序"), seen,
                              newest));
        }
        if (seen == newest) {
            return;
        }
        Transaction transaction(connection, Transaction::EKind::Write);
        const int version = schemaVersion(connection);
        if (version != seen) {
            continue;
        }
        const Migration& migration = migrations.at(static_cast<std::size_t>(version));
        connection.allowLongStatements();
        for (const QString& statement : statementsOf(migration, connection.isPostgres())) {
            connection.exec(statement);
        }
        transaction.commit();
    }
}

QStringList postgresMigrations(int version)
{
    QStringList statements;
    for (const Migration& migration : schemaMigrations()) {
        if (migration.number > version) {
            statements << statementsOf(migration, true);
        }
    }
    return statements;
}

void requireNewestSchema(Connection& connection)
{
    const int version = schemaVersion(connection);
    if (version != schemaMigrations().back().number) {
        throw StoreError(
            utils::EErrorCode::StorageFailure,
            utils::filled(utils::text("service", "数据库版本（%1）与本程序不符，且数据库是只读的"), version));
    }
}

} // namespace service
