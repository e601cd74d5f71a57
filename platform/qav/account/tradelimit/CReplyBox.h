#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <mutex>

namespace QAV
{

/// Delivers replies from the service thread to an object on the UI thread while that object exists. Callbacks share
/// ownership of the box.
class CReplyBox
{
public:
    explicit CReplyBox(QObject* receiver) : m_receiver(receiver) {}

    /// For the receiver's destructor: nothing is delivered any more.
    void close()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_receiver = nullptr;
    }

    /// Calls `take` later on the receiver's thread. May be called from any thread.
    void post(std::function<void()> take)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_receiver)
            QMetaObject::invokeMethod(m_receiver, std::move(take), Qt::QueuedConnection);
    }

private:
    std::mutex m_mutex;
    QObject* m_receiver;
};

} // namespace QAV
