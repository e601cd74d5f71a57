// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Prune.h"
#include "service/admin/Administration.h"
#include "service/engine/Refusal.h"

#include <nvservice/EZvDataOperation.h>

#include <QDateTime>
#include <QElapsedTimer>
#include <QThread>

namespace service
{

using utils::EErrorCode;

namespace
{

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

} // namespace

std::int64_t prune(Store& store, const SubSystem& server, const std::string& administrator, EJournal journal,
                   std::int64_t before)
{
    const std::int64_t now = QDateTime::currentMSecsSinceEpoch();
    AuditRow row;
    row.at = now;
    row.login = administrator;
    row.operation = static_cast<int>(nvservice::EZvDataOperation::Delete);
    row.recordKey = journal == EJournal::Audit ? PrunedAuditKey : PrunedOperationsKey;
    std::int64_t rows = 0;
    std::int64_t from = 0;
    Connection& connection = store.connection();
    carryOut(store, server, administrator, [&](Administration& administration) {
        administration.row = row;
        administration.row.before = documentOf(before, 0);
        requireOver(journal, before, now);
        administration.row.after = administration.row.before;
    });
    for (;;) {
        QElapsedTimer timer;
        timer.start();
        {
            const std::lock_guard<std::mutex> turn(store.writeMutex());
            Transaction transaction(connection, server.id);
            const int removed = journal == EJournal::Audit
                                    ? removeAudit({connection, server}, before, RowsAtOnce)
                                    : removeOperations({connection, server}, from, before, RowsAtOnce);
            if (removed == 0) {
                return rows;
            }
            row.before = documentOf(before, rows + removed);
            rows == 0 ? insertAudit({connection, server}, row) : updateAuditBefore({connection, server}, row);
            transaction.commit();
            rows += removed;
        }
        // As long as it took: whoever waits to write is let in.
        QThread::msleep(static_cast<unsigned long>(timer.elapsed()));
    }
}

} // namespace service
