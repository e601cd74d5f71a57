#include "service/store/Journal.h"

#include "service/store/Documents.h"

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
    m_insert.bind(bytesOf(row.before)).bind(bytesOf(row.after)).run();
}

std::optional<utils::NVError> findLastOutcome(Connection& connection, const SubSystem& server,
                                              const std::string& recordKey, std::int32_t dataType,
                                              const std::string& login)
{
    Query query(connection, QStringLiteral("SELECT outcome, message FROM audit WHERE server_id = ? AND record_key = ?"
                                           " AND data_type = ? AND login = ? ORDER BY at DESC, id DESC LIMIT 1"));
    query.bind(server.id).bind(recordKey).bind(dataType).bind(login);
    if (!query.runAndNext())
        return std::nullopt;
    return utils::NVError(static_cast<utils::EErrorCode>(query.integer(0)), query.text(1));
}

std::optional<LoggedOperation> findOperation(Connection& connection, const SubSystem& server, const std::string& login,
                                             const std::string& operationId)
{
    Query query(connection, QStringLiteral("SELECT digest, outcome, message FROM operation_log"
                                           " WHERE server_id = ? AND login = ? AND operation_id = ?"));
    query.bind(server.id).bind(login).bind(operationId);
    if (!query.runAndNext())
        return std::nullopt;
    return LoggedOperation{query.text(0),
                           utils::NVError(static_cast<utils::EErrorCode>(query.integer(1)), query.text(2))};
}

void insertOperation(Connection& connection, const SubSystem& server, const std::string& login,
                     const std::string& operationId, const LoggedOperation& operation, std::int64_t at)
{
    Query insert(connection, QStringLiteral("INSERT INTO operation_log (server_id, login, operation_id, at, digest,"
                                            " outcome, message) VALUES (?, ?, ?, ?, ?, ?, ?)"));
    insert.bind(server.id).bind(login).bind(operationId).bind(at).bind(operation.digest);
    insert.bind(static_cast<int>(operation.outcome.code())).bind(operation.outcome.errorMsg()).run();
}

} // namespace service
