// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace service
{

class Connection;

/// The names of all tables and indexes of all versions of the schema.
std::vector<std::string> namesInSchema();

/// The differences between a SQLite database and the schema of this version: additional, missing and changed objects,
/// each with kind and name, such as "trigger x". Statistics of SQLite's query planner are ignored. Throws `StoreError`.
std::vector<std::string> differencesFromSchema(Connection& connection, int version);

} // namespace service
