// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace service
{

class Connection;

/// Reads the whole database in the caller's read transaction and looks for broken pages and references. On PostgreSQL
/// it also checks the indexes if the extension amcheck may be used. Returns the first finding; empty if there is none.
/// Throws `StoreError` if the database itself reports damage.
std::string findDamage(Connection& connection);

} // namespace service
