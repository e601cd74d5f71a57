#pragma once

#include "service/store/Groups.h"
#include "service/store/Users.h"

#include <nvservice/Bson.h>
#include <nvservice/EZvDataOperation.h>

#include <string>

namespace service
{

/// What an operation did, for the audit.
struct AppliedChange {
    std::string recordKey;
    bson::BSONObj before;
    bson::BSONObj after;
    std::int32_t newId = 0; ///< of a record that was added
};

/// Carries out add, modify and delete of a group inside the caller's transaction. Throws `Refusal` before anything is
/// written, or `StoreError`.
AppliedChange applyGroupOperation(Connection& connection, const SubSystem& server, const StoredUser& user,
                                  nvservice::EZvDataOperation operation, const nvservice::CAccountGroup& sent,
                                  std::int64_t now);

} // namespace service
