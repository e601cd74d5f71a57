// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Accounts.h"

#include <nvservice/Bson.h>
#include <utils/NVError.h>

#include <functional>

namespace service
{

/// One row of the audit: an attempted change, carried out or refused.
struct AuditRow {
    std::int64_t at = 0; ///< milliseconds since 1970 UTC
    std::string login;
    int operation = 0; ///< operation code of the request
    std::int32_t dataType = 0;
    std::string recordKey;
    std::string operationId;
    utils::NVError outcome;
    bson::BSONObj before; ///< empty: there was no record, or nothing was changed
    bson::BSONObj after;  ///< the stored state; of a refusal the requested state
};

void insertAudit(const ServerData& data, const AuditRow& row);

/// The record keys of audit rows that record the removal of rows.
constexpr char PrunedAuditKey[] = "audit";
constexpr char PrunedOperationsKey[] = "operation-log";

/// Removes at most `limit` audit rows from before a time, but never those that record a removal. Returns their number.
int removeAudit(const ServerData& data, std::int64_t before, int limit);
/// Removes at most `limit` stored answers from the time `from` to before another time, the oldest first. Returns their
/// number, and in `from` the time of the last one.
int removeOperations(const ServerData& data, std::int64_t& from, std::int64_t before, int limit);
/// Replaces the state before the change in the row with this time, log-in and record key.
void updateAuditBefore(const ServerData& data, const AuditRow& row);

/// Selects rows of the audit. Unset conditions are ignored.
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

/// Calls `found` with each row, the latest first.
void readAudit(const ServerData& data, const AuditFilter& filter, const std::function<void(const AuditRow&)>& found);

/// The outcome of the user's last attempt to change the record; empty if there was none.
std::optional<utils::NVError> findLastOutcome(const ServerData& data, const std::string& recordKey,
                                              std::int32_t dataType, const std::string& login);

/// The stored answer for an operation id.
struct LoggedOperation {
    std::string digest; ///< of the request
    utils::NVError outcome;
    std::int64_t newId = 0; ///< of the added record; 0 if none was added
};

std::optional<LoggedOperation> findOperation(const ServerData& data, const std::string& login,
                                             const std::string& operationId);
void insertOperation(const ServerData& data, const std::string& login, const std::string& operationId,
                     const LoggedOperation& operation, std::int64_t at);

} // namespace service
