#pragma once

#include "panel/CCallbackGate.h"

#include <memory>

class QObject;

namespace QAV
{

/// Lets a widget hear only of what it asked last.
///
/// A widget passes the callbacks of its requests through `wrap`, and calls `dropOutstanding` before it asks anew. After
/// that no reply to an earlier request has an effect: one that is still on its way finds its gate closed, and one that
/// waits as a signal in the widget's event queue reaches a slot in which `isDropped` is true. Belongs to the widget's
/// thread; wrapped callbacks may be called on any other one.
class CLatestReplies
{
public:
    /// @param receiver  the widget whose slots take the replies; it owns this object
    explicit CLatestReplies(QObject& receiver);
    CLatestReplies(const CLatestReplies&) = delete;
    CLatestReplies& operator=(const CLatestReplies&) = delete;

    /// The callback behind the gate of the requests that are sent from now on.
    template <typename... Args>
    boost::function<void(Args...)> wrap(boost::function<void(Args...)> callback) const
    {
        return m_gate->wrap(std::move(callback));
    }

    void dropOutstanding();
    /// Asked first thing in a slot: whether the reply that it is given was dropped while it waited.
    bool isDropped() const { return m_marksAhead > 0; }

    /// First thing in the widget's destructor.
    void close() { m_gate->close(); }

private:
    QObject& m_receiver;
    std::unique_ptr<CCallbackGate> m_gate;
    /// The marks that wait in the receiver's event queue. Events are handled in their order, so whatever comes before
    /// the last mark was there when the replies were dropped.
    int m_marksAhead = 0;
};

} // namespace QAV
