#pragma once

#include "service/store/Store.h"
#include "service/store/StoreError.h"

#include <QDeadlineTimer>

#include <chrono>

namespace service
{

/// How often something is tried again that a passing failure has stopped: until `reconnectMs` are over, with pauses
/// that grow.
class Patience
{
public:
    explicit Patience(const StoreOptions& options) : m_end(options.reconnectMs) {}

    /// Waits a moment, unless the failure is final or the time is over.
    bool isWorthAnother(const StoreError& failure);

private:
    QDeadlineTimer m_end;
    std::chrono::milliseconds m_pause{10};
};

} // namespace service
