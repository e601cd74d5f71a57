// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

namespace wire
{

constexpr std::size_t LengthBytes = 4;
constexpr std::size_t ShortestDocument = LengthBytes + 1;

/// Reads a little-endian integer at any address.
template <typename Integer>
Integer readInteger(const char* at)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < sizeof(Integer); ++i) {
        value |= static_cast<std::uint64_t>(static_cast<unsigned char>(at[i])) << (8 * i);
    }
    return static_cast<Integer>(value);
}

inline std::int32_t readInt32(const char* at)
{
    return readInteger<std::int32_t>(at);
}

inline void writeInt32(char* at, std::int32_t value)
{
    for (std::size_t i = 0; i < sizeof value; ++i) {
        at[i] = static_cast<char>((static_cast<std::uint32_t>(value) >> (8 * i)) & 0xFFU);
    }
}

} // namespace wire
