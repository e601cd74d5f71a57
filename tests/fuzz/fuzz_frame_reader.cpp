// SPDX-License-Identifier: Apache-2.0
// Bytes become the same frames, or the same loss of framing, in whatever pieces they come. The first byte of the input
// chooses the pieces.
#include "Require.h"
#include "platform/wire/FrameReader.h"
#include "platform/wire/Protocol.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace
{

struct Outcome {
    std::vector<wire::Frame> frames;
    std::string error;
    bool cut = false;

    bool operator==(const Outcome& other) const
    {
        return frames == other.frames && error == other.error && cut == other.cut;
    }
};

Outcome readInPieces(const char* data, std::size_t size, std::size_t piece)
{
    constexpr std::size_t maxFrameBytes = 64 * 1024;
    wire::FrameReader reader(maxFrameBytes);
    Outcome outcome;
    for (std::size_t at = 0; at < size;) {
        utils::NVError error;
        const std::size_t offered = std::min(piece, size - at);
        const std::size_t taken = reader.feed(data + at, offered, error);
        REQUIRE(taken <= offered);
        at += taken;
        if (!error.isSuccess()) {
            outcome.error = error.errorMsg();
            REQUIRE(!outcome.error.empty());
            REQUIRE(!reader.hasFrame());
            return outcome;
        }
        if (reader.hasFrame()) {
            outcome.frames.push_back(reader.take());
            REQUIRE(outcome.frames.back().size() <= maxFrameBytes);
        } else {
            REQUIRE(taken == offered);
        }
    }
    outcome.cut = reader.isInFrame();
    return outcome;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const char* const bytes = reinterpret_cast<const char*>(data + 1);
    const Outcome whole = readInPieces(bytes, size - 1, size);
    REQUIRE(readInPieces(bytes, size - 1, 1) == whole);
    REQUIRE(readInPieces(bytes, size - 1, data[0] % 61 + 1U) == whole);
    return 0;
}
