#pragma once

#include "service/admin/CommandLine.h"

#include <set>

namespace service
{

/// The rights that numbers, keys or names stand for; "all" stands for every one. Throws `Refusal` (InvalidValue).
std::set<int> requireRights(const QStringList& texts);

/// Writes the rights, those of one user (--user) or every one that has a name or that somebody has.
int listRights(Invocation& call);

} // namespace service
