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
/// thread. Wrapped callbacks may be called on any thread; one that is called on the widget's own reaches its slot at
/// once.
class CLatestReplies
{
public:
    /// @param receiver  the widget whose slots take the replies; it owns this object
    explicit CLatestReplies(QObject& receiver);
    CLatestReplies(const CLatestReplies&) = delete;
    CLatestReplies& operator=(const CLatestReplies&) = delete;

    /// The callback behind the gate of the requests that are sent from now on.
    template <typename... Args>
    boost::function<void(Args...)> wrap(boost::function<void(Args...)> callback)
    {
        return m_gate->wrap(boost::function<void(Args...)>([this, callback = std::move(callback)](Args... args) {
            const DirectCall directCall(*this);
            callback(static_cast<Args>(args)...);
        }));
    }

    void dropOutstanding();
    /// Asked first thing in a slot: whether the reply that it is given was dropped while it waited.
    bool isDropped() const { return m_marksAhead > 0 && !m_calledDirectly; }

    /// First thing in the widget's destructor.
    void close() { m_gate->close(); }

private:
    /// A call on the receiver's own thread waits in no queue, so the marks there say nothing of it.
    class DirectCall
    {
    public:
        explicit DirectCall(CLatestReplies& replies);
        ~DirectCall();
        DirectCall(const DirectCall&) = delete;
        DirectCall& operator=(const DirectCall&) = delete;

    private:
        CLatestReplies* const m_replies;
    };

    QObject& m_receiver;
    std::unique_ptr<CCallbackGate> m_gate;
    /// The marks that wait in the receiver's event queue. Events are handled in their order, so whatever comes before
    /// the last mark was there when the replies were dropped.
    int m_marksAhead = 0;
    bool m_calledDirectly = false;
};

} // namespace QAV
