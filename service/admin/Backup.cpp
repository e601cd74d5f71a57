// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Backup.h"
#include "service/admin/BackupSeal.h"
#include "service/admin/Epoch.h"
#include "service/admin/PartialFile.h"
#include "service/admin/PostgresTools.h"
#include "service/engine/Refusal.h"
#include "service/store/Integrity.h"
#include "service/store/Query.h"
#include "service/store/Schema.h"
#include "service/store/SchemaObjects.h"

#include <utils/Translation.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

namespace service
{

using utils::EErrorCode;

namespace
{

constexpr char SqliteMark[] = "SQLite format 3";
constexpr char PostgresMark[] = "PGDMP";

bool beginsWith(const QString& name, const char* mark)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        throw Refusal(EErrorCode::NotFound, utils::filled(utils::text("service", "无法读取文件：%1（%2）"),
                                                          name.toStdString(), file.errorString().toStdString()));
    }
    return file.read(static_cast<qint64>(qstrlen(mark))) == mark;
}

std::int64_t countOf(Connection& connection, const char* table)
{
    Query query(connection, QStringLiteral("SELECT count(*) FROM ") + QLatin1String(table));
    return query.runAndNext() ? query.integer(0) : 0;
}

void countRows(Connection& connection, BackupContent& content)
{
    content.servers = countOf(connection, "sub_system");
    content.groups = countOf(connection, "account_group");
    content.accounts = countOf(connection, "account");
    content.users = countOf(connection, "app_user");
    content.auditRows = countOf(connection, "audit");
}

/// The version of the schema. Throws `StoreError` for an empty or newer database.
int requireKnownVersion(Connection& connection)
{
    const int version = schemaVersion(connection);
    const int newest = schemaMigrations().back().number;
    if (version == 0) {
        throw StoreError(EErrorCode::StorageFailure, utils::text("service", "该数据库是空的"));
    }
    if (version > newest) {
        throw StoreError(EErrorCode::StorageFailure,
                         utils::filled(utils::text("service", "数据库版本（%1）高于本程序支持的版本（%2），请升级程序"),
                                       version, newest));
    }
    return version;
}

/// Refuses additional objects, because a restored trigger or view would change what the database does.
void requireOurSchema(Connection& connection, int version)
{
    std::string all;
    for (const std::string& difference : differencesFromSchema(connection, version)) {
        all += (all.empty() ? "" : ", ") + difference;
    }
    if (!all.empty()) {
        throw StoreError(EErrorCode::StorageFailure,
                         utils::filled(utils::text("service", "数据库的结构与本程序的不同：%1"), all));
    }
}

/// Checks a whole database and counts its rows. Throws `StoreError`.
BackupContent verify(const QString& location, const QString& file)
{
    Connection connection(StoreOptions::forReading(location), QStringLiteral("qav-admin-verify"));
    Transaction snapshot(connection, Transaction::EKind::Read);
    BackupContent content;
    content.schemaVersion = requireKnownVersion(connection);
    if (!connection.isPostgres()) {
        requireOurSchema(connection, content.schemaVersion);
    }
    const std::string damage = findDamage(connection);
    if (!damage.empty()) {
        throw StoreError(EErrorCode::StorageFailure, damage);
    }
    content.bytes = QFileInfo(file).size();
    countRows(connection, content);
    return content;
}

BackupContent verifySqlite(const QString& file)
{
    return verify(file, file);
}

/// SQLite would take files beside the backup for changes of it.
void requireNoCompanions(const QString& file)
{
    for (const char* companion : DatabaseCompanions) {
        const QFileInfo other(file + QLatin1String(companion));
        if (other.exists() || other.isSymLink()) {
            throw Refusal(EErrorCode::Duplicate,
                          utils::filled(utils::text("service", "文件已存在：%1（会被当作备份的一部分）"),
                                        other.filePath().toStdString()));
        }
    }
}

/// True if SQLite can read it and it is a database of ours or empty.
bool isUsable(const QString& store)
{
    try {
        Connection connection(StoreOptions::forReading(store), QStringLiteral("qav-admin-target"));
        schemaVersion(connection);
        return true;
    } catch (const StoreError&) {
        return false;
    }
}

/// Renames the file and the files beside it, which SQLite would take for changes of the new database.
void setAside(const QString& store)
{
    const QString replaced =
        store + QDateTime::currentDateTime().toString(QStringLiteral("'.replaced-'yyyyMMddHHmmsszzz"));
    const auto rename = [&](const QString& ending) {
        if (QFileInfo::exists(store + ending) && !QFile::rename(store + ending, replaced + ending)) {
            throw Refusal(EErrorCode::Failed, utils::filled(utils::text("service", "无法移开原有文件：%1"),
                                                            (store + ending).toStdString()));
        }
    };
    rename({});
    for (const char* companion : DatabaseCompanions) {
        rename(QLatin1String(companion));
    }
}

