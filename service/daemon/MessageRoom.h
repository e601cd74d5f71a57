// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/noncopyable.hpp>

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <utility>

namespace service::daemon
{

/// Limits the memory for the messages of all connections, from their first bytes until they are carried out. If there
/// is too little room, askers wait in the order in which they asked. Used on one thread.
class MessageRoom : private boost::noncopyable
{
public:
    struct Return {
        std::size_t bytes = 0;
        void operator()(MessageRoom* room) const { room->giveBack(bytes); }
    };
    /// Granted room. The destructor returns it.
    using Share = std::unique_ptr<MessageRoom, Return>;
    using Granted = std::function<void(Share)>;

    explicit MessageRoom(std::size_t most) : m_most(most) {}

    /// Calls `granted` once: before this function returns, or when others have returned enough room. An asker may wait
    /// for one share at a time. `bytes` must not exceed the total.
    void ask(const void* asker, std::size_t bytes, Granted granted)
    {
        m_askers.push_back({asker, bytes, std::move(granted)});
        grant();
    }
    /// Cancels the asker's request.
    void forget(const void* asker)
    {
        for (auto entry = m_askers.begin(); entry != m_askers.end(); ++entry) {
            if (entry->asker == asker) {
                m_askers.erase(entry);
                return grant();
            }
        }
    }
    std::size_t bytes() const { return m_bytes; }

private:
    struct Asker {
        const void* asker;
        std::size_t bytes;
        Granted granted;
    };

    void giveBack(std::size_t bytes)
    {
        m_bytes -= bytes;
        grant();
    }
    void grant()
    {
        while (!m_askers.empty() && m_askers.front().bytes <= m_most - m_bytes) {
            const Asker next = std::move(m_askers.front());
            m_askers.pop_front();
            m_bytes += next.bytes;
            next.granted(Share(this, {next.bytes}));
        }
    }

    std::size_t m_most;
    std::size_t m_bytes = 0;
    std::deque<Asker> m_askers; ///< in the order in which they asked
};

} // namespace service::daemon
