// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Administration.h"
#include "service/admin/Commands.h"
#include "service/admin/GroupArgument.h"
#include "service/admin/Table.h"
#include "service/engine/Refusal.h"

#include <utils/Translation.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QThread>

namespace service
{

using nvservice::EZvDataOperation;
using utils::EErrorCode;

namespace
{

enum class EJournal {
    Audit,      ///< except the rows about pruning itself
    Operations, ///< the stored answers by operation id
};

/// How long an answer is kept, so that a repeated operation is recognised.
constexpr std::int64_t KeptOperationHours = 24;
constexpr int RowsAtOnce = 1000;
constexpr std::int64_t Hour = 60LL * 60 * 1000;

void requireOver(EJournal journal, std::int64_t before, std::int64_t now)
{
    if (before > now) {
        throw Refusal(EErrorCode::InvalidValue, utils::text("service", "清理的截止时间不能晚于现在"));
    }
    if (journal == EJournal::Operations && before > now - KeptOperationHours * Hour) {
        throw Refusal(
            EErrorCode::InvalidValue,
            utils::filled(utils::text("service", "最近%1小时的操作编号可能还会重发，不能清理"), KeptOperationHours));
    }
}

bson::BSONObj documentOf(std::int64_t before, std::int64_t rows)
{
    bson::BSONObjBuilder document;
    document.append("before", static_cast<long long>(before)).append("rows", static_cast<long long>(rows));
    return document.obj();
}

/// Removes the rows from before a time (milliseconds since 1970 UTC) and returns their number. It works in small
/// transactions, with pauses for other writers. At every moment one audit row has the number of removed rows.
std::int64_t prune(const Administrator& administrator, EJournal journal, std::int64_t before)
{
    AuditRow row;
    row.at = QDateTime::currentMSecsSinceEpoch();
    row.login = administrator.name;
    row.operation = static_cast<int>(EZvDataOperation::Delete);
    row.recordKey = journal == EJournal::Audit ? PrunedAuditKey : PrunedOperationsKey;
    carryOut(administrator, EZvDataOperation::Delete, row.recordKey, [&](Administration& administration) {
        administration.row.before = documentOf(before, 0);
        requireOver(journal, before, row.at);
        administration.row.after = administration.row.before;
    });
    const ServerData data{administrator.store.connection(), administrator.server};
    std::int64_t rows = 0;
    for (std::int64_t from = 0;;) {
        QElapsedTimer timer;
        timer.start();
        {
            const std::lock_guard<std::mutex> turn(administrator.store.writeMutex());
            Transaction transaction(data.connection, data.server.id);
            const int removed = journal == EJournal::Audit ? removeAudit(data, before, RowsAtOnce)
                                                           : removeOperations(data, from, before, RowsAtOnce);
            if (removed == 0) {
                return rows;
            }
            row.before = documentOf(before, rows + removed);
            rows == 0 ? insertAudit(data, row) : updateAuditBefore(data, row);
            transaction.commit();
            rows += removed;
        }
        // A pause of the same length lets other writers in.
        QThread::msleep(static_cast<unsigned long>(timer.elapsed()));
    }
}

Command pruneCommand(const char* name, const QString& summary, EJournal journal)
{
    Command command(name, summary, EStoreUse::Write, [journal](Invocation& call) {
        call.requiredValue("before");
        const std::int64_t before = requireTime(call, "before", false);
        const auto rows = static_cast<int>(prune(administratorOf(call), journal, before));
        return report(call, {{"removed", rows}},
                      QCoreApplication::translate("service", "已清理 %n 条\n", nullptr, rows));
    });
    command.hasJson = true;
    command.options = {
        {"before",
         QCoreApplication::translate("service", "只清理更早的：2026-01-05、'2026-01-05 09:30'、'2026-01-05 09:30:15'"),
         "time"}};
    return command;
}

} // namespace

std::vector<Command> pruneCommands()
{
    Command audit =
        pruneCommand("audit prune", QCoreApplication::translate("service", "清理旧的审计记录"), EJournal::Audit);
    audit.details = QStringList{
        QCoreApplication::translate(
            "service",
            "数据服务可以同时运行：记录分小批清理，其间其他程序可以写入。一条审计记录写明谁清理了何时以前的多少条记录，"
            "这样的记录永不清理。命令中断时，该记录写明已清理的数量。账号组和风控配置的历史和过去状态保留不变。"),
        QCoreApplication::translate("service", "SQLite 文件的大小不变，空出的空间会再次使用。")};
    audit.examples = QStringList{"audit prune --server SH01 --before 2025-01-01"};

    Command operations = pruneCommand("operation-log prune", QCoreApplication::translate("service", "清理旧的操作应答"),
                                      EJournal::Operations);
    operations.details =
        QStringList{QCoreApplication::translate("service", "操作日志保存对客户端每个操作的应答，使重发的操作只执行一次"
                                                           "。最近 %1 小时的应答会保留。其余说明见 audit prune。")
                        .arg(KeptOperationHours)};
    operations.examples = QStringList{"operation-log prune --server SH01 --before 2026-01-05"};
    return {audit, operations};
}

} // namespace service
