// SPDX-License-Identifier: Apache-2.0
// Any bytes can be read as a document. One that the check lets pass is read to its end. What only needs repair passes
// after it.
#include "fuzz/Require.h"

#include <nvservice/Codec.h>

#include <cstdint>

namespace
{

/// The number of elements at all levels.
std::size_t readToTheEnd(const bson::BSONObj& document)
{
    std::size_t count = 0;
    std::size_t bytes = bson::ShortestDocument;
    for (bson::BSONObjIterator it(document); it.more();) {
        const bson::BSONElement element = it.next();
        ++count;
        bytes += 2 + element.fieldName().size() + element.value().size();
        if (element.isABSONObj()) {
            count += readToTheEnd(element.embeddedObject());
        }
    }
    REQUIRE(bytes == static_cast<std::size_t>(document.objsize()));
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
    REQUIRE(!isRight || repaired.binaryEqual(bson::BSONObj(bytes, size)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const char* const bytes = reinterpret_cast<const char*>(data);
    const utils::NVError error = nvservice::checkDocument(bytes, size);
    checkRepair(bytes, size, error.isSuccess());
    const bson::BSONObj document(bytes, size);
    REQUIRE(!document.toString().empty());
    if (!error.isSuccess()) {
        REQUIRE(!error.errorMsg().empty());
        return 0;
    }
    REQUIRE(static_cast<std::size_t>(document.objsize()) == size);
    REQUIRE(readToTheEnd(document) <= nvservice::MaxDocumentElements);
    REQUIRE(document.copy().binaryEqual(document));
    return 0;
}
