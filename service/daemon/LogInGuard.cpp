// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/LogInGuard.h"

#include <algorithm>

namespace service::daemon
{

namespace
{

constexpr std::size_t MaxCounts = 10000;
constexpr std::size_t MaxNameBytes = 256;
constexpr int FactorForAllAddresses = 10;
constexpr int MaxDoublings = 20;

} // namespace

std::vector<LogInGuard::Key> LogInGuard::keysOf(const std::string& address, const std::string& user) const
{
    // No user has a longer name.
    const std::string name = user.substr(0, MaxNameBytes);
    // Addresses have no line ends, so a user name cannot form another key.
    return {{"both\n" + address + '\n' + name, m_settings.failuresPerUser},
            {"address\n" + address, m_settings.failuresPerAddress},
            {"user\n" + name, FactorForAllAddresses * m_settings.failuresPerUser}};
}

std::chrono::milliseconds LogInGuard::lockedFor(const std::string& address, const std::string& user,
                                                TimePoint now) const
{
    using std::chrono::milliseconds;
    milliseconds wait(0);
    std::vector<Key> keys = keysOf(address, user);
    if (m_desks.count(keys.front().first) > 0) {
        keys.resize(1);
    }
    for (const auto& [key, limit] : keys) {
        const auto found = m_counts.find(key);
        if (found != m_counts.end() && found->second.lockedUntil > now) {
            wait = std::max(wait, std::chrono::ceil<milliseconds>(found->second.lockedUntil - now));
        }
    }
    return wait;
}

void LogInGuard::failed(const std::string& address, const std::string& user, TimePoint now)
{
    using std::chrono::seconds;
    makeRoom(now);
    const seconds longest(m_settings.longestLockSeconds);
    for (const auto& [key, limit] : keysOf(address, user)) {
        Count& count = m_counts[key];
        if (count.last + longest < now) {
            count.failures = 0;
        }
        ++count.failures;
        count.last = now;
        if (count.failures >= limit) {
            const int doublings = std::min(count.failures - limit, MaxDoublings);
            count.lockedUntil = now + std::min(seconds(m_settings.lockSeconds) * (1 << doublings), longest);
        }
    }
}

void LogInGuard::succeeded(const std::string& address, const std::string& user, TimePoint now)
{
    const std::string both = keysOf(address, user).front().first;
    m_counts.erase(both);
    if (m_desks.size() >= MaxCounts && m_desks.count(both) == 0) {
        m_desks.erase(std::min_element(m_desks.begin(), m_desks.end(),
                                       [](const auto& left, const auto& right) { return left.second < right.second; }));
    }
    m_desks[both] = now;
}

void LogInGuard::makeRoom(TimePoint now)
{
    if (m_counts.size() < MaxCounts) {
        return;
    }
    const std::chrono::seconds longest(m_settings.longestLockSeconds);
    for (auto count = m_counts.begin(); count != m_counts.end();) {
        count = count->second.last + longest < now ? m_counts.erase(count) : std::next(count);
    }
    while (m_counts.size() >= MaxCounts) {
        m_counts.erase(std::min_element(m_counts.begin(), m_counts.end(), [](const auto& left, const auto& right) {
            return left.second.last < right.second.last;
        }));
    }
}

} // namespace service::daemon
