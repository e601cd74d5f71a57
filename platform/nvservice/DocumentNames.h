#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace nvservice
{

/// The element names of the documents that a walk is in, to find one that occurs twice in its document. Names are
/// zero-terminated and lie behind `base`; a place takes half the memory of a pointer.
class DocumentNames
{
public:
    explicit DocumentNames(const char* base) : m_base(base) { m_places.reserve(UsualCount); }

    void add(const char* name) { m_places.push_back(static_cast<std::uint32_t>(name - m_base)); }
    std::size_t count() const { return m_places.size(); }
    /// Takes away the names behind the first `count`, those of one document. Null, or a name that is twice among them.
    const char* close(std::size_t count);

private:
    static constexpr std::size_t UsualCount = 64;

    const char* findTwice(std::size_t first);

    const char* m_base;
    std::vector<std::uint32_t> m_places;
};

/// Whether the name is the decimal number, as that of an element of an array is.
bool isNumber(const char* name, std::size_t number);

} // namespace nvservice
