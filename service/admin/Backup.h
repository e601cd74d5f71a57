// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/admin/SqliteCopy.h"

#include <QString>

#include <cstdint>
#include <string>

namespace service
{

/// The content of a verified backup.
struct BackupContent {
    std::int64_t bytes = 0;
    int schemaVersion = 0;
    std::int64_t servers = 0;
    std::int64_t groups = 0;
    std::int64_t accounts = 0;
    std::int64_t users = 0;
    std::int64_t auditRows = 0;
    bool hasSeal = false; ///< true: no byte has changed since the backup was made
};

/// Copies the current state of the database, which may be in use, into one sealed file. The file gets its name after
/// the copy has been opened and verified; it replaces another file only if `mayReplace`. `pg_dump` copies a PostgreSQL
/// database. Throws `StoreError`, `Refusal`.
BackupContent backUp(const QString& store, const QString& file, bool mayReplace, const CopyProgress& progress);

/// Opens a backup and checks all of it: the seal, the schema, all pages and references, the version. Anything outside
/// the schema, such as a trigger, is refused. In a file without a seal, some changes cannot be detected. A PostgreSQL
/// dump can only be opened by a database, so `pg_restore` reads all of its tables but nothing is counted. Throws
/// `StoreError`, `Refusal`.
BackupContent verifyBackup(const QString& file);

struct RestoreOptions {
    bool isForced = false;     ///< true: also replaces a database in use, or a file that is not our database
    std::string administrator; ///< the author of the changes to all groups and configurations
    CopyProgress progress;
};

/// Verifies a backup, replaces the database by it, and begins a new epoch (`Epoch.h`) at the same moment. Programs that
/// have the database open then see the content of the backup. Throws `StoreError`, `Refusal`; the database is then
/// unchanged.
BackupContent restoreBackup(const QString& file, const QString& store, const RestoreOptions& options);

} // namespace service
