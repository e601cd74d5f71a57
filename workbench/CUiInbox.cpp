#include "CUiInbox.h"

#include <QCoreApplication>
#include <QEvent>

#include <deque>
#include <mutex>
#include <utility>

namespace workbench
{

struct CUiInbox::Box {
    std::mutex mutex;
    std::deque<Task> tasks;
    CUiInbox* inbox = nullptr; ///< null once it is destroyed
};

void CUiInbox::Address::post(Task task) const
{
    const std::lock_guard<std::mutex> lock(m_box->mutex);
    if (!m_box->inbox) {
        return;
    }
    m_box->tasks.push_back(std::move(task));
    if (m_box->tasks.size() == 1) {
        QCoreApplication::postEvent(m_box->inbox, new QEvent(QEvent::User));
    }
}

CUiInbox::CUiInbox(QObject* parent) : QObject(parent)
{
    m_address.m_box = std::make_shared<Box>();
    m_address.m_box->inbox = this;
}

CUiInbox::~CUiInbox()
{
    std::deque<Task> dropped;
    const std::lock_guard<std::mutex> lock(m_address.m_box->mutex);
    m_address.m_box->inbox = nullptr;
    dropped.swap(m_address.m_box->tasks);
}

bool CUiInbox::event(QEvent* event)
{
    if (event->type() != QEvent::User) {
        return QObject::event(event);
    }
    std::deque<Task> tasks;
    {
        const std::lock_guard<std::mutex> lock(m_address.m_box->mutex);
        tasks.swap(m_address.m_box->tasks);
    }
    // A task may destroy the inbox: nothing of it is touched from here on.
    for (Task& task : tasks) {
        std::exchange(task, nullptr)();
    }
    return true;
}

} // namespace workbench
