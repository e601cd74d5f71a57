// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/Executor.h"

#include <utils/CMailbox.h>

#include <boost/asio/thread_pool.hpp>

#include <atomic>

namespace service::daemon
{

/// A thread pool with one queue of tasks. Create, use and destroy it on one thread with an event loop. The destructor
/// waits for running tasks and drops the others.
class WorkerPool : public IExecutor
{
public:
    explicit WorkerPool(int threads) : m_threads(static_cast<std::size_t>(threads)) {}
    ~WorkerPool() override;

    void post(Task work, Task done) override;
    std::size_t waiting() const override { return m_waiting; }

private:
    std::atomic<std::size_t> m_waiting{0};
    utils::CMailbox m_done;
    boost::asio::thread_pool m_threads;
};

} // namespace service::daemon
