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
    bool hasSeal = false; ///< no byte has changed since the backup was made
};

/// Copies the database as it is at this moment, while it is in use, into one sealed file. The file appears under its
/// name when the copy has been opened and found sound, and takes the place of another only if it may. A PostgreSQL
/// database is written by `pg_dump`. Throws `StoreError`, `Refusal`.
BackupContent backUp(const QString& store, const QString& file, bool mayReplace, const CopyProgress& progress);

/// Opens a backup and looks at all of it: the seal, the schema, every page, every reference, the version. Anything that
/// isn't of the schema, such as a trigger, is refused. A file without a seal may have changed where nothing of that
/// shows. Of a PostgreSQL dump, which only a database can open, `pg_restore` reads every table; nothing is counted.
/// Throws `StoreError`, `Refusal`.
BackupContent verifyBackup(const QString& file);

struct RestoreOptions {
    bool isForced = false;     ///< also over a database that anybody has open, or a file that isn't a database of ours
    std::string administrator; ///< who changes all groups and configurations by it
    CopyProgress progress;
};

/// Puts a backup, which is verified first, in place of the database, and begins a new epoch (`Epoch.h`) at the same
/// moment. Programs that have the database open then see the content of the backup. Throws `StoreError`, `Refusal`;
/// then the database is as it was.
BackupContent restoreBackup(const QString& file, const QString& store, const RestoreOptions& options);

} // namespace service
