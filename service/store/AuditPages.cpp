// SPDX-License-Identifier: Apache-2.0
#include "service/store/AuditPages.h"

#include "service/store/Query.h"

#include <algorithm>
#include <variant>

namespace service
{

namespace
{

constexpr int LeastChunk = 16;

/// A condition that an index begins with, and the value of its question mark.
struct IndexedCondition {
    const char* sql = "";
    std::optional<std::variant<std::int64_t, std::string>> value;
};

/// The condition that is likely to match the fewest rows. Without any, the rows of the server are in the order of time.
IndexedCondition indexedConditionOf(const AuditFilter& filter)
{
    if (filter.recordKey) {
        return {" AND record_key = ?", *filter.recordKey};
    }
    if (filter.outcome && *filter.outcome != utils::EErrorCode::Success) {
        return {" AND outcome <> 0 AND outcome = ?", static_cast<std::int64_t>(*filter.outcome)};
    }
    if (filter.isSuccess && !*filter.isSuccess) {
        return {" AND outcome <> 0", std::nullopt};
    }
    if (filter.login) {
        return {" AND login = ?", *filter.login};
    }
    if (filter.institution) {
        return {" AND institution_id = ?", *filter.institution};
    }
    return {};
}

template <typename Value, typename Wanted>
bool isWanted(const Value& value, const std::optional<Wanted>& wanted)
{
    return !wanted || value == *wanted;
}

bool matches(const AuditFilter& filter, const AuditRow& row, const InstitutionId& institution)
{
    const auto& types = filter.dataTypes;
    return isWanted(row.login, filter.login) && isWanted(row.recordKey, filter.recordKey) &&
           isWanted(row.operation, filter.operation) && isWanted(row.outcome.code(), filter.outcome) &&
           isWanted(row.outcome.isSuccess(), filter.isSuccess) &&
           (!filter.institution || institution == filter.institution) &&
           (types.empty() || std::find(types.begin(), types.end(), row.dataType) != types.end());
}

/// Reads rows by the indexed condition and the times alone. Calls `found` with each until it returns false. Returns
/// the number of rows.
template <typename Found>
int readRows(const ServerData& data, const AuditFilter& filter, const std::optional<AuditPosition>& from, int limit,
             Found found)
{
    const IndexedCondition indexed = indexedConditionOf(filter);
    QString sql = QStringLiteral("SELECT id, at, login, operation, data_type, record_key, operation_id, outcome,"
                                 " message, institution_id, (SELECT u.display_name FROM app_user u"
                                 " WHERE u.server_id = audit.server_id AND u.login = audit.login)"
                                 " FROM audit WHERE server_id = ?") +
                  QLatin1String(indexed.sql);
    // Only one of two upper bounds would be looked up.
    const bool isFromBefore = from && (!filter.until || from->at <= *filter.until);
    sql += filter.since ? QStringLiteral(" AND at >= ?") : QString();
    sql += isFromBefore   ? QStringLiteral(" AND (at, id) < (?, ?)")
           : filter.until ? QStringLiteral(" AND at <= ?")
                          : QString();
    Query query(data.connection, sql + QStringLiteral(" ORDER BY at DESC, id DESC LIMIT ?"));
    query.bind(data.server.id);
    if (indexed.value) {
        std::visit([&query](const auto& value) { query.bind(value); }, *indexed.value);
    }
    query.bindIfSet(filter.since);
    if (isFromBefore) {
        query.bind(from->at, from->id);
    } else {
        query.bindIfSet(filter.until);
    }
    int read = 0;
    for (query.bind(limit).run(); query.next();) {
        ++read;
        AuditRow row;
        row.id = query.integer(0);
        row.at = query.integer(1);
        row.login = query.text(2);
        row.operation = query.number(3);
        row.dataType = query.number(4);
        row.recordKey = query.text(5);
        row.operationId = query.text(6);
        row.outcome = {static_cast<utils::EErrorCode>(query.integer(7)), query.text(8)};
        if (!found(row, query.optionalInteger(9), query.text(10))) {
            break;
        }
    }
    return read;
}

} // namespace

AuditPage readAuditPage(const ServerData& data, const AuditFilter& filter, const std::optional<AuditPosition>& from,
                        int limit)
{
    AuditPage page;
    std::optional<AuditPosition> last = from;
    const auto wanted = static_cast<std::size_t>(limit);
    int read = 0;
    // Chunks grow, so that few rows are read in vain if most match, and few statements run if hardly any does.
    const auto nextChunk = [&](int chunk) {
        const int matching = static_cast<int>(page.rows.size());
        const int enough = 2 * (limit + 1 - matching) * read / std::max(matching, 1);
        return std::min({2 * chunk, MostAuditRowsRead - read, std::max(enough, LeastChunk)});
    };
    for (int chunk = limit + 1;; chunk = nextChunk(chunk)) {
        const auto add = [&](AuditRow& row, const InstitutionId& institution, const std::string& userName) {
            if (page.rows.size() == wanted) {
                page.next = last;
                return false;
            }
            last = {row.at, row.id};
            if (matches(filter, row, institution)) {
                page.userNames.emplace(row.login, userName);
                page.rows.push_back(std::move(row));
            }
            return true;
        };
        const int found = readRows(data, filter, last, chunk, add);
        read += found;
        if (page.next || found < chunk) {
            return page;
        }
        if (read >= MostAuditRowsRead) {
            page.next = last;
            return page;
        }
    }
}

AuditBodies loadAuditBodies(const ServerData& data, std::int64_t id)
{
    Query query(data.connection, QStringLiteral("SELECT before_body, after_body FROM audit WHERE id = ?"));
    return query.bind(id).runAndNext() ? AuditBodies{query.blob(0), query.blob(1)} : AuditBodies();
}

} // namespace service
