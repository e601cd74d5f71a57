// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>

namespace service::daemon
{

/// The full size of the pending answers of all connections together, including those being produced. Used on one
/// thread.
class HeldBytes
{
public:
    explicit HeldBytes(std::size_t most) : m_most(most) {}

    void change(std::size_t before, std::size_t now) { m_bytes += now - before; }
    std::size_t bytes() const { return m_bytes; }
    /// True: no further query starts.
    bool isFull() const { return m_bytes >= m_most; }

    /// The expected size of an answer of this kind, judging by earlier ones.
    std::size_t expected(const std::string& kind) const
    {
        const auto found = m_usual.find(kind);
        return found == m_usual.end() ? FirstExpected : found->second;
    }
    void learn(const std::string& kind, std::size_t bytes)
    {
        std::size_t& usual = m_usual[kind];
        usual = std::max(bytes, usual - usual / 8);
    }

private:
    static constexpr std::size_t FirstExpected = std::size_t{16} * 1024 * 1024;

    std::size_t m_most;
    std::size_t m_bytes = 0;
    std::map<std::string, std::size_t> m_usual;
};

} // namespace service::daemon
