// SPDX-License-Identifier: Apache-2.0
#include "DocumentNames.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace nvservice
{

namespace
{

// Fewer names are compared each with each, which is faster than to sort them.
constexpr std::size_t FewNames = 24;

} // namespace

const char* DocumentNames::close(std::size_t count)
{
    const char* const twice = findTwice(count);
    m_places.resize(count);
    return twice;
}

const char* DocumentNames::findTwice(std::size_t first)
{
    const auto begin = m_places.begin() + static_cast<std::ptrdiff_t>(first);
    const auto compare = [this](std::uint32_t left, std::uint32_t right) {
        return std::strcmp(m_base + left, m_base + right);
    };
    const auto equal = [&compare](std::uint32_t left, std::uint32_t right) { return compare(left, right) == 0; };
    if (m_places.size() - first >= FewNames) {
        std::sort(begin, m_places.end(), [&compare](auto left, auto right) { return compare(left, right) < 0; });
        const auto found = std::adjacent_find(begin, m_places.end(), equal);
        return found == m_places.end() ? nullptr : m_base + *found;
    }
    for (auto place = begin; place != m_places.end(); ++place) {
        if (std::any_of(place + 1, m_places.end(), [&](std::uint32_t other) { return equal(*place, other); })) {
            return m_base + *place;
        }
    }
    return nullptr;
}

bool isNumber(const char* name, std::size_t number)
{
    char digits[24] = {};
    std::to_chars(digits, digits + sizeof digits - 1, number);
    return std::strcmp(name, digits) == 0;
}

} // namespace nvservice
