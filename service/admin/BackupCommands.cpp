// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Backup.h"
#include "service/admin/Commands.h"
#include "service/admin/PartialFile.h"
#include "service/admin/Table.h"
#include "service/admin/Terminal.h"
#include "service/store/Connection.h"
#include "service/store/Journal.h"

#include <QCoreApplication>
#include <QDateTime>

namespace service
{

namespace
{

int reportBackup(const Invocation& call, const QString& file, const BackupContent& content, const QString& what)
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
    QString text = QCoreApplication::translate("service", "%1：%2（%3字节），已校验\n")
                       .arg(what, file, QString::number(content.bytes));
    if (content.schemaVersion > 0) {
        text += QCoreApplication::translate("service", "版本 %1，分系统 %2，账号组 %3，账号 %4，用户 %5，审计记录 %6\n")
                    .arg(QString::number(content.schemaVersion), QString::number(content.servers),
                         QString::number(content.groups), QString::number(content.accounts),
                         QString::number(content.users), QString::number(content.auditRows));
    }
    if (!content.hasSeal) {
        text += QCoreApplication::translate("service", "没有校验和，不能发现每一处改动\n");
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
        Progress bar(QCoreApplication::translate("service", "备份"));
        content = backUp(store, file, call.isSet("force"), bar.counter());
    }
    return reportBackup(call, file, content, QCoreApplication::translate("service", "备份已完成"));
}

int runVerify(Invocation& call)
{
    const QString file = call.arguments().front();
    return reportBackup(call, file, verifyBackup(file), QCoreApplication::translate("service", "备份可用"));
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
        Progress bar(QCoreApplication::translate("service", "恢复"));
        content = restoreBackup(file, store, {call.isSet("force"), administrator, bar.counter()});
    }
    auditRestore(store, file, administrator);
    return reportBackup(call, file, content, QCoreApplication::translate("service", "数据库已恢复自备份"));
}

Command backupCommand(const char* name, const QString& summary, EStoreUse use, int (*run)(Invocation&))
{
    Command command(name, summary, use, run);
    command.hasJson = true;
    command.arguments = {{"file", QCoreApplication::translate("service", "备份文件"), false}};
    return command;
}

} // namespace

std::vector<Command> backupCommands()
{
    Command backup =
        backupCommand("backup", QCoreApplication::translate("service", "将数据库此刻的内容复制到一个文件并校验"),
                      EStoreUse::Named, runBackup);
    backup.details = QStringList{
        QCoreApplication::translate("service", "数据库可以正在使用。副本打开并确认每一页和每一处引用完好之后，文件才会"
                                               "出现；文件以校验和结尾。旧版本的数据库可以在新版本修改之前备份。"),
        QCoreApplication::translate(
            "service", "PostgreSQL 数据库由 pg_dump 以自定义格式写出，再由 pg_restore 读取检查；集群还需要持续归档。")};
    backup.examples = QStringList{"backup /backup/qav-20260105.db --store qav.db"};
    backup.options = {{"force", QCoreApplication::translate("service", "替换已有的文件")}};

    Command verify =
        backupCommand("verify", QCoreApplication::translate("service", "检查备份是否完整、未被改动且属于本系统"),
                      EStoreUse::None, runVerify);
    verify.details = QStringList{QCoreApplication::translate(
        "service", "校验和能发现任何一个字节的改动。没有校验和的文件由其他程序或旧版本产生，只检查其结构，结果中会说明"
                   "。含有数据服务所没有的表、视图、索引或触发器的文件会被拒绝。")};

    Command restore = backupCommand("restore", QCoreApplication::translate("service", "用备份替换数据库"),
                                    EStoreUse::Named, runRestore);
    restore.isAudited = true;
    restore.details = QStringList{
        QCoreApplication::translate("service",
                                    "首先校验备份。数据库正被任何程序打开时会被拒绝：请停止数据服务。使用 --force "
                                    "时仍会在一瞬间替换，那些程序随即看到备份的内容；不可用的数据库文件会改名保留。"),
        QCoreApplication::translate(
            "service", "备份之后的修改会丢失，审计记录也不例外。每个分系统的审计记录都会写明备份已恢复以及由谁恢复。"),
        QCoreApplication::translate("service",
                                    "编号不会重复使用：新的账号组和限额的编号大于备份和被替换数据库用过的全部编号，每个"
                                    "账号组和风控配置都得到新的修订，因此客户端先前读取的内容不能再保存。被替换的数据库"
                                    "不存在、无法读取或正在使用时，编号和修订会跳过一百万以上。")};
    restore.examples = QStringList{"restore /backup/qav-20260105.db --store qav.db"};
    restore.options = {
        {"force", QCoreApplication::translate("service", "即使数据库正在使用或文件不是数据库，也进行恢复")}};
    return {backup, verify, restore};
}

} // namespace service
