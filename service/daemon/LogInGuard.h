// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/Configuration.h"

#include <chrono>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace service::daemon
{

using TimePoint = std::chrono::steady_clock::time_point;

/// Slows down password guessing. It counts failures of a user name at an address, of an address, and of a user name at
/// all addresses, where ten times as many are allowed. Unknown users are treated like known ones. For a user who has
/// logged in from an address before, only failures of that user at that address count there, so that others cannot
/// lock them out of their own desk. Not thread-safe.
class LogInGuard
{
public:
    explicit LogInGuard(const LogInSettings& settings) : m_settings(settings) {}

    /// The remaining time of a lock; zero if there is none. Attempts that are still being checked do not count, because
    /// a user may log in at several places at once.
    std::chrono::milliseconds lockedFor(const std::string& address, const std::string& user, TimePoint now) const;
    void failed(const std::string& address, const std::string& user, TimePoint now);
    /// Clears the user's failures, but not those of other names at the address.
    void succeeded(const std::string& address, const std::string& user, TimePoint now);

private:
    struct Count {
        int failures = 0;
        TimePoint lockedUntil;
        TimePoint last;
    };
    using Key = std::pair<std::string, int>; ///< and the number of allowed failures

    std::vector<Key> keysOf(const std::string& address, const std::string& user) const;
    void makeRoom(TimePoint now);

    LogInSettings m_settings;
    std::unordered_map<std::string, Count> m_counts;
    std::unordered_map<std::string, TimePoint> m_desks; ///< addresses with users who have logged in there, and the time
};

} // namespace service::daemon
