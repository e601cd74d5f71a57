// SPDX-License-Identifier: Apache-2.0
#include "service/store/Patience.h"

#include <algorithm>
#include <thread>

namespace service
{

bool Patience::isWorthAnother(const StoreError& failure)
{
    constexpr std::chrono::milliseconds LongestPause{500};
    if (failure.kind() == StoreError::EKind::Final || m_end.hasExpired()) {
        return false;
    }
    std::this_thread::sleep_for(std::min(m_pause, std::chrono::milliseconds(m_end.remainingTime())));
    m_pause = std::min(2 * m_pause, LongestPause);
    return true;
}

} // namespace service
