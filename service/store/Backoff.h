// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Store.h"
#include "service/store/StoreError.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <chrono>
#include <thread>

namespace service
{

/// Limits retries after transient failures: until `reconnectMs` are over, with growing pauses.
class Backoff
{
public:
    explicit Backoff(const StoreOptions& options) : m_end(options.reconnectMs) {}

    /// False if the failure is final or the time is over. Otherwise waits for the pause and returns true.
    bool waitToRetry(const StoreError& failure)
    {
        constexpr std::chrono::milliseconds LongestPause{500};
        if (failure.kind() == StoreError::EKind::Final || m_end.hasExpired()) {
            return false;
        }
        std::this_thread::sleep_for(std::min(m_pause, std::chrono::milliseconds(m_end.remainingTime())));
        m_pause = std::min(2 * m_pause, LongestPause);
        return true;
    }

private:
    QDeadlineTimer m_end;
    std::chrono::milliseconds m_pause{10};
};

} // namespace service
