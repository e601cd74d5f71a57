#pragma once

#include "panel/CCallbackGate.h"
#include "panel/CReplyLabel.h"

#include <memory>

namespace QAV
{

/// Lets a widget hear only of what it asked last.
///
/// A widget passes the callbacks of its requests through `wrap`, and calls `dropOutstanding` before it asks anew. After
/// that no reply to an earlier request has an effect: one that is still on its way finds its gate closed, and one that
/// waits as a signal in the widget's event queue reaches a slot in which `isDropped` is true. Belongs to the widget's
/// thread. Wrapped callbacks may be called on any thread, always the same one; on the widget's own they reach their
/// slots at once.
class CLatestReplies
{
public:
    /// @param receiver  the widget whose slots take the replies; it owns this object
    explicit CLatestReplies(QObject& receiver) : m_receiver(receiver) {}
    CLatestReplies(const CLatestReplies&) = delete;
    CLatestReplies& operator=(const CLatestReplies&) = delete;

    /// The callback of a request that is sent now. It emits one signal at most.
    template <typename... Args>
    boost::function<void(Args...)> wrap(boost::function<void(Args...)> callback)
    {
        return m_gate->wrap(
            boost::function<void(Args...)>([this, number = m_number, callback = std::move(callback)](Args... args) {
                m_label.sendAhead(&m_receiver, number);
                callback(static_cast<Args>(args)...);
            }));
    }

    void dropOutstanding()
    {
        m_gate = std::make_unique<CCallbackGate>();
        ++m_number;
    }
    /// Asked once, first thing in a slot: whether the reply that it is given was dropped.
    bool isDropped() { return m_label.take().value_or(m_number) != m_number; }
    /// Tells later calls of dropOutstanding() apart.
    unsigned number() const { return m_number; }

    /// First thing in the widget's destructor.
    void close() { m_gate->close(); }

private:
    QObject& m_receiver;
    unsigned m_number = 0;
    CReplyLabel<unsigned> m_label;
    std::unique_ptr<CCallbackGate> m_gate = std::make_unique<CCallbackGate>();
};

} // namespace QAV
