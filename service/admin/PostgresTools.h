// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

namespace service
{

// These functions run PostgreSQL's own programs. All throw `Refusal`: if the program is missing, the text says what to
// run instead; if it failed, the text contains its message.

/// Runs `pg_dump` in custom format.
void dumpPostgres(const QString& location, const QString& file);
/// Lets `pg_restore` read all tables of the dump without writing them. Refuses a dump of another program, and throws
/// `StoreError` for a dump with additional objects.
void verifyPostgresDump(const QString& file);
/// The version of the schema in a dump.
int schemaVersionOfDump(const QString& file);
/// Replaces the database by the dump and runs the statements, in one transaction, with `pg_restore` and `psql`.
void restorePostgresDump(const QString& file, const QString& location, const QStringList& statements);

/// The number of other programs that are connected. Throws `StoreError`.
int otherPostgresClients(const QString& location);

} // namespace service
