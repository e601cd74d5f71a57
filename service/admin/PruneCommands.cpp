// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Commands.h"
#include "service/admin/GroupArgument.h"
#include "service/admin/Prune.h"
#include "service/admin/Table.h"

#include <QJsonObject>

namespace service
{

namespace
{

int runPrune(Invocation& call, EJournal journal)
{
    call.requiredValue("before");
    const std::int64_t before = requireTime(call, "before", false);
    const std::int64_t rows = prune(call.store(), call.server(), call.administrator(), journal, before);
    if (call.wantsJson()) {
        printJson(QJsonObject{{"removed", static_cast<double>(rows)}});
    } else {
        printText(QStringLiteral("已清理 %1 条\n").arg(rows));
    }
    return Done;
}

Command pruneCommand(EJournal journal)
{
    Command command;
    command.storeUse = EStoreUse::Write;
    command.hasServer = command.hasJson = true;
    command.options = {
        {"before", "Only what is older: 2026-01-05, '2026-01-05 09:30', '2026-01-05 09:30:15'.", "time"}};
    command.run = [journal](Invocation& call) { return runPrune(call, journal); };
    return command;
}

} // namespace

std::vector<Command> pruneCommands()
{
    Command audit = pruneCommand(EJournal::Audit);
    audit.name = QStringLiteral("audit prune");
    audit.summary = QStringLiteral("Remove old rows of the audit.");
    audit.details =
        QStringList{"The service may run meanwhile: rows go in small transactions, between which others write. An "
                    "audit row tells who "
                    "removed how many rows from before which time; such rows are never removed. When the command is "
                    "interrupted, the row "
                    "tells what is gone so far. History and past states of groups and risk configurations stay.",
                    "A SQLite file keeps its size; the room is used again."};
    audit.examples = QStringList{"audit prune --server SH01 --before 2025-01-01"};

    Command operations = pruneCommand(EJournal::Operations);
    operations.name = QStringLiteral("operation-log prune");
    operations.summary = QStringLiteral("Remove old answers to operations.");
    operations.details = QStringList{
        QStringLiteral("The log of operations keeps the answer to each operation of a client, so that one that is sent "
                       "again is carried out once. Answers of the last %1 hours stay. For the rest see 'audit prune'.")
            .arg(KeptOperationHours)};
    operations.examples = QStringList{"operation-log prune --server SH01 --before 2026-01-05"};
    return {audit, operations};
}

} // namespace service