/// The epoch that begins when a backup replaces the store, which may be missing or unreadable.
Epoch epochAfter(const QString& store, const RestoreOptions& options)
{
    Epoch epoch;
    epoch.administrator = options.administrator;
    epoch.at = QDateTime::currentMSecsSinceEpoch();
    if (!isPostgres(store) && !QFileInfo::exists(store)) {
        return epoch;
    }
    try {
        Connection connection(StoreOptions::forReading(store), QStringLiteral("qav-admin-replaced"));
        const Transaction snapshot(connection, Transaction::EKind::Read);
        epoch.before = findGivenOut(connection);
        // Programs that have it open may assign more before it is replaced.
        epoch.isExact = !epoch.before.empty() && !options.isForced;
    } catch (const StoreError&) {
        epoch.before.clear();
    }
    return epoch;
}

void beginEpoch(const QString& file, const Epoch& epoch)
{
    StoreOptions options;
    options.location = file;
    Connection connection(options, QStringLiteral("qav-admin-epoch"));
    migrateSchema(connection, schemaMigrations());
    Transaction transaction(connection, Transaction::EKind::Write);
    for (const QString& statement : epochStatements(epoch)) {
        connection.exec(statement);
    }
    transaction.commit();
}

BackupContent restoreSqlite(const QString& file, const QString& store, const RestoreOptions& options)
{
    if (QFileInfo(file).canonicalFilePath() == QFileInfo(store).canonicalFilePath()) {
        throw Refusal(EErrorCode::InvalidValue, utils::text("service", "备份文件与数据库是同一个文件"));
    }
    const bool isThere = QFileInfo::exists(store);
    const bool isReplaced = isThere && isUsable(store);
    if (isReplaced && !options.isForced && !leaveWriteAheadMode(store)) {
        throw Refusal(EErrorCode::Conflict,
                      utils::text("service", "数据库正被其他程序使用，请先停止它们（--force 可强制恢复）"));
    }
    if (isThere && !isReplaced && !options.isForced) {
        throw Refusal(
            EErrorCode::Conflict,
            utils::filled(utils::text("service", "原有文件不是可用的数据库：%1（--force 可将其改名保留后恢复）"),
                          store.toStdString()));
    }
    if (!isReplaced) {
        setAside(store);
    }
    // The epoch begins in a copy, so that nobody sees the backup without it.
    PartialFile copy(store, isReplaced);
    copySqliteDatabase(file, copy.path(), options.progress);
    beginEpoch(copy.path(), epochAfter(store, options));
    leaveWriteAheadMode(copy.path());
    if (isReplaced) {
        copySqliteDatabase(copy.path(), store, {});
        return verifySqlite(store);
    }
    const BackupContent content = verifySqlite(copy.path());
    const Uninterrupted whole;
    copy.commit();
    return content;
}

BackupContent restorePostgres(const QString& file, const QString& store, const RestoreOptions& options)
{
    {
        Connection target(StoreOptions::forReading(store), QStringLiteral("qav-admin-target"));
        schemaVersion(target); // not the database of another program
    }
    if (!options.isForced && otherPostgresClients(store) > 0) {
        throw Refusal(EErrorCode::Conflict,
                      utils::text("service", "数据库正被其他程序使用，请先停止它们（--force 可强制恢复）"));
    }
    const QStringList migrations = postgresMigrations(schemaVersionOfDump(file));
    restorePostgresDump(file, store, migrations + epochStatements(epochAfter(store, options)));
    return verify(store, file);
}

} // namespace

BackupContent backUp(const QString& store, const QString& file, bool mayReplace, const CopyProgress& progress)
{
    PartialFile copy(file, mayReplace);
    if (isPostgres(store)) {
        dumpPostgres(store, copy.path());
    } else {
        requireNoCompanions(file);
        copySqliteDatabase(store, copy.path(), progress);
        leaveWriteAheadMode(copy.path());
    }
    sealBackup(copy.path());
    const BackupContent content = verifyBackup(copy.path());
    const Uninterrupted whole;
    copy.commit();
    return content;
}

BackupContent verifyBackup(const QString& file)
{
    const bool isSqlite = beginsWith(file, SqliteMark);
    if (!isSqlite && !beginsWith(file, PostgresMark)) {
        throw Refusal(EErrorCode::Malformed,
                      utils::filled(utils::text("service", "该文件不是备份：%1"), file.toStdString()));
    }
    const ESeal seal = sealOf(file);
    if (seal == ESeal::Broken) {
        throw StoreError(EErrorCode::StorageFailure, utils::text("service", "备份已损坏：内容与其校验和不符"));
    }
    BackupContent content;
    if (isSqlite) {
        if (seal == ESeal::Intact) {
            requireNoCompanions(file);
        }
        content = verifySqlite(file);
    } else {
        verifyPostgresDump(file);
        content.bytes = QFileInfo(file).size();
    }
    content.hasSeal = seal == ESeal::Intact;
    return content;
}

BackupContent restoreBackup(const QString& file, const QString& store, const RestoreOptions& options)
{
    verifyBackup(file);
    if (beginsWith(file, SqliteMark) == isPostgres(store)) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::text("service", "备份与数据库的种类不同：SQLite 的备份只能恢复为 SQLite "
                                             "数据库文件，PostgreSQL 的备份只能恢复到 PostgreSQL"));
    }
    return isPostgres(store) ? restorePostgres(file, store, options) : restoreSqlite(file, store, options);
}

} // namespace service
