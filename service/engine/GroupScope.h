// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/RequestContext.h"
#include "service/store/Groups.h"

#include <string>

namespace service
{

/// The key of a group and of its risk configuration, under which all changes of both are audited, those of the e-mail
/// rules too.
std::string groupKey(const SubSystem& server, std::int32_t groupId);

/// "姓名（用户名）于2026-01-05 09:30:00", in the service's time zone.
std::string whoAndWhen(const ServerData& data, const Change& change);

/// Whether the user may see and change what belongs to the institution.
bool isInScope(const StoredUser& user, InstitutionId institution);
/// Throws `Refusal` (OutOfScope).
void requireInScope(const StoredUser& user, InstitutionId institution);

/// Throws `Refusal` (NotFound) for a group that isn't there. Whoever is bound to no institution is told who deleted it.
[[noreturn]] void refuseMissingGroup(const RequestContext& context, std::int64_t groupId);

/// Throws `Refusal`: NotFound, or OutOfScope for a group of an institution that isn't the user's.
GroupHead requireGroupInScope(const RequestContext& context, std::int64_t groupId);

} // namespace service
