// SPDX-License-Identifier: Apache-2.0
#include <utils/CMailbox.h>

#include <QCoreApplication>
#include <QEvent>

#include <deque>
#include <mutex>
#include <utility>

namespace utils
{

/// Tasks cross in a queue of our own; Qt only wakes the thread, with one event for each task.
struct CMailbox::Box {
    std::mutex mutex;
    std::deque<Task> tasks;
    CMailbox* mailbox = nullptr; ///< null once it is destroyed
};

void CMailbox::Address::post(Task task) const
{
    const std::lock_guard<std::mutex> lock(m_box->mutex);
    if (m_box->mailbox) {
        m_box->tasks.push_back(std::move(task));
        QCoreApplication::postEvent(m_box->mailbox, new QEvent(QEvent::User));
    }
}

CMailbox::CMailbox()
{
    m_address.m_box = std::make_shared<Box>();
    m_address.m_box->mailbox = this;
}

CMailbox::~CMailbox()
{
    std::deque<Task> dropped; // destroyed outside the lock
    const std::lock_guard<std::mutex> lock(m_address.m_box->mutex);
    m_address.m_box->mailbox = nullptr;
    dropped.swap(m_address.m_box->tasks);
}

bool CMailbox::event(QEvent* event)
{
    // Locked before the event is looked at, which was made under the lock.
    std::unique_lock<std::mutex> lock(m_address.m_box->mutex);
    if (event->type() != QEvent::User) {
        lock.unlock();
        return QObject::event(event);
    }
    const Task task = std::move(m_address.m_box->tasks.front());
    m_address.m_box->tasks.pop_front();
    lock.unlock();
    task();
    return true;
}

} // namespace utils
