// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Administration.h"
#include "service/admin/Commands.h"
#include "service/admin/GroupArgument.h"
#include "service/admin/Table.h"
#include "service/engine/Refusal.h"

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
        throw Refusal(EErrorCode::InvalidValue, "清理的截止时间不能晚于现在");
    }
    if (journal == EJournal::Operations && before > now - KeptOperationHours * Hour) {
        throw Refusal(EErrorCode::InvalidValue,
                      "最近" + std::to_string(KeptOperationHours) + "小时的操作编号可能还会重发，不能清理");
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

Command pruneCommand(const char* name, const char* summary, EJournal journal)
{
    Command command(name, summary, EStoreUse::Write, [journal](Invocation& call) {
        call.requiredValue("before");
        const std::int64_t before = requireTime(call, "before", false);
        const std::int64_t rows = prune(administratorOf(call), journal, before);
        return report(call, {{"removed", Cell(rows)}}, QStringLiteral("已清理 %1 条\n").arg(rows));
    });
    command.hasJson = true;
    command.options = {
        {"before", "Only what is older: 2026-01-05, '2026-01-05 09:30', '2026-01-05 09:30:15'.", "time"}};
    return command;
}

} // namespace

std::vector<Command> pruneCommands()
{
    Command audit = pruneCommand("audit prune", "Remove old rows of the audit.", EJournal::Audit);
    audit.details = QStringList{"The service may run meanwhile: rows go in small transactions, between which others "
                                "write. An audit row tells who removed how many rows from before which time; such rows "
                                "are never removed. When the command is interrupted, the row tells what is gone so "
                                "far. History and past states of groups and risk configurations stay.",
                                "A SQLite file keeps its size; the room is used again."};
    audit.examples = QStringList{"audit prune --server SH01 --before 2025-01-01"};

    Command operations = pruneCommand("operation-log prune", "Remove old answers to operations.", EJournal::Operations);
    operations.details = QStringList{
        QStringLiteral("The log of operations keeps the answer to each operation of a client, so that one that is sent "
                       "again is carried out once. Answers of the last %1 hours stay. For the rest see 'audit prune'.")
            .arg(KeptOperationHours)};
    operations.examples = QStringList{"operation-log prune --server SH01 --before 2026-01-05"};
    return {audit, operations};
}

} // namespace service
