// SPDX-License-Identifier: Apache-2.0
#include "hpf/KeyHash.h"

#include <QRandomGenerator>

#include <cstring>

namespace WQ
{

namespace
{

struct Seeds {
    std::uint64_t first = QRandomGenerator::system()->generate64();
    std::uint64_t second = QRandomGenerator::system()->generate64();
};

inline std::uint64_t folded(std::uint64_t a, std::uint64_t b)
{
    const auto product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

} // namespace

KeyHash hashKey(const QString& key)
{
    static const Seeds seeds;
    constexpr std::uint64_t oddA = 0x9E3779B97F4A7C15ull;
    constexpr std::uint64_t oddB = 0xC2B2AE3D27D4EB4Full;
    const char* bytes = reinterpret_cast<const char*>(key.constData());
    std::size_t left = static_cast<std::size_t>(key.size()) * sizeof(QChar);
    std::uint64_t a = seeds.first ^ left;
    std::uint64_t b = seeds.second + left;
    while (left > 0) {
        std::uint64_t word = 0;
        const std::size_t size = left < sizeof word ? left : sizeof word;
        if (size == sizeof word) {
            std::memcpy(&word, bytes, sizeof word);
        } else {
            std::memcpy(&word, bytes, size);
        }
        a = folded(a ^ word, oddA);
        b = folded(b + word, oddB) + oddA;
        bytes += size;
        left -= size;
    }
    KeyHash hash;
    hash.low = folded(a ^ seeds.second, oddB);
    hash.high = static_cast<std::uint32_t>(folded(b ^ seeds.first, oddA) >> 16);
    return hash;
}

} // namespace WQ
