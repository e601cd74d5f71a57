#pragma once

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>

namespace QAV
{

/// Brings work from any thread to the thread that made the mailbox and runs an event loop: the data crosses in a
/// mutex-guarded queue, Qt only wakes the thread. What is left when the mailbox is destroyed is dropped.
class CMailbox : public QObject
{
public:
    using Task = std::function<void()>;

    void post(Task task);

    bool event(QEvent* event) override;

private:
    std::mutex m_mutex;
    std::deque<Task> m_tasks;
};

} // namespace QAV
