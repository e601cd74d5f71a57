#pragma once

#include "service/store/Store.h"

#include <utils/NVError.h>

#include <cstdint>
#include <string>
#include <vector>

namespace service
{

/// How much sample data. Counts are totals and are spread evenly over the servers, unless they say otherwise.
struct SampleOptions {
    int servers = 3;          ///< 1 to 20
    int groups = 120;         ///< 0 to 10 000 000
    int accounts = 600;       ///< at least 60 for each server, so that every case occurs on each of them
    int membersPerGroup = 10; ///< average; single groups hold between one account and twice as many
    int categories = 320;     ///< of each server, 0 to 20 000
    int securities = 3000;    ///< of each server, 0 to 100 000
    std::uint64_t seed = 1;
};

/// A log-in of the sample data. It exists on every server.
struct SampleUser {
    std::string login;
    std::string password;
    std::string displayName;
    int institutionId; ///< 0: not bound to one
};

/// Fills a store that holds no server yet: servers, institutions, users, accounts of all types, products, groups,
/// categories, securities, risk configurations. The same options give the same content, on every machine. One
/// transaction. Errors: `InvalidValue` for options out of range, `Duplicate` for a store in use, `StorageFailure`.
utils::NVError generateSampleData(Store& store, const SampleOptions& options);

/// The log-ins that `generateSampleData` creates.
std::vector<SampleUser> sampleUsers();

} // namespace service
