#pragma once

#include <cstddef>
#include <functional>

namespace service::daemon
{

/// Carries out what may wait for a disk, away from the thread that serves the network.
class IExecutor
{
public:
    using Task = std::function<void()>;

    virtual ~IExecutor() = default;

    /// Runs `work` on some other thread and after it `done` on the caller's. Tasks begin in the order in which they
    /// were posted. Neither is called any more once the executor is destroyed.
    virtual void post(Task work, Task done) = 0;
    /// How many tasks have not begun.
    virtual std::size_t waiting() const = 0;
};

} // namespace service::daemon
