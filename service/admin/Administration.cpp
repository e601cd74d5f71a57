// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Administration.h"
#include "service/engine/Refusal.h"

#include <QDateTime>

namespace service
{

bool carryOut(Store& store, const SubSystem& server, const std::string& administrator,
              const std::function<void(Administration&)>& change)
{
    Connection& connection = store.connection();
    const std::lock_guard<std::mutex> turn(store.writeMutex());
    Transaction transaction(connection, server.id);
    Administration administration{{connection, server}, {}};
    AuditRow& row = administration.row;
    row.at = QDateTime::currentMSecsSinceEpoch();
    row.login = administrator;
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
