// SPDX-License-Identifier: Apache-2.0
#include "service/store/ChangeLog.h"

#include "service/store/Documents.h"
#include "service/store/Query.h"

namespace service
{

std::int64_t currentEpoch(const ServerData& data)
{
    Query query(data.connection, QStringLiteral("SELECT max(revision) FROM epoch WHERE system_tag = ?"));
    return query.bind(data.server.systemTag).runAndNext() ? query.integer(0) : 0;
}

// The plus keeps SQLite from using an index in which the ids are in no order.

std::int64_t lastAuditId(const ServerData& data)
{
    Query query(data.connection, QStringLiteral("SELECT id FROM audit WHERE +server_id = ? ORDER BY id DESC LIMIT 1"));
    return query.bind(data.server.id).runAndNext() ? query.integer(0) : 0;
}

bool hasAuditRow(const ServerData& data, std::int64_t id)
{
    Query query(data.connection, QStringLiteral("SELECT 1 FROM audit WHERE id = ? AND server_id = ?"));
    return query.bind(id, data.server.id).runAndNext();
}

void readAttemptsSince(const ServerData& data, std::int64_t id, int limit,
                       const std::function<bool(LoggedAttempt)>& found)
{
    Query query(data.connection,
                QStringLiteral("SELECT id, login, at, data_type, record_key, operation_id, outcome FROM audit"
                               " WHERE +server_id = ? AND id > ? ORDER BY id DESC LIMIT ?"));
    bool isWanted = true;
    for (query.bind(data.server.id, id, limit).run(); isWanted && query.next();) {
        isWanted = found({query.integer(0),
                          {query.text(1), query.integer(2)},
                          query.number(3),
                          query.text(4),
                          query.text(5),
                          query.integer(6) == 0});
    }
}

std::int64_t findRemovalTime(const ServerData& data, std::int64_t id)
{
    Query query(data.connection, QStringLiteral("SELECT before_body FROM audit WHERE id = ?"));
    return query.bind(id).runAndNext() ? documentOf(query.blob(0)).getField("before").numberLong() : 0;
}

} // namespace service
