// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Accounts.h"

#include <nvservice/Bson.h>
#include <utils/NVError.h>

#include <vector>

namespace service
{

/// One row of the audit: an attempted change, carried out or refused.
struct AuditRow {
    std::int64_t id = 0; ///< of a stored row
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

/// The row of a group belongs to the institution that the group, with the changes so far, belongs to.
void insertAudit(const ServerData& data, const AuditRow& row);

/// The key under which all changes of a group, its risk configuration and its e-mail rules are audited.
std::string groupKey(const SubSystem& server, std::int32_t groupId);
/// The data types of the rows with such a key. Other records may have the same key.
const std::vector<std::int32_t>& groupDataTypes();
/// The group that a row is about; empty for none. An attempt to add a group has no id yet: -1.
std::optional<std::int32_t> groupOf(const SubSystem& server, const AuditRow& row);

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
