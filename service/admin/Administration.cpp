// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Administration.h"
#include "service/engine/Refusal.h"

#include <QDateTime>

namespace service
{

Administrator administratorOf(Invocation& call)
{
    return {call.store(), call.server(), call.administrator()};
}

bool carryOut(const Administrator& administrator, nvservice::EZvDataOperation operation, const std::string& recordKey,
              const std::function<void(Administration&)>& change)
{
    Connection& connection = administrator.store.connection();
    const std::lock_guard<std::mutex> turn(administrator.store.writeMutex());
    Transaction transaction(connection, administrator.server.id);
    Administration administration{{connection, administrator.server}, {}};
    AuditRow& row = administration.row;
    row.at = QDateTime::currentMSecsSinceEpoch();
    row.login = administrator.name;
    row.operation = static_cast<int>(operation);
    row.recordKey = recordKey;
    connection.exec(QStringLiteral("SAVEPOINT administration"));
    try {
        change(administration);
    } catch (const Refusal& refusal) {
        connection.exec(QStringLiteral("ROLLBACK TO administration"));
        row.outcome = refusal.error();
        insertAudit(administration, row);
        transaction.commit();
        throw;
    }
    if (row.before.binaryEqual(row.after)) {
        return false;
    }
    insertAudit(administration, row);
    transaction.commit();
    return true;
}

} // namespace service
