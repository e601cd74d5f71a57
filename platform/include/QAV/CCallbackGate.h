// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <utils/CMailbox.h>

#include <boost/function.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <atomic>
#include <tuple>
#include <type_traits>
#include <utility>

namespace QAV
{

/// Protects a widget from callbacks of the data service that arrive after its destruction. Panels have one, see
/// IkolmDockableWidget::callbackGate(); other widgets that send requests have one as a member.
///
/// A widget passes each of its callbacks through `queued` when it sends a request:
///     client->queryData_async(request, m_gate.queued(QAV::QueryCallback([this](...) { show(...); })));
///
/// Threads: create, use and destroy the gate on the thread of its widget, which needs an event loop. The callbacks that
/// it returns may be called and copied on any thread, even after the gate is gone.
class QAV_EXPORT CCallbackGate
{
public:
    CCallbackGate();
    /// Closes the gate.
    ~CCallbackGate();
    CCallbackGate(const CCallbackGate&) = delete;
    CCallbackGate& operator=(const CCallbackGate&) = delete;

    /// Returns a callback that copies its arguments and lets `callback` run with them on the thread of the gate, from
    /// the event loop and in the order of the calls. Once the gate is closed, `callback` is not run any more, not even
    /// for a call that came before. `callback` may destroy the widget and its gate.
    template <typename... Args>
    boost::function<void(Args...)> queued(boost::function<void(Args...)> callback) const
    {
        return [state = m_state, mailbox = m_mailbox.address(), callback = std::move(callback)](Args... args) {
            mailbox.post(
                [state, callback, copies = std::tuple<std::decay_t<Args>...>(std::forward<Args>(args)...)]() mutable {
                    if ((state->load() & Closed) == 0) {
                        std::apply(callback, std::move(copies));
                    }
                });
        };
    }

    /// Returns a callback that runs `callback` at once, on the thread that calls it, unless the gate is closed. For
    /// callbacks that must run on the service thread; they should only copy their arguments into a signal. There is no
    /// mutex: a call costs one atomic addition and one subtraction. Close such a gate first thing in the destructor of
    /// the widget.
    template <typename... Args>
    boost::function<void(Args...)> wrap(boost::function<void(Args...)> callback) const
    {
        return [state = m_state, callback = std::move(callback)](Args... args) {
            const Passage passage(*state);
            if (passage.isOpen()) {
                callback(std::forward<Args>(args)...);
            }
        };
    }

    /// Blocks further callbacks and returns when the last running one of `wrap` has returned; none may be running on
    /// the thread of the gate. May be called more than once.
    void close();

private:
    /// The highest bit means that the gate is closed; the other bits count the running callbacks.
    using State = std::atomic<unsigned>;
    static constexpr unsigned Closed = 1U << 31;

    class Passage
    {
    public:
        explicit Passage(State& state) : m_state(state), m_open((state.fetch_add(1) & Closed) == 0) {}
        ~Passage() { m_state.fetch_sub(1); }
        Passage(const Passage&) = delete;
        Passage& operator=(const Passage&) = delete;
        bool isOpen() const { return m_open; }

    private:
        State& m_state;
        const bool m_open;
    };

    boost::shared_ptr<State> m_state;
    utils::CMailbox m_mailbox;
};

} // namespace QAV
