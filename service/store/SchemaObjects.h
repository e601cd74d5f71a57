#pragma once

#include <string>
#include <vector>

namespace service
{

class Connection;

/// The names of all tables and indexes that some version of the schema has.
std::vector<std::string> namesInSchema();

/// What a SQLite database of this version holds besides the schema, lacks of it, or has otherwise: kind and name, such
/// as "trigger x". What SQLite itself keeps for its query planner is left out. Throws `StoreError`.
std::vector<std::string> differencesFromSchema(Connection& connection, int version);

} // namespace service
