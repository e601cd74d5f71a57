// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/function.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <atomic>

namespace QAV
{

/// Protects a widget from callbacks of the data service that arrive after its destruction.
///
/// A widget passes each of its callbacks through `wrap` when it sends a request, and calls `close` first thing in its
/// destructor. Later replies are dropped. `close` waits for a callback that is running, which takes no longer than
/// copying its arguments into a signal. There is no mutex: a callback costs one atomic addition and one subtraction.
///
/// Threads: call `wrap` and `close` on the widget's thread. Wrapped callbacks may be called on any other thread. No
/// callback may be running on the widget's own thread when the gate is closed.
class CCallbackGate
{
public:
    CCallbackGate();
    ~CCallbackGate();
    CCallbackGate(const CCallbackGate&) = delete;
    CCallbackGate& operator=(const CCallbackGate&) = delete;

    /// Blocks further callbacks and returns when the last running one has returned. May be called more than once.
    void close();

    /// Returns the callback behind this gate. It stays callable even after the gate is gone.
    template <typename... Args>
    boost::function<void(Args...)> wrap(boost::function<void(Args...)> callback) const
    {
        return [state = m_state, callback = std::move(callback)](Args... args) {
            const Passage passage(*state);
            if (passage.isOpen()) {
                callback(static_cast<Args>(args)...);
            }
        };
    }

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
};

} // namespace QAV
