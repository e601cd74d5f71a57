#pragma once

#include "service/store/Groups.h"
#include "service/store/Users.h"

#include <string>

namespace service
{

/// "姓名（用户名）于2026-01-05 09:30:00", in the service's time zone.
std::string whoAndWhen(Connection& connection, const SubSystem& server, const Change& change);

/// Throws `Refusal` (NotFound) for a group that isn't there. Whoever is bound to no institution is told who deleted it.
[[noreturn]] void refuseMissingGroup(Connection& connection, const SubSystem& server, const StoredUser& user,
                                     std::int64_t groupId);

/// Throws `Refusal`: NotFound, or OutOfScope for a group of an institution that isn't the user's.
GroupHead requireGroupInScope(Connection& connection, const SubSystem& server, const StoredUser& user,
                              std::int64_t groupId);

} // namespace service
