#include "CMailbox.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace QAV
{

void CMailbox::post(Task task)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_tasks.push_back(std::move(task));
    if (m_tasks.size() == 1) {
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }
}

bool CMailbox::event(QEvent* event)
{
    std::deque<Task> tasks;
    // Locked before the event is looked at, which was made under the lock.
    std::unique_lock<std::mutex> lock(m_mutex);
    const bool isWork = event->type() == QEvent::User;
    if (isWork) {
        tasks.swap(m_tasks);
    }
    lock.unlock();
    if (!isWork) {
        return QObject::event(event);
    }
    for (Task& task : tasks) {
        std::exchange(task, nullptr)();
    }
    return true;
}

} // namespace QAV
