// SPDX-License-Identifier: Apache-2.0
#include "service/store/SchemaObjects.h"
#include "service/store/Query.h"
#include "service/store/Schema.h"

#include <algorithm>
#include <map>
#include <set>

namespace service
{

namespace
{

/// Kind and name, and the statement that made it.
using Objects = std::map<std::pair<std::string, std::string>, std::string>;

Objects objectsOf(Connection& connection)
{
    Objects objects;
    Query query(connection, QStringLiteral("SELECT type, name, coalesce(sql, '') FROM sqlite_master"
                                           " WHERE name NOT LIKE 'sqlite_stat%'"));
    for (query.run(); query.next();) {
        objects[{query.text(0), query.text(1)}] = query.text(2);
    }
    return objects;
}

Objects objectsOfVersion(int version)
{
    StoreOptions options;
    options.location = QStringLiteral(":memory:");
    Connection connection(options, QStringLiteral("qav-schema"));
    const std::vector<Migration>& all = schemaMigrations();
    migrateSchema(connection, {all.begin(), all.begin() + version});
    return objectsOf(connection);
}

} // namespace

std::vector<std::string> namesInSchema()
{
    std::vector<std::string> names;
    for (const auto& [object, statement] : objectsOfVersion(schemaMigrations().back().number)) {
        names.push_back(object.second);
    }
    return names;
}

std::vector<std::string> differencesFromSchema(Connection& connection, int version)
{
    const Objects expected = objectsOfVersion(version);
    const Objects found = objectsOf(connection);
    std::vector<Objects::value_type> different;
    std::set_symmetric_difference(expected.begin(), expected.end(), found.begin(), found.end(),
                                  std::back_inserter(different));
    std::set<std::string> names;
    for (const auto& [object, statement] : different) {
        names.insert(object.first + " " + object.second);
    }
    return {names.begin(), names.end()};
}

} // namespace service
