#pragma once

#include "service/store/Accounts.h"

#include <nvservice/Bson.h>
#include <utils/NVError.h>

#include <functional>

namespace service
{

/// One row of the audit: an attempt to change something, carried out or refused.
struct AuditRow {
    std::int64_t at = 0; ///< milliseconds since 1970 UTC
    std::string login;
    int operation = 0; ///< operation code of the request
    std::int32_t dataType = 0;
    std::string recordKey;
    std::string operationId;
    utils::NVError outcome;
    bson::BSONObj before; ///< empty: there was no record, or nothing was changed
    bson::BSONObj after;  ///< the state that was stored, or for a refusal the state that was asked for
};

/// Writes audit rows with one prepared statement.
class AuditWriter
{
public:
    AuditWriter(Connection& connection, const SubSystem& server);
    void insert(const AuditRow& row);

private:
    std::int64_t m_server;
    Query m_insert;
};

/// The record keys of what tells that rows were removed.
constexpr char PrunedAuditKey[] = "audit";
constexpr char PrunedOperationsKey[] = "operation-log";

/// Removes at most `limit` rows of the audit from before a time, but for those that tell of removals; gives their
/// number.
int removeAudit(Connection& connection, const SubSystem& server, std::int64_t before, int limit);
/// Removes at most `limit` answers to operations from `from` on and before a time, the oldest first; gives their
/// number, and in `from` the time of the last one.
int removeOperations(Connection& connection, const SubSystem& server, std::int64_t& from, std::int64_t before,
                     int limit);
/// Stores another state before the change in the row that has this time, log-in and record key.
void updateAuditBefore(Connection& connection, const SubSystem& server, const AuditRow& row);

/// Which rows of the audit are wanted; what is not set is not looked at.
struct AuditFilter {
    std::optional<std::string> login;
    std::optional<std::int64_t> since; ///< milliseconds since 1970 UTC, inclusive
    std::optional<std::int64_t> until; ///< inclusive
    std::optional<std::string> recordKey;
    std::vector<std::int32_t> dataTypes; ///< empty: all
    std::optional<bool> isSuccess;
    std::optional<utils::EErrorCode> outcome;
    std::int64_t limit = 0; ///< 0: none
    bool withDocuments = false;
};

/// Gives the rows to `found`, the latest first.
void readAudit(Connection& connection, const SubSystem& server, const AuditFilter& filter,
               const std::function<void(const AuditRow&)>& found);

/// How the user's last attempt to change the record ended; empty when there was none.
std::optional<utils::NVError> findLastOutcome(Connection& connection, const SubSystem& server,
                                              const std::string& recordKey, std::int32_t dataType,
                                              const std::string& login);

/// What was answered to an operation id.
struct LoggedOperation {
    std::string digest; ///< of the request
    utils::NVError outcome;
    std::int64_t newId = 0; ///< of the record that was added; 0 when none was
};

std::optional<LoggedOperation> findOperation(Connection& connection, const SubSystem& server, const std::string& login,
                                             const std::string& operationId);
void insertOperation(Connection& connection, const SubSystem& server, const std::string& login,
                     const std::string& operationId, const LoggedOperation& operation, std::int64_t at);

} // namespace service
