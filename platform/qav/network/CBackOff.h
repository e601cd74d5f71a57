// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <chrono>
#include <random>

namespace QAV
{

/// Random pauses between attempts, so that clients do not all reconnect at the same time. The upper limit doubles with
/// each pause; the lower limit is half of it.
class CBackOff
{
public:
    using Duration = std::chrono::milliseconds;

    CBackOff(Duration first, Duration longest)
        : m_first(std::max(first, Duration(1))), m_longest(std::max(longest, m_first)), m_random(std::random_device()())
    {
    }

    Duration next()
    {
        m_pause = m_pause.count() == 0 ? m_first : std::min(m_pause * 2, m_longest);
        return Duration(std::uniform_int_distribution<Duration::rep>(m_pause.count() / 2, m_pause.count())(m_random));
    }
    /// Starts with a short pause again.
    void reset() { m_pause = Duration(0); }

private:
    Duration m_first;
    Duration m_longest;
    Duration m_pause{0};
    std::mt19937 m_random;
};

} // namespace QAV
