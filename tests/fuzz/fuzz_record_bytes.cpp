// SPDX-License-Identifier: Apache-2.0
// Bytes from outside become a record or an error. What became a record is written as a document that gives the same
// one.
#include "fuzz/Require.h"

#include <nvservice/Codec.h>

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    nvservice::IDataPtr record;
    const utils::NVError error = nvservice::decodeRecord(reinterpret_cast<const char*>(data), size, record);
    REQUIRE(error.isSuccess() == static_cast<bool>(record));
    if (!record) {
        REQUIRE(!error.errorMsg().empty());
        return 0;
    }
    const bson::BSONObj written = nvservice::encodeRecord(*record);
    REQUIRE(!written.isEmpty());
    nvservice::IDataPtr again;
    REQUIRE(nvservice::decodeRecord(written, again).isSuccess());
    REQUIRE(nvservice::encodeRecord(*again).binaryEqual(written));
    REQUIRE(nvservice::encodeRecord(*record->copy()).binaryEqual(written));
    return 0;
}
