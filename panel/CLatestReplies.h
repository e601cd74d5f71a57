// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "panel/CReplyLabel.h"
#include <QAV/CCallbackGate.h>

#include <memory>

namespace QAV
{

/// Delivers to a widget only the replies to its latest requests.
///
/// A widget passes the callbacks of its requests through `wrap`, and calls `dropOutstanding` before it sends new
/// requests. After that, replies to earlier requests have no effect: if one is still on its way, its gate is closed; if
/// one already waits as a signal in the widget's event queue, `isDropped` is true in its slot. Used on the widget's
/// thread. Wrapped callbacks may be called on any one thread; on the widget's own thread they reach their slots at
/// once.
class CLatestReplies
{
public:
    /// @param receiver  the widget whose slots receive the replies; it owns this object
    explicit CLatestReplies(QObject& receiver) : m_receiver(receiver) {}
    CLatestReplies(const CLatestReplies&) = delete;
    CLatestReplies& operator=(const CLatestReplies&) = delete;

    /// Wraps the callback of a request that is sent now. The callback may emit one signal at most.
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
    /// True if the reply was dropped. Call it exactly once, first thing in a slot.
    bool isDropped() { return m_label.take().value_or(m_number) != m_number; }
    /// Changes with each call of dropOutstanding().
    unsigned number() const { return m_number; }

    /// Call it first thing in the widget's destructor.
    void close() { m_gate->close(); }

private:
    QObject& m_receiver;
    unsigned m_number = 0;
    CReplyLabel<unsigned> m_label;
    std::unique_ptr<CCallbackGate> m_gate = std::make_unique<CCallbackGate>();
};

} // namespace QAV
