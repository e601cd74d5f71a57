#pragma once

#include <boost/function.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <atomic>

namespace QAV
{

/// Stands between the data service's callbacks and the widget that they are bound to.
///
/// A widget passes each of its callbacks through `wrap` when it sends a request, and calls `close` first thing in its
/// destructor. A reply that comes later finds the gate closed and is dropped; `close` waits for a reply that is just
/// being handed over, which takes no longer than copying its arguments into a signal. There is no mutex: a callback
/// costs one atomic addition and one subtraction.
///
/// Threads: `wrap` and `close` belong to the widget's thread, wrapped callbacks may be called on any other one. A
/// callback must not be running on the widget's own thread when the gate is closed.
class CCallbackGate
{
public:
    CCallbackGate();
    ~CCallbackGate();
    CCallbackGate(const CCallbackGate&) = delete;
    CCallbackGate& operator=(const CCallbackGate&) = delete;

    /// Lets no further callback in and returns when the last one is out. May be called more than once.
    void close();

    /// The same callback behind this gate. It stays callable for as long as anybody keeps it.
    template <typename... Args>
    boost::function<void(Args...)> wrap(boost::function<void(Args...)> callback) const
    {
        return [state = m_state, callback = std::move(callback)](Args... args) {
            const Passage passage(*state);
            if (passage.isOpen())
                callback(static_cast<Args>(args)...);
        };
    }

private:
    /// The highest bit says that the gate is closed, the others count the callbacks that are inside.
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
