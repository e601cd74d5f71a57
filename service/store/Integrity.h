#pragma once

#include <string>

namespace service
{

class Connection;

/// Reads the whole database inside the caller's reading transaction: broken pages, broken references, and where the
/// extension amcheck may be used, broken indexes of PostgreSQL. Gives the first finding, empty when there is none.
/// Throws `StoreError` when the database itself reports damage.
std::string findDamage(Connection& connection);

} // namespace service
