// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// Documents made by hand, which the document classes would not make.

namespace support
{

/// The low four bytes.
inline std::string littleEndian(std::size_t value)
{
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>((value >> shift) & 0xFFU);
    }
    return bytes;
}

/// The value of a text: its length, its bytes and the zero that ends it.
inline std::string textBytes(const std::string& text)
{
    return littleEndian(text.size() + 1) + text + '\0';
}

inline std::string elementBytes(unsigned char type, const std::string& name, const std::string& value)
{
    return static_cast<char>(type) + name + '\0' + value;
}

/// A document around elements.
inline std::string documentBytes(const std::string& elements)
{
    return littleEndian(elements.size() + 5) + elements + '\0';
}

/// `depth` documents, each the element "a" of the one around it.
inline std::string nested(std::size_t depth)
{
    std::string head;
    for (std::size_t level = 0; level < depth; ++level) {
        head += littleEndian(5 + (depth - 1 - level) * 8);
        if (level + 1 < depth) {
            head += std::string({'\x03', 'a', '\0'});
        }
    }
    return head + std::string(depth, '\0');
}

} // namespace support
