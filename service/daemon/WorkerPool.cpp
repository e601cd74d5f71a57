// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/WorkerPool.h"

#include <utility>

namespace service::daemon
{

WorkerPool::WorkerPool(int threads)
{
    for (int i = 0; i < threads; ++i) {
        m_threads.emplace_back([this] { run(); });
    }
}

WorkerPool::~WorkerPool()
{
    std::deque<Entry> dropped;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
        dropped.swap(m_entries);
    }
    m_wake.notify_all();
    for (std::thread& thread : m_threads) {
        thread.join();
    }
}

void WorkerPool::post(Task work, Task done)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_entries.push_back({std::move(work), std::move(done)});
    }
    m_wake.notify_one();
}

std::size_t WorkerPool::waiting() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_entries.size();
}

void WorkerPool::run()
{
    for (;;) {
        Entry entry;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_wake.wait(lock, [this] { return m_stopping || !m_entries.empty(); });
            if (m_stopping) {
                return;
            }
            entry = std::move(m_entries.front());
            m_entries.pop_front();
        }
        entry.work();
        // What the work holds is freed here, where it delays nobody.
        entry.work = nullptr;
        m_done.address().post(std::move(entry.done));
    }
}

} // namespace service::daemon
