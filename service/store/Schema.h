// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace service
{

class Connection;

/// The statements that migrate the schema from version `number - 1` to `number`. `@ID@`, `@BLOB@`, `@KEYED@` and
/// `@TIE@` stand for the different spellings of the two databases.
struct Migration {
    int number;
    QStringList statements;
};

/// All migrations, in order, without gaps.
const std::vector<Migration>& schemaMigrations();

/// The version of the schema; 0 for an empty database. Throws `StoreError` if the database has tables of another
/// program.
int schemaVersion(Connection& connection);

/// Migrates the database to the newest of `migrations`, each in its own transaction together with its row in
/// `schema_version`. Throws `StoreError`, also for a database of a newer version.
void migrateSchema(Connection& connection, const std::vector<Migration>& migrations);

/// The statements that migrate a PostgreSQL database from this version to the newest.
QStringList postgresMigrations(int version);

/// Throws `StoreError` unless the database has the newest version.
void requireNewestSchema(Connection& connection);

} // namespace service
