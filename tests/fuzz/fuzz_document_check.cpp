// SPDX-License-Identifier: Apache-2.0
// A document that the check lets pass may be given to the driver's own functions, which trust lengths and recurse. What
// only needs repair passes after it.
#include "fuzz/Require.h"

#include <nvservice/Codec.h>

namespace
{

std::size_t countElements(const bson::BSONObj& document)
{
    std::size_t count = 0;
    for (bson::BSONObjIterator it(document); it.more();) {
        const bson::BSONElement element = it.next();
        ++count;
        if (element.type() == bson::Object || element.type() == bson::Array) {
            count += countElements(element.embeddedObject());
        }
    }
    return count;
}

/// The document as a store gives it.
void checkRepair(const char* bytes, std::size_t size, bool isRight)
{
    bson::BSONObj repaired;
    if (!nvservice::repairDocument(bytes, size, repaired).isSuccess()) {
        REQUIRE(!isRight);
        return;
    }
    REQUIRE(nvservice::checkDocument(repaired.objdata(), static_cast<std::size_t>(repaired.objsize())).isSuccess());
    REQUIRE(!isRight || repaired.binaryEqual(bson::BSONObj(bytes)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const char* const bytes = reinterpret_cast<const char*>(data);
    const utils::NVError error = nvservice::checkDocument(bytes, size);
    checkRepair(bytes, size, error.isSuccess());
    if (!error.isSuccess()) {
        REQUIRE(!error.errorMsg().empty());
        return 0;
    }
    const bson::BSONObj document(bytes);
    REQUIRE(static_cast<std::size_t>(document.objsize()) == size);
    REQUIRE(countElements(document) <= nvservice::MaxDocumentElements);
    REQUIRE(document.copy().binaryEqual(document));
    REQUIRE(!document.toString().empty());
    return 0;
}
