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

/// Slows down whoever guesses passwords. Failures are counted for a user name at an address, for an address, and for a
/// user name at all addresses, for which ten times as many are borne; whether the user exists makes no difference. A
/// user who has logged in from an address before is held there to his own failures only, so that nobody else's guesses
/// lock him out of his desk. Not thread-safe.
class LogInGuard
{
public:
    explicit LogInGuard(const LogInSettings& settings) : m_settings(settings) {}

    /// How long no attempt may begin; zero: one may. Attempts that are being checked count nothing yet, since a user
    /// who logs in at several places at once is nobody to be refused.
    std::chrono::milliseconds lockedFor(const std::string& address, const std::string& user, TimePoint now) const;
    void failed(const std::string& address, const std::string& user, TimePoint now);
    /// What went wrong for other names of the address is not forgotten for that.
    void succeeded(const std::string& address, const std::string& user, TimePoint now);

private:
    struct Count {
        int failures = 0;
        TimePoint lockedUntil;
        TimePoint last;
    };
    using Key = std::pair<std::string, int>; ///< and how many failures are borne

    std::vector<Key> keysOf(const std::string& address, const std::string& user) const;
    void makeRoom(TimePoint now);

    LogInSettings m_settings;
    std::unordered_map<std::string, Count> m_counts;
    std::unordered_map<std::string, TimePoint> m_desks; ///< addresses with users who have logged in there, and when
};

} // namespace service::daemon
