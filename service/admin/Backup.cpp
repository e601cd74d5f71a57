#include "service/admin/Backup.h"
#include "service/admin/PartialFile.h"
#include "service/admin/PostgresTools.h"
#include "service/engine/GroupRules.h"
#include "service/store/Connection.h"
#include "service/store/Integrity.h"
#include "service/store/Schema.h"

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

bool isPostgres(const QString& store)
{
    StoreOptions options;
    options.location = store;
    return options.isPostgres();
}

bool beginsWith(const QString& name, const char* mark)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        throw Refusal(EErrorCode::NotFound,
                      "无法读取文件：" + name.toStdString() + "（" + file.errorString().toStdString() + "）");
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

/// The version of a database of ours. Throws `StoreError`.
int requireKnownVersion(Connection& connection)
{
    const int version = schemaVersion(connection);
    const int newest = schemaMigrations().back().number;
    if (version == 0)
        throw StoreError(EErrorCode::StorageFailure, "该数据库是空的");
    if (version > newest)
        throw StoreError(EErrorCode::StorageFailure, "数据库版本（" + std::to_string(version) +
                                                         "）高于本程序支持的版本（" + std::to_string(newest) +
                                                         "），请升级程序");
    return version;
}

StoreOptions readOnly(const QString& file)
{
    StoreOptions options;
    options.location = file;
    options.readOnly = true;
    return options;
}

/// Looks at all of an open database of ours, and counts. Throws `StoreError`.
BackupContent verify(const QString& location, const QString& file)
{
    Connection connection(readOnly(location), QStringLiteral("qav-admin-verify"));
    Transaction snapshot(connection, Transaction::EKind::Read);
    BackupContent content;
    content.schemaVersion = requireKnownVersion(connection);
    const std::string damage = findDamage(connection);
    if (!damage.empty())
        throw StoreError(EErrorCode::StorageFailure, damage);
    content.bytes = QFileInfo(file).size();
    countRows(connection, content);
    return content;
}

BackupContent verifySqlite(const QString& file)
{
    return verify(file, file);
}

/// The copy is sound and alone when it gets the name of the target.
BackupContent copyToNewFile(const QString& from, const QString& target, const CopyProgress& progress)
{
    PartialFile copy(target);
    copySqliteDatabase(from, copy.path(), progress);
    leaveWriteAheadMode(copy.path());
    const BackupContent content = verifySqlite(copy.path());
    const Uninterrupted whole;
    copy.commit();
    return content;
}

/// Whether SQLite can read it and it is a database of ours, or an empty one.
bool isUsable(const QString& store)
{
    try {
        Connection connection(readOnly(store), QStringLiteral("qav-admin-target"));
        schemaVersion(connection);
        return true;
    } catch (const StoreError&) {
        return false;
    }
}

void setAside(const QString& store)
{
    const QString name = store + QDateTime::currentDateTime().toString(QStringLiteral("'.replaced-'yyyyMMddHHmmsszzz"));
    if (!QFile::rename(store, name))
        throw Refusal(EErrorCode::Failed, "无法移开原有文件：" + store.toStdString());
}

BackupContent restoreSqlite(const QString& file, const QString& store, bool isForced, const CopyProgress& progress)
{
    if (QFileInfo(file).canonicalFilePath() == QFileInfo(store).canonicalFilePath())
        throw Refusal(EErrorCode::InvalidValue, "备份文件与数据库是同一个文件");
    const bool isThere = QFileInfo::exists(store);
    if (isThere && isUsable(store)) {
        if (!isForced && !leaveWriteAheadMode(store))
            throw Refusal(EErrorCode::Conflict, "数据库正被其他程序使用，请先停止它们（--force 可强制恢复）");
        copySqliteDatabase(file, store, progress);
        return verifySqlite(store);
    }
    if (isThere && !isForced)
        throw Refusal(EErrorCode::Conflict,
                      "原有文件不是可用的数据库：" + store.toStdString() + "（--force 可将其改名保留后恢复）");
    if (isThere)
        setAside(store);
    // They would be taken for changes of the file that takes the place of the one that they belong to.
    for (const char* companion : {"-wal", "-shm", "-journal"})
        QFile::remove(store + QLatin1String(companion));
    return copyToNewFile(file, store, progress);
}

BackupContent restorePostgres(const QString& file, const QString& store, bool isForced)
{
    {
        Connection target(readOnly(store), QStringLiteral("qav-admin-target"));
        schemaVersion(target); // not the database of another program
    }
    if (!isForced && otherPostgresClients(store) > 0)
        throw Refusal(EErrorCode::Conflict, "数据库正被其他程序使用，请先停止它们（--force 可强制恢复）");
    restorePostgresDump(file, store);
    return verify(store, file);
}

} // namespace

BackupContent backUp(const QString& store, const QString& file, const CopyProgress& progress)
{
    if (!isPostgres(store))
        return copyToNewFile(store, file, progress);
    PartialFile dump(file);
    dumpPostgres(store, dump.path());
    const BackupContent content = verifyBackup(dump.path());
    const Uninterrupted whole;
    dump.commit();
    return content;
}

BackupContent verifyBackup(const QString& file)
{
    if (beginsWith(file, SqliteMark))
        return verifySqlite(file);
    if (!beginsWith(file, PostgresMark))
        throw Refusal(EErrorCode::Malformed, "该文件不是备份：" + file.toStdString());
    verifyPostgresDump(file);
    BackupContent content;
    content.bytes = QFileInfo(file).size();
    return content;
}

BackupContent restoreBackup(const QString& file, const QString& store, bool isForced, const CopyProgress& progress)
{
    verifyBackup(file);
    if (beginsWith(file, SqliteMark) == isPostgres(store))
        throw Refusal(EErrorCode::InvalidValue, "备份与数据库的种类不同：SQLite 的备份只能恢复为 SQLite 数据库文件，"
                                                "PostgreSQL 的备份只能恢复到 PostgreSQL");
    return isPostgres(store) ? restorePostgres(file, store, isForced) : restoreSqlite(file, store, isForced, progress);
}

} // namespace service
