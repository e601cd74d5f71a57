// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Store.h"

#include <utils/NVError.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace service
{

/// The amount of sample data. Counts are totals, spread evenly over the servers, unless stated otherwise.
struct SampleOptions {
    int servers = 3;          ///< 1 to 20
    int groups = 120;         ///< 0 to 10 000 000
    int accounts = 600;       ///< at least 60 per server, so that every case occurs on each server
    int membersPerGroup = 10; ///< the average; a group has between one account and twice the average
    int categories = 320;     ///< per server, 0 to 20 000
    int securities = 3000;    ///< per server, 0 to 100 000
    int seed = 1;
    /// Counts records. If it returns false, the generation is cancelled.
    std::function<bool(std::int64_t done, std::int64_t total)> progress = nullptr;
};

/// A user of the sample data. It exists on every server.
struct SampleUser {
    std::string login;
    std::string password;
    std::string displayName;
    int institutionId; ///< 0: not bound to one
};

/// Fills an empty store with servers, institutions, users, accounts of all types, products, groups, categories,
/// securities and risk configurations, in one transaction. The same options produce the same content on every machine.
/// Errors: `InvalidValue` for options out of range, `Duplicate` if the store has a server already, `Cancelled`,
/// `StorageFailure`.
utils::NVError generateSampleData(Store& store, const SampleOptions& options);

/// The users that `generateSampleData` creates.
std::vector<SampleUser> sampleUsers();

} // namespace service
