// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/admin/CommandLine.h"

#include <set>

namespace service
{

/// The rights given by numbers, keys or names; "all" means all rights. Throws `Refusal` (InvalidValue).
std::set<int> requireRights(const QStringList& texts);

/// Prints the rights of one user (--user), or all rights that have a name or that a user has.
int listRights(Invocation& call);

} // namespace service
