// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Backup.h"
#include "service/admin/Commands.h"
#include "service/admin/PartialFile.h"
#include "service/admin/Table.h"
#include "service/admin/Terminal.h"
#include "service/store/Connection.h"
#include "service/store/Journal.h"

#include <QDateTime>

namespace service
{

namespace
{

int reportBackup(const Invocation& call, const QString& file, const BackupContent& content, const char* what)
{
    const QJsonObject json{{"file", file},
                           {"bytes", Cell(content.bytes)},
                           {"verified", true},
                           {"checksum", content.hasSeal},
                           {"schemaVersion", content.schemaVersion},
                           {"servers", Cell(content.servers)},
                           {"groups", Cell(content.groups)},
                           {"accounts", Cell(content.accounts)},
                           {"users", Cell(content.users)},
                           {"auditRows", Cell(content.auditRows)}};
    QString text =
        QStringLiteral("%1：%2（%3字节），已校验\n").arg(QString::fromUtf8(what), file, QString::number(content.bytes));
    if (content.schemaVersion > 0) {
        text += QStringLiteral("版本 %1，分系统 %2，账号组 %3，账号 %4，用户 %5，审计记录 %6\n")
                    .arg(QString::number(content.schemaVersion), QString::number(content.servers),
                         QString::number(content.groups), QString::number(content.accounts),
                         QString::number(content.users), QString::number(content.auditRows));
    }
    if (!content.hasSeal) {
        text += QStringLiteral("没有校验和，不能发现每一处改动\n");
    }
    return report(call, json, text);
}

int runBackup(Invocation& call)
{
    const QString store = call.storeName();
    const QString file = call.arguments().front();
    requireLocation(store);
    requireNewFile(file, call.isSet("force"), store);
    BackupContent content;
    {
        Progress bar(QStringLiteral("备份"));
        content = backUp(store, file, call.isSet("force"), bar.counter());
    }
    return reportBackup(call, file, content, "备份已完成");
}

int runVerify(Invocation& call)
{
    const QString file = call.arguments().front();
    return reportBackup(call, file, verifyBackup(file), "备份可用");
}

/// Audits the restore on every server of the restored database.
void auditRestore(const QString& location, const QString& file, const std::string& administrator)
{
    const StorePtr store = openStore(location, EStoreUse::Write);
    utils::NVError error;
    const std::vector<SubSystem> servers = store->subSystems(error);
    Connection& connection = store->connection();
    const std::lock_guard<std::mutex> turn(store->writeMutex());
    Transaction transaction(connection, Transaction::EKind::Write);
    for (const SubSystem& server : servers) {
        AuditRow row;
        row.at = QDateTime::currentMSecsSinceEpoch();
        row.login = administrator;
        row.recordKey = "database";
        bson::BSONObjBuilder after;
        after.append("restoredFrom", file.toStdString());
        row.after = after.obj();
        insertAudit({connection, server}, row);
    }
    transaction.commit();
}

int runRestore(Invocation& call)
{
    const QString store = call.storeName();
    const QString file = call.arguments().front();
    const std::string administrator = call.administrator();
    BackupContent content;
    {
        Progress bar(QStringLiteral("恢复"));
        content = restoreBackup(file, store, {call.isSet("force"), administrator, bar.counter()});
    }
    auditRestore(store, file, administrator);
    return reportBackup(call, file, content, "数据库已恢复自备份");
}

Command backupCommand(const char* name, const char* summary, EStoreUse use, int (*run)(Invocation&))
{
    Command command(name, summary, use, run);
    command.hasJson = true;
    command.arguments = {{"file", "The backup.", false}};
    return command;
}

} // namespace

std::vector<Command> backupCommands()
{
    Command backup = backupCommand("backup", "Copy the database as it is at this moment into one file, and verify it.",
                                   EStoreUse::Named, runBackup);
    backup.details = QStringList{"The database may be in use. The file appears when the copy has been opened and every "
                                 "page and reference of it found sound, and ends with a checksum. A database of an "
                                 "older version can be backed up before the new version changes it.",
                                 "A PostgreSQL database is written by pg_dump in its custom format and read again by "
                                 "pg_restore; a cluster needs continuous archiving besides."};
    backup.examples = QStringList{"backup /backup/qav-20260105.db --store qav.db"};
    backup.options = {{"force", "Replace a file that is there."}};

    Command verify = backupCommand("verify", "Look whether a backup is whole, unchanged and nothing but ours.",
                                   EStoreUse::None, runVerify);
    verify.details =
        QStringList{"The checksum tells any change of a byte. A file without one, made by another program or an older "
                    "version, is checked as far as its structure goes, and the result says so. Tables, views, indexes "
                    "and triggers that the data service doesn't have are refused."};

    Command restore = backupCommand("restore", "Put a backup in place of the database.", EStoreUse::Named, runRestore);
    restore.isAudited = true;
    restore.details =
        QStringList{"The backup is verified first. A database that any program has open is refused: stop the data "
                    "service. With --force it is replaced all the same, at one moment, and those programs see the "
                    "content of the backup; a file that isn't a usable database is kept under another name.",
                    "Changes made after the backup are lost, those in the audit too. Every sub-system's audit says "
                    "that and by whom the backup was restored.",
                    "No number is given out twice: new groups and limits get numbers above all that the backup and the "
                    "replaced database have used, and every group and risk configuration gets a new revision, so that "
                    "what a client read before can't be saved any more. When the replaced database is missing, can't "
                    "be read or is in use, numbers and revisions jump by a million or more."};
    restore.examples = QStringList{"restore /backup/qav-20260105.db --store qav.db"};
    restore.options = {{"force", "Restore over a database in use, or over a file that isn't one."}};
    return {backup, verify, restore};
}

} // namespace service
