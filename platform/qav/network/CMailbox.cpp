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
    if (event->type() != QEvent::User) {
        return QObject::event(event);
    }
    std::deque<Task> tasks;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        tasks.swap(m_tasks);
    }
    for (Task& task : tasks) {
        std::exchange(task, nullptr)();
    }
    return true;
}

} // namespace QAV
