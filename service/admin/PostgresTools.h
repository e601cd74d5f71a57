#pragma once

#include <QString>
#include <QStringList>

namespace service
{

// PostgreSQL's own programs do the work. All throw `Refusal`: the program is missing, which the text says together with
// what to run instead, or it failed, with what it said.

/// `pg_dump` in custom format.
void dumpPostgres(const QString& location, const QString& file);
/// `pg_restore` reads every table of the dump and writes it nowhere. A dump of something else is refused,
/// and one that holds more; the latter by a `StoreError`.
void verifyPostgresDump(const QString& file);
/// The version of the schema in a dump.
int schemaVersionOfDump(const QString& file);
/// `pg_restore` and `psql` put it in place of what is there and carry out the statements, in one transaction.
void restorePostgresDump(const QString& file, const QString& location, const QStringList& statements);

/// How many other programs are connected. Throws `StoreError`.
int otherPostgresClients(const QString& location);

} // namespace service
