// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace fuzz
{

/// Reads decisions from the bytes of an input; zeros once they are used up.
class ByteSource
{
public:
    ByteSource(const std::uint8_t* data, std::size_t size) : m_data(data), m_left(size) {}

    bool isEmpty() const { return m_left == 0; }

    std::uint8_t byte()
    {
        if (m_left == 0) {
            return 0;
        }
        --m_left;
        return *m_data++;
    }

    std::uint64_t number()
    {
        std::uint64_t value = 0;
        for (int i = 0; i < 8; ++i) {
            value = value << 8 | byte();
        }
        return value;
    }

    std::string text()
    {
        std::string value(byte() % 24, '\0');
        for (char& character : value) {
            character = static_cast<char>(byte());
        }
        return value;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_left;
};

} // namespace fuzz
