#pragma once

#include <QStringList>

#include <cstdint>
#include <map>
#include <string>

namespace service
{

class Connection;

/// What one sub-system has given out: the ids that may follow and the highest revision of its groups and
/// configurations.
struct GivenOut {
    std::int64_t nextGroupId = 1;
    std::int64_t nextRuleId = 1;
    std::int64_t revision = 0;
};

using GivenOutByTag = std::map<std::string, GivenOut>;

/// Of a database of any version; nothing of an empty one. Throws `StoreError`.
GivenOutByTag findGivenOut(Connection& connection);

/// The time that begins with a restored backup.
struct Epoch {
    GivenOutByTag before; ///< by the database whose place the backup takes
    /// Whether that is all: the database could be read, and nobody else wrote it meanwhile. Otherwise ids and revisions
    /// jump by a million, and at least to the number of seconds since 2024, so that the next time they jump further.
    bool isExact = false;
    std::string administrator;
    std::int64_t at = 0; ///< milliseconds since 1970 UTC
};

/// What begins the epoch in a restored database of the newest version, in one transaction. The ids of each sub-system
/// go on above all that were given out, by the backup and before. Every group and configuration gets a revision above
/// all that were given out, with a row in its history, so that what a client has read earlier is outdated.
QStringList epochStatements(const Epoch& epoch);

} // namespace service
