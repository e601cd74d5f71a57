#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <mutex>

namespace QAV
{

/// Takes replies from the service thread to an object of the UI thread, as long as there is one. Callbacks hold a
/// share of it.
class CReplyBox
{
public:
    explicit CReplyBox(QObject* receiver) : m_receiver(receiver) {}

    /// To be called by the receiver's destructor: nothing is delivered any more.
    void close()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_receiver = nullptr;
    }

    /// Has `take` called on the receiver's thread. From any thread.
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
