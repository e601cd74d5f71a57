#pragma once

#include "service/admin/SqliteCopy.h"

#include <QString>

#include <cstdint>
#include <string>

namespace service
{

/// What a verified backup holds.
struct BackupContent {
    std::int64_t bytes = 0;
    int schemaVersion = 0;
    std::int64_t servers = 0;
    std::int64_t groups = 0;
    std::int64_t accounts = 0;
    std::int64_t users = 0;
    std::int64_t auditRows = 0;
};

/// Copies the database as it is at this moment, while it is in use, into one file. The file appears under its name when
/// the copy has been opened and found sound. A PostgreSQL database is written by `pg_dump`. Throws `StoreError`,
/// `Refusal`.
BackupContent backUp(const QString& store, const QString& file, const CopyProgress& progress);

/// Opens a backup and looks at all of it: every page, every reference, the version. Of a PostgreSQL dump, which only a
/// database can open, `pg_restore` reads every table; nothing is counted. Throws `StoreError`, `Refusal`.
BackupContent verifyBackup(const QString& file);

/// Puts a backup, which is verified first, in place of the database. Without `isForced` a database that anybody has
/// open, or a file that isn't a database of ours, is refused. Programs that have it open then see the content of the
/// backup. Throws `StoreError`, `Refusal`; then the database is as it was.
BackupContent restoreBackup(const QString& file, const QString& store, bool isForced, const CopyProgress& progress);

} // namespace service
