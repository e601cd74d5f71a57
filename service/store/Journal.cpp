// SPDX-License-Identifier: Apache-2.0
#include "service/store/Journal.h"

#include "service/store/Documents.h"
#include "service/store/Query.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/DataType.h>

#include <algorithm>

namespace service
{

namespace
{

/// The code in a column and the text in the next.
utils::NVError outcomeOf(const Query& row, int column)
{
    return {static_cast<utils::EErrorCode>(row.integer(column)), row.text(column + 1)};
}

} // namespace

void insertAudit(const ServerData& data, const AuditRow& row)
{
    Query insert(data.connection,
                 QStringLiteral("INSERT INTO audit (server_id, at, login, operation, data_type, record_key,"
                                " operation_id, outcome, message, before_body, after_body, institution_id)"
                                " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?,"
                                " (SELECT institution_id FROM account_group_history"
                                " WHERE server_id = ? AND group_id = ? ORDER BY revision DESC LIMIT 1))"));
    insert.bind(data.server.id, row.at, row.login, row.operation, row.dataType, row.recordKey, row.operationId);
    insert.bind(row.outcome.code(), row.outcome.errorMsg(), bytesOf(row.before), bytesOf(row.after));
    insert.bind(data.server.id, groupOf(data.server, row).value_or(-1)).runLater();
}

std::string groupKey(const SubSystem& server, std::int32_t groupId)
{
    nvservice::CAccountGroup group;
    group.groupId = groupId;
    group.setSystemTag(server.systemTag);
    return group.getKey();
}

const std::vector<std::int32_t>& groupDataTypes()
{
    namespace DataType = nvservice::DataType;
    static const std::vector<std::int32_t> types = {DataType::AccountGroup, DataType::GroupRiskConfig,
                                                    DataType::EmailRule, DataType::GroupRestore};
    return types;
}

std::optional<std::int32_t> groupOf(const SubSystem& server, const AuditRow& row)
{
    const auto& types = groupDataTypes();
    if (std::find(types.begin(), types.end(), row.dataType) == types.end()) {
        return std::nullopt;
    }
    const int id = QString::fromStdString(row.recordKey).section(QLatin1Char('|'), -1).toInt();
    return groupKey(server, id) == row.recordKey ? std::make_optional(id) : std::nullopt;
}

int removeAudit(const ServerData& data, std::int64_t before, int limit)
{
    Query remove(data.connection,
                 QStringLiteral("DELETE FROM audit WHERE id IN (SELECT id FROM audit WHERE server_id = ?"
                                " AND at < ? AND record_key NOT IN (?, ?) ORDER BY at LIMIT ?)"));
    return remove.bind(data.server.id, before, PrunedAuditKey, PrunedOperationsKey, limit).run().affected();
}

int removeOperations(const ServerData& data, std::int64_t& from, std::int64_t before, int limit)
{
    // The plus keeps SQLite from using the primary key, in which the times are in no order.
    Query remove(data.connection, QStringLiteral("DELETE FROM operation_log WHERE (server_id, login, operation_id) IN"
                                                 " (SELECT server_id, login, operation_id FROM operation_log"
                                                 " WHERE +server_id = ? AND at >= ? AND at < ? ORDER BY at LIMIT ?)"
                                                 " RETURNING at"));
    remove.bind(data.server.id, from, before, limit).run();
    int removed = 0;
    for (; remove.next(); ++removed) {
        from = std::max(from, remove.integer(0));
    }
    return removed;
}

void updateAuditBefore(const ServerData& data, const AuditRow& row)
{
    Query update(data.connection, QStringLiteral("UPDATE audit SET before_body = ? WHERE server_id = ?"
                                                 " AND record_key = ? AND at = ? AND login = ?"));
    update.bind(bytesOf(row.before), data.server.id, row.recordKey, row.at, row.login).run();
}

std::optional<utils::NVError> findLastOutcome(const ServerData& data, const std::string& recordKey,
                                              std::int32_t dataType, const std::string& login)
{
    Query query(data.connection,
                QStringLiteral("SELECT outcome, message FROM audit WHERE server_id = ? AND record_key = ?"
                               " AND data_type = ? AND login = ? ORDER BY at DESC, id DESC LIMIT 1"));
    return query.bind(data.server.id, recordKey, dataType, login).first([](const Query& row) {
        return outcomeOf(row, 0);
    });
}

std::optional<LoggedOperation> findOperation(const ServerData& data, const std::string& login,
                                             const std::string& operationId)
{
    Query query(data.connection, QStringLiteral("SELECT digest, outcome, message, new_id FROM operation_log"
                                                " WHERE server_id = ? AND login = ? AND operation_id = ?"));
    return query.bind(data.server.id, login, operationId).first([](const Query& row) {
        return LoggedOperation{row.text(0), outcomeOf(row, 1), row.integer(3)};
    });
}

void insertOperation(const ServerData& data, const std::string& login, const std::string& operationId,
                     const LoggedOperation& operation, std::int64_t at)
{
    Query insert(data.connection, QStringLiteral("INSERT INTO operation_log (server_id, login, operation_id, at,"
                                                 " digest, outcome, message, new_id) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
    insert.bind(data.server.id, login, operationId, at, operation.digest, operation.outcome.code(),
                operation.outcome.errorMsg(), operation.newId);
    insert.runLater();
}

} // namespace service
