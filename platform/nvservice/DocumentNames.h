// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace nvservice
{

/// The element names of all documents that are open during a walk; finds names that occur twice in a document. Names
/// are zero-terminated and stored as offsets from `base`, which take half the memory of pointers.
class DocumentNames
{
public:
    explicit DocumentNames(const char* base) : m_base(base) { m_places.reserve(UsualCount); }

    void add(const char* name) { m_places.push_back(static_cast<std::uint32_t>(name - m_base)); }
    std::size_t count() const { return m_places.size(); }
    /// Removes the names after the first `count`, which are those of one document. Returns a name that occurs twice
    /// among them, or null.
    const char* close(std::size_t count);

private:
    static constexpr std::size_t UsualCount = 64;

    const char* findTwice(std::size_t first);

    const char* m_base;
    std::vector<std::uint32_t> m_places;
};

/// True if the name is the decimal number, as in an array.
bool isNumber(const char* name, std::size_t number);

} // namespace nvservice
