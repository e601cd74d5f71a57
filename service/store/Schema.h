#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace service
{

class Connection;

/// The statements that lead from version `number - 1` of the schema to `number`. `@ID@`, `@BLOB@` and `@KEYED@` stand
/// for what the databases spell differently.
struct Migration {
    int number;
    QStringList statements;
};

/// All migrations, in order, without gaps.
const std::vector<Migration>& schemaMigrations();

/// 0 for an empty database. Throws `StoreError` when the file holds tables of somebody else.
int schemaVersion(Connection& connection);

/// Brings the database to the newest of `migrations`, each in a transaction of its own together with its row in
/// `schema_version`. Throws `StoreError`; a database of a newer version is refused.
void migrateSchema(Connection& connection, const std::vector<Migration>& migrations);

/// What brings a PostgreSQL database of this version to the newest one.
QStringList postgresMigrations(int version);

/// Throws `StoreError` unless the database is of the newest version.
void requireNewestSchema(Connection& connection);

} // namespace service
