// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Groups.h"

#include <cstdint>
#include <functional>
#include <string>

namespace service
{

/// The order in which changes were committed. The audit rows of one server have their ids in this order, because
/// writers of a server take turns.

/// The revision of the last restored backup; 0 if there was none. Ids of audit rows count within it.
std::int64_t currentEpoch(const ServerData& data);
/// The id of the last audit row; 0 if there is none.
std::int64_t lastAuditId(const ServerData& data);
bool hasAuditRow(const ServerData& data, std::int64_t id);

/// What an audit row says about a commit, without its documents.
struct LoggedAttempt {
    std::int64_t id = 0;
    Change change;
    std::int32_t dataType = 0;
    std::string recordKey;
    std::string operationId;
    bool isSuccess = false;
};

/// Calls `found` with the audit rows after `id`, the latest first, at most `limit`, until it returns false.
void readAttemptsSince(const ServerData& data, std::int64_t id, int limit,
                       const std::function<bool(LoggedAttempt)>& found);
/// Of a row that records the removal of audit rows: the time before which they were removed.
std::int64_t findRemovalTime(const ServerData& data, std::int64_t id);

} // namespace service
