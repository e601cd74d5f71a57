// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/WorkerPool.h"

#include <boost/asio/post.hpp>

#include <utility>

namespace service::daemon
{

WorkerPool::~WorkerPool()
{
    m_threads.stop();
    m_threads.join();
}

void WorkerPool::post(Task work, Task done)
{
    ++m_waiting;
    boost::asio::post(m_threads, [this, work = std::move(work), done = std::move(done)]() mutable {
        --m_waiting;
        // Frees the task's data on this thread.
        std::exchange(work, nullptr)();
        m_done.address().post(std::move(done));
    });
}

} // namespace service::daemon
