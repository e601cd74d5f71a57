#pragma once

#include <QString>

#include <cstdint>

namespace WQ
{

/// 96 bits that stand for a row key. Seeded per process; two keys of one table agree in all bits with a probability
/// that no number of rows makes worth a thought (10^-16 at a million).
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
