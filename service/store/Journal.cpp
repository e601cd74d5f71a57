#include "service/store/Journal.h"

namespace service
{

namespace
{

QByteArray bytesOf(const bson::BSONObj& document)
{
    return document.isEmpty() ? QByteArray() : QByteArray(document.objdata(), document.objsize());
}

} // namespace

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
