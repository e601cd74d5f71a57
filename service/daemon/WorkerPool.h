#pragma once

#include "service/daemon/Executor.h"

#include <QObject>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace service::daemon
{

/// Some threads that take tasks from one queue. It is made, used and destroyed on one thread, which runs an event loop.
/// The destructor waits for what has begun and drops the rest.
class WorkerPool : public QObject, public IExecutor
{
public:
    explicit WorkerPool(int threads);
    ~WorkerPool() override;

    void post(Task work, Task done) override;
    std::size_t waiting() const override;

protected:
    bool event(QEvent* event) override;

private:
    struct Entry {
        Task work;
        Task done;
    };

    void run();
    void deliver(Task done);

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Entry> m_entries;
    std::deque<Task> m_done;
    bool m_stopping = false;
    std::vector<std::thread> m_threads;
};

} // namespace service::daemon
