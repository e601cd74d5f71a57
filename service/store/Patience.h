// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Store.h"
#include "service/store/StoreError.h"

#include <QDeadlineTimer>

#include <chrono>

namespace service
{

/// Limits retries after transient failures: until `reconnectMs` are over, with growing pauses.
class Patience
{
public:
    explicit Patience(const StoreOptions& options) : m_end(options.reconnectMs) {}

    /// False if the failure is final or the time is over. Otherwise waits for the pause and returns true.
    bool isWorthAnother(const StoreError& failure);

private:
    QDeadlineTimer m_end;
    std::chrono::milliseconds m_pause{10};
};

} // namespace service
