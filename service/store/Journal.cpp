// SPDX-License-Identifier: Apache-2.0
#include "service/store/Journal.h"

#include "service/store/Documents.h"

#include <QStringList>

#include <algorithm>
#include <variant>

namespace service
{

AuditWriter::AuditWriter(Connection& connection, const SubSystem& server)
    : m_server(server.id),
      m_insert(connection, QStringLiteral("INSERT INTO audit (server_id, at, login, operation, data_type, record_key,"
                                          " operation_id, outcome, message, before_body, after_body)"
                                          " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"))
{
}

void AuditWriter::insert(const AuditRow& row)
{
    m_insert.bind(m_server).bind(row.at).bind(row.login).bind(row.operation).bind(row.dataType).bind(row.recordKey);
    m_insert.bind(row.operationId).bind(static_cast<int>(row.outcome.code())).bind(row.outcome.errorMsg());
    m_insert.bind(bytesOf(row.before)).bind(bytesOf(row.after)).runLater();
}

namespace
{

/// Conditions of a statement with the values of their question marks.
class Conditions
{
public:
    explicit Conditions(QString sql) : m_sql(std::move(sql)) {}

    template <typename Value>
    void add(const char* condition, const std::optional<Value>& value)
    {
        if (value) {
            addText(condition).m_values.emplace_back(*value);
        }
    }
    Conditions& addText(const QString& condition)
    {
        m_sql += QStringLiteral(" AND ") + condition;
        return *this;
    }
    Conditions& addText(const char* condition) { return addText(QLatin1String(condition)); }

    const QString& sql() const { return m_sql; }
    void bindTo(Query& query) const
    {
        for (const auto& value : m_values) {
            std::visit([&query](const auto& each) { query.bind(each); }, value);
        }
    }

private:
    QString m_sql;
    std::vector<std::variant<std::int64_t, std::string>> m_values;
};

QString listed(const std::vector<std::int32_t>& numbers)
{
    QStringList texts;
    for (const std::int32_t number : numbers) {
        texts << QString::number(number);
    }
    return texts.join(QLatin1Char(','));
}

} // namespace

void readAudit(Connection& connection, const SubSystem& server, const AuditFilter& filter,
               const std::function<void(const AuditRow&)>& found)
{
    const QString documents =
        filter.withDocuments ? QStringLiteral(", before_body, after_body") : QStringLiteral(", NULL, NULL");
    Conditions conditions(QStringLiteral("SELECT at, login, operation, data_type, record_key, operation_id, outcome,"
                                         " message") +
                          documents + QStringLiteral(" FROM audit WHERE server_id = ?"));
    conditions.add("login = ?", filter.login);
    conditions.add("at >= ?", filter.since);
    conditions.add("at <= ?", filter.until);
    conditions.add("record_key = ?", filter.recordKey);
    if (filter.outcome) {
        conditions.add("outcome = ?", std::optional<std::int64_t>(static_cast<int>(*filter.outcome)));
    }
    if (filter.isSuccess) {
        conditions.addText(*filter.isSuccess ? "outcome = 0" : "outcome <> 0");
    }
    if (!filter.dataTypes.empty()) {
        conditions.addText(QStringLiteral("data_type IN (%1)").arg(listed(filter.dataTypes)));
    }
    QString sql = conditions.sql() + QStringLiteral(" ORDER BY at DESC, id DESC");
    if (filter.limit > 0) {
        sql += QStringLiteral(" LIMIT %1").arg(filter.limit);
    }

    Query query(connection, sql);
    query.bind(server.id);
    conditions.bindTo(query);
    for (query.run(); query.next();) {
        AuditRow row;
        row.at = query.integer(0);
        row.login = query.text(1);
        row.operation = static_cast<int>(query.integer(2));
        row.dataType = static_cast<std::int32_t>(query.integer(3));
        row.recordKey = query.text(4);
        row.operationId = query.text(5);
        row.outcome = utils::NVError(static_cast<utils::EErrorCode>(query.integer(6)), query.text(7));
        row.before = documentOf(query.blob(8));
        row.after = documentOf(query.blob(9));
        found(row);
    }
}

int removeAudit(Connection& connection, const SubSystem& server, std::int64_t before, int limit)
{
    Query remove(connection, QStringLiteral("DELETE FROM audit WHERE id IN (SELECT id FROM audit WHERE server_id = ?"
                                            " AND at < ? AND record_key NOT IN (?, ?) ORDER BY at LIMIT ?)"));
    remove.bind(server.id).bind(before).bind(PrunedAuditKey).bind(PrunedOperationsKey).bind(limit).run();
    return remove.affected();
}

int removeOperations(Connection& connection, const SubSystem& server, std::int64_t& from, std::int64_t before,
                     int limit)
{
    // The plus keeps the primary key from being chosen, in which the times are in no order.
    Query remove(connection, QStringLiteral("DELETE FROM operation_log WHERE (server_id, login, operation_id) IN"
                                            " (SELECT server_id, login, operation_id FROM operation_log"
                                            " WHERE +server_id = ? AND at >= ? AND at < ? ORDER BY at LIMIT ?)"
                                            " RETURNING at"));
    remove.bind(server.id).bind(from).bind(before).bind(limit).run();
    int removed = 0;
    for (; remove.next(); ++removed) {
        from = std::max(from, remove.integer(0));
    }
    return removed;
}

void updateAuditBefore(Connection& connection, const SubSystem& server, const AuditRow& row)
{
    Query(connection, QStringLiteral("UPDATE audit SET before_body = ? WHERE server_id = ? AND record_key = ?"
                                     " AND at = ? AND login = ?"))
        .bind(bytesOf(row.before))
        .bind(server.id)
        .bind(row.recordKey)
        .bind(row.at)
        .bind(row.login)
        .run();
}

std::optional<utils::NVError> findLastOutcome(Connection& connection, const SubSystem& server,
                                              const std::string& recordKey, std::int32_t dataType,
                                              const std::string& login)
{
    Query query(connection, QStringLiteral("SELECT outcome, message FROM audit WHERE server_id = ? AND record_key = ?"
                                           " AND data_type = ? AND login = ? ORDER BY at DESC, id DESC LIMIT 1"));
    query.bind(server.id).bind(recordKey).bind(dataType).bind(login);
    if (!query.runAndNext()) {
        return std::nullopt;
    }
    return utils::NVError(static_cast<utils::EErrorCode>(query.integer(0)), query.text(1));
}

std::optional<LoggedOperation> findOperation(Connection& connection, const SubSystem& server, const std::string& login,
                                             const std::string& operationId)
{
    Query query(connection, QStringLiteral("SELECT digest, outcome, message, new_id FROM operation_log"
                                           " WHERE server_id = ? AND login = ? AND operation_id = ?"));
    query.bind(server.id).bind(login).bind(operationId);
    if (!query.runAndNext()) {
        return std::nullopt;
    }
    return LoggedOperation{query.text(0),
                           utils::NVError(static_cast<utils::EErrorCode>(query.integer(1)), query.text(2)),
                           query.integer(3)};
}

void insertOperation(Connection& connection, const SubSystem& server, const std::string& login,
                     const std::string& operationId, const LoggedOperation& operation, std::int64_t at)
{
    Query insert(connection, QStringLiteral("INSERT INTO operation_log (server_id, login, operation_id, at, digest,"
                                            " outcome, message, new_id) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
    insert.bind(server.id).bind(login).bind(operationId).bind(at).bind(operation.digest);
    insert.bind(static_cast<int>(operation.outcome.code())).bind(operation.outcome.errorMsg()).bind(operation.newId);
    insert.runLater();
}

} // namespace service
