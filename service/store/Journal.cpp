// SPDX-License-Identifier: Apache-2.0
#include "service/store/Journal.h"

#include "service/store/Documents.h"
#include "service/store/Query.h"

#include <QStringList>

#include <algorithm>
#include <variant>

namespace service
{

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

/// The code in a column and the text in the next.
utils::NVError outcomeOf(const Query& row, int column)
{
    return {static_cast<utils::EErrorCode>(row.integer(column)), row.text(column + 1)};
}

QString listed(const std::vector<std::int32_t>& numbers)
{
    QStringList texts;
    for (const std::int32_t number : numbers) {
        texts << QString::number(number);
    }
    return texts.join(QLatin1Char(','));
}

} // namespace

void insertAudit(const ServerData& data, const AuditRow& row)
{
    Query insert(data.connection, QStringLiteral("INSERT INTO audit (server_id, at, login, operation, data_type,"
                                                 " record_key, operation_id, outcome, message, before_body, after_body)"
                                                 " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    insert.bind(data.server.id, row.at, row.login, row.operation, row.dataType, row.recordKey, row.operationId);
    insert.bind(row.outcome.code(), row.outcome.errorMsg(), bytesOf(row.before), bytesOf(row.after)).runLater();
}

void readAudit(const ServerData& data, const AuditFilter& filter, const std::function<void(const AuditRow&)>& found)
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

    Query query(data.connection, sql);
    query.bind(data.server.id);
    conditions.bindTo(query);
    for (query.run(); query.next();) {
        AuditRow row;
        row.at = query.integer(0);
        row.login = query.text(1);
        row.operation = query.number(2);
        row.dataType = query.number(3);
        row.recordKey = query.text(4);
        row.operationId = query.text(5);
        row.outcome = outcomeOf(query, 6);
        row.before = documentOf(query.blob(8));
        row.after = documentOf(query.blob(9));
        found(row);
    }
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
