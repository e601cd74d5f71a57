// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <cstdint>

namespace WQ
{

/// A 96-bit hash of a row key, seeded per process. The probability of a collision in a table is negligible (10^-16 with
/// a million rows).
struct KeyHash {
    std::uint64_t low = 0;
    std::uint32_t high = 0;

    bool operator==(const KeyHash& other) const { return low == other.low && high == other.high; }
};

KeyHash hashKey(const QString& key);

__extension__ using Wide = unsigned __int128;

/// Maps the bits of a hash evenly onto 0 .. size - 1.
inline std::size_t homeSlot(std::uint64_t bits, std::size_t size)
{
    return static_cast<std::size_t>((static_cast<Wide>(bits) * size) >> 64);
}

} // namespace WQ
