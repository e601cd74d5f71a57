// SPDX-License-Identifier: Apache-2.0
// A frame is a message or is refused. A message is written as a frame that gives the same message.
#include "Require.h"
#include "platform/wire/MessageCodec.h"
#include "platform/wire/Protocol.h"

#include <cstdint>

namespace
{

bson::BSONObj encodeAgain(const wire::Message& message)
{
    return std::visit(
        [](const auto& known) {
            if constexpr (std::is_same_v<std::decay_t<decltype(known)>, wire::ReplyChunk>) {
                std::vector<nvservice::IDataPtr> records;
                known.records(records);
                for (const nvservice::IDataPtr& record : records) {
                    REQUIRE(record);
                }
                return bson::BSONObj();
            } else {
                return wire::encode(known);
            }
        },
        message);
}

void check(const wire::Frame& frame, const nvservice::DocumentLimits& limits)
{
    wire::Message message;
    const utils::NVError error = wire::decode(frame, limits, message);
    if (!error.isSuccess()) {
        REQUIRE(!error.errorMsg().empty());
        return;
    }
    const bson::BSONObj written = encodeAgain(message);
    if (written.isEmpty()) { // chunks, and what is too long to be sent
        return;
    }
    wire::Message again;
    const wire::Frame bytes(written.objdata(), static_cast<std::size_t>(written.objsize()));
    REQUIRE(wire::decode(bytes, wire::LimitsAfterLogIn, again).isSuccess());
    REQUIRE(again.index() == message.index());
    REQUIRE(encodeAgain(again).binaryEqual(written));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const wire::Frame frame(reinterpret_cast<const char*>(data), size);
    REQUIRE(wire::kindOf(frame).size() <= size);
    wire::idOf(frame);
    check(frame, wire::LimitsBeforeLogIn);
    check(frame, wire::LimitsAfterLogIn);
    return 0;
}
