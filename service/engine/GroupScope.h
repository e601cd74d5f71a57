// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/RequestContext.h"
#include "service/store/Groups.h"
#include "service/store/Journal.h"

#include <string>

namespace service
{

/// "2026-01-05 09:30:00", in the service's time zone.
std::string timeText(std::int64_t at);

/// "姓名（用户名）于2026-01-05 09:30:00", in the service's time zone.
std::string whoAndWhen(const ServerData& data, const Change& change);

/// True if the user may see and change data of the institution.
bool isInScope(const StoredUser& user, InstitutionId institution);
/// Throws `Refusal` (OutOfScope).
void requireInScope(const StoredUser& user, InstitutionId institution);

/// Throws `Refusal` (NotFound) for a group that does not exist. Only users without an institution learn who deleted it.
[[noreturn]] void refuseMissingGroup(const RequestContext& context, std::int64_t groupId);

/// Throws `Refusal`: NotFound, or OutOfScope for a group of another institution than the user's.
GroupHead requireGroupInScope(const RequestContext& context, std::int64_t groupId);

} // namespace service
