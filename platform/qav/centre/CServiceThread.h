// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace QAV
{

/// The thread on which all callbacks run: tasks in the order in which they were posted, and a timer.
class CServiceThread
{
public:
    using Clock = std::chrono::steady_clock;
    using Task = std::function<void()>;
    /// Called on the thread after each round of tasks. Does what is due and returns when it wants to be called next.
    using Timer = std::function<std::optional<Clock::time_point>(Clock::time_point now)>;

    explicit CServiceThread(Timer timer);
    ~CServiceThread();

    /// Returns false and drops the task if the thread has been stopped.
    bool post(Task task);
    bool isCurrent() const;
    /// Waits until the tasks posted so far have run. On the thread itself it does not wait.
    void drain();
    /// Runs the queued tasks, refuses later ones and ends the thread. Must not be called on the thread itself.
    void stop();

private:
    void run();

    Timer m_timer;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Task> m_tasks;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace QAV
