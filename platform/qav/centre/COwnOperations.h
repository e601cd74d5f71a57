// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <deque>
#include <mutex>
#include <string>
#include <unordered_set>

namespace QAV
{

/// The ids of the last operations that this process has sent. Thread-safe.
class COwnOperations
{
public:
    void add(const std::string& id)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_ids.insert(id).second) {
            m_order.push_back(id);
        }
        if (m_order.size() > Most) {
            m_ids.erase(m_order.front());
            m_order.pop_front();
        }
    }

    bool contains(const std::string& id) const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_ids.count(id) > 0;
    }

private:
    static constexpr std::size_t Most = 4096;

    mutable std::mutex m_mutex;
    std::unordered_set<std::string> m_ids;
    std::deque<std::string> m_order;
};

} // namespace QAV
