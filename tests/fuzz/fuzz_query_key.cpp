// SPDX-License-Identifier: Apache-2.0
// A query key is refused, or it is conditions; those are written as they are understood.
#include "fuzz/Require.h"

#include <nvservice/CQueryKey.h>
#include <nvservice/Utf8.h>

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    nvservice::CQueryKey key;
    key.set("stale", 1);
    if (!nvservice::CQueryKey::read(text, key).isSuccess()) {
        REQUIRE(key.conditions().empty());
        return 0;
    }
    for (const auto& [name, value] : key.conditions()) {
        REQUIRE(!name.empty());
        REQUIRE(nvservice::isUtf8(name) && nvservice::isUtf8(value));
        REQUIRE(name.find('\0') == std::string::npos && value.find('\0') == std::string::npos);
        const auto number = key.number(name);
        REQUIRE(!number || std::to_string(*number) == value);
    }
    const std::string written = key.text();
    nvservice::CQueryKey again;
    // Encoded bytes may make it too long.
    if (written.size() <= nvservice::CQueryKey::MaxTextBytes) {
        REQUIRE(nvservice::CQueryKey::read(written, again).isSuccess());
        REQUIRE(again.conditions() == key.conditions());
        REQUIRE(again.text() == written);
    }
    return 0;
}
