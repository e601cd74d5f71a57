// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/Executor.h"

#include <utils/CMailbox.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace service::daemon
{

/// A thread pool with one queue of tasks. Create, use and destroy it on one thread with an event loop. The destructor
/// waits for running tasks and drops the others.
class WorkerPool : public IExecutor
{
public:
    explicit WorkerPool(int threads);
    ~WorkerPool() override;

    void post(Task work, Task done) override;
    std::size_t waiting() const override;

private:
    struct Entry {
        Task work;
        Task done;
    };

    void run();

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Entry> m_entries;
    bool m_stopping = false;
    utils::CMailbox m_done;
    std::vector<std::thread> m_threads;
};

} // namespace service::daemon
