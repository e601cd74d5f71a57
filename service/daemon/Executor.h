// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>

namespace service::daemon
{

/// Runs tasks that may wait for a disk on other threads than the one that serves the network.
class IExecutor
{
public:
    using Task = std::function<void()>;

    virtual ~IExecutor() = default;

    /// Runs `work` on another thread and then `done` on the caller's thread. Tasks start in the order in which they
    /// were posted. Neither is called after the executor was destroyed.
    virtual void post(Task work, Task done) = 0;
    /// The number of tasks that have not started.
    virtual std::size_t waiting() const = 0;
};

} // namespace service::daemon
