// SPDX-License-Identifier: Apache-2.0
#include "CharacterLength.h"

#include <nvservice/Utf8.h>

#include <cstdint>
#include <cstring>

namespace nvservice
{

namespace
{

bool isContinuation(unsigned char byte)
{
    return (byte & 0xC0U) == 0x80U;
}

} // namespace

std::size_t characterLength(std::string_view text)
{
    const auto byte = [&text](std::size_t index) {
        return index < text.size() ? static_cast<unsigned char>(text[index]) : static_cast<unsigned char>(0);
    };
    const unsigned char first = byte(0);
    if (first < 0x80U) {
        return 1;
    }
    if (first >= 0xC2U && first <= 0xDFU) {
        return isContinuation(byte(1)) ? 2 : 0;
    }
    if ((first & 0xF0U) == 0xE0U) {
        const bool overlong = first == 0xE0U && byte(1) < 0xA0U;
        const bool surrogate = first == 0xEDU && byte(1) > 0x9FU;
        return isContinuation(byte(1)) && isContinuation(byte(2)) && !overlong && !surrogate ? 3 : 0;
    }
    if (first >= 0xF0U && first <= 0xF4U) {
        const bool overlong = first == 0xF0U && byte(1) < 0x90U;
        const bool tooLarge = first == 0xF4U && byte(1) > 0x8FU;
        const bool continued = isContinuation(byte(1)) && isContinuation(byte(2)) && isContinuation(byte(3));
        return continued && !overlong && !tooLarge ? 4 : 0;
    }
    return 0;
}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        // Most codes and names begin with ASCII, eight bytes of which are passed at a time.
        std::uint64_t block = 0;
        while (text.size() >= sizeof block) {
            std::memcpy(&block, text.data(), sizeof block);
            if ((block & 0x8080808080808080ULL) != 0) {
                break;
            }
            text.remove_prefix(sizeof block);
        }
        while (!text.empty() && static_cast<unsigned char>(text.front()) < 0x80U) {
            text.remove_prefix(1);
        }
        if (text.empty()) {
            break;
        }
        const std::size_t length = characterLength(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::string_view cutUtf8(std::string_view text, std::size_t maxBytes)
{
    if (text.size() <= maxBytes) {
        return text;
    }
    while (maxBytes > 0 && isContinuation(static_cast<unsigned char>(text[maxBytes]))) {
        --maxBytes;
    }
    return text.substr(0, maxBytes);
}

std::string repairedUtf8(std::string_view text)
{
    constexpr char replacement[] = "\xEF\xBF\xBD";
    std::string repaired;
    repaired.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0) {
            repaired += replacement;
        } else {
            repaired += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return repaired;
}

} // namespace nvservice
