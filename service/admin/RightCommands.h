// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

#include <set>

namespace service
{

/// The rights given by numbers, keys or names; "all" means all rights. Throws `Refusal` (InvalidValue).
std::set<int> requireRights(const QStringList& texts);

} // namespace service
