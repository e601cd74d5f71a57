// SPDX-License-Identifier: Apache-2.0
#include "centre/CServiceThread.h"

#include <future>
#include <memory>
#include <utility>

namespace QAV
{

CServiceThread::CServiceThread(Timer timer) : m_timer(std::move(timer)), m_thread([this] { run(); }) {}

CServiceThread::~CServiceThread()
{
    stop();
}

bool CServiceThread::post(Task task)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_stopping) {
            return false;
        }
        m_tasks.push_back(std::move(task));
    }
    m_wake.notify_one();
    return true;
}

bool CServiceThread::isCurrent() const
{
    return std::this_thread::get_id() == m_thread.get_id();
}

void CServiceThread::drain()
{
    if (isCurrent()) {
        return;
    }
    const auto reached = std::make_shared<std::promise<void>>();
    std::future<void> done = reached->get_future();
    if (post([reached] { reached->set_value(); })) {
        done.wait();
    }
}

void CServiceThread::stop()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_one();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void CServiceThread::run()
{
    std::optional<Clock::time_point> next;
    for (;;) {
        std::deque<Task> round;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            const auto ready = [this] { return m_stopping || !m_tasks.empty(); };
            if (next) {
                m_wake.wait_until(lock, *next, ready);
            } else {
                m_wake.wait(lock, ready);
            }
            if (m_stopping && m_tasks.empty()) {
                return;
            }
            round.swap(m_tasks);
        }
        for (Task& task : round) {
            std::exchange(task, nullptr)();
        }
        next = m_timer(Clock::now());
    }
}

} // namespace QAV
