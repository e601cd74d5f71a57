#include "service/daemon/WorkerPool.h"

#include <QCoreApplication>
#include <QEvent>

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
        deliver(std::move(entry.done));
    }
}

void WorkerPool::deliver(Task done)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_done.push_back(std::move(done));
    if (m_done.size() == 1) {
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }
}

bool WorkerPool::event(QEvent* event)
{
    std::deque<Task> done;
    // Locked before the event is looked at, which was made under the lock.
    std::unique_lock<std::mutex> lock(m_mutex);
    const bool isDelivery = event->type() == QEvent::User;
    if (isDelivery) {
        done.swap(m_done);
    }
    lock.unlock();
    if (!isDelivery) {
        return QObject::event(event);
    }
    for (Task& task : done) {
        std::exchange(task, nullptr)();
    }
    return true;
}

} // namespace service::daemon
