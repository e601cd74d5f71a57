#include "panel/CLatestReplies.h"

#include <QObject>
#include <QThread>

namespace QAV
{

CLatestReplies::CLatestReplies(QObject& receiver) : m_receiver(receiver), m_gate(std::make_unique<CCallbackGate>()) {}

void CLatestReplies::dropOutstanding()
{
    m_gate = std::make_unique<CCallbackGate>();
    // The old gate is closed: nothing that came through it can be posted behind the mark.
    ++m_marksAhead;
    QMetaObject::invokeMethod(
        &m_receiver, [this] { --m_marksAhead; }, Qt::QueuedConnection);
}

CLatestReplies::DirectCall::DirectCall(CLatestReplies& replies)
    : m_replies(replies.m_receiver.thread() == QThread::currentThread() ? &replies : nullptr)
{
    if (m_replies) {
        m_replies->m_calledDirectly = true;
    }
}

CLatestReplies::DirectCall::~DirectCall()
{
    if (m_replies) {
        m_replies->m_calledDirectly = false;
    }
}

} // namespace QAV
