// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

#include <cstdint>
#include <map>
#include <string>

namespace service
{

class Connection;

/// What one sub-system has assigned: the next free ids and the highest revision of its groups and configurations.
struct GivenOut {
    std::int64_t nextGroupId = 1;
    std::int64_t nextRuleId = 1;
    std::int64_t revision = 0;
};

using GivenOutByTag = std::map<std::string, GivenOut>;

/// Reads it from a database of any version. Empty for an empty database. Throws `StoreError`.
GivenOutByTag findGivenOut(Connection& connection);

/// The period that begins when a backup is restored.
struct Epoch {
    GivenOutByTag before; ///< by the replaced database
    /// True if `before` is complete: the database was readable, and nobody else wrote to it meanwhile. Otherwise ids
    /// and revisions jump by a million, and at least to the number of seconds since 2024, so that the next jump goes
    /// further.
    bool isExact = false;
    std::string administrator;
    std::int64_t at = 0; ///< milliseconds since 1970 UTC
};

/// The statements that begin the epoch in a restored database of the newest version, to be run in one transaction. The
/// ids of each sub-system continue above all ids that the backup or the replaced database has assigned. Every group and
/// configuration gets a revision above all earlier ones, with a row in its history, so that data that clients have read
/// before are outdated.
QStringList epochStatements(const Epoch& epoch);

} // namespace service
