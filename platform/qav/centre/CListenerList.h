// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "centre/ReplyCallbacks.h"

#include <boost/function.hpp>

#include <map>
#include <utility>
#include <vector>

namespace QAV
{

/// The callbacks of subscriptions, by number. Service thread only. A callback may end subscriptions, its own and
/// others.
template <typename... Args>
class CListenerList
{
public:
    using Callback = boost::function<void(Args...)>;

    void add(int listener, Callback callback) { m_callbacks.emplace(listener, std::move(callback)); }
    void remove(int listener) { m_callbacks.erase(listener); }

    /// Does nothing if the listener has gone.
    void tell(int listener, Args... args) const
    {
        const auto found = m_callbacks.find(listener);
        if (found != m_callbacks.end()) {
            const Callback callback = found->second;
            callLogged([&] { callback(args...); });
        }
    }

    void tellAll(Args... args) const
    {
        std::vector<int> listeners;
        for (const auto& [listener, callback] : m_callbacks) {
            listeners.push_back(listener);
        }
        for (const int listener : listeners) {
            tell(listener, args...);
        }
    }

private:
    std::map<int, Callback> m_callbacks;
};

} // namespace QAV
