// SPDX-License-Identifier: Apache-2.0
#include "DocumentCheck.h"

#include <nvservice/Codec.h>
#include <nvservice/Utf8.h>
#include <utils/Translation.h>

#include <set>
#include <stdexcept>
#include <string>

namespace nvservice
{

namespace
{

/// A text as documents write it.
std::string lengthAndText(std::string_view text)
{
    const std::string repaired = repairedUtf8(text) + '\0';
    std::string bytes(bson::LengthBytes, '\0');
    writeLittleEndian(bytes.data(), static_cast<std::int32_t>(repaired.size()));
    return bytes + repaired;
}

void appendRepaired(bson::BSONObjBuilder& builder, const bson::BSONObj& document, bool isArray);

void appendRepaired(bson::BSONObjBuilder& builder, const bson::BSONElement& element, const std::string& name)
{
    switch (element.type()) {
    case bson::String:
    case bson::Code:
    case bson::Symbol:
        builder.appendValue(name, element.type(), lengthAndText(element.str()));
        break;
    case bson::RegEx: // two texts, each with its zero
        builder.appendValue(name, element.type(), repairedUtf8(element.value()));
        break;
    case bson::DBRef: {
        const std::string_view value = element.value();
        const std::string_view id = value.substr(value.size() - bson::ObjectIdBytes);
        const std::size_t textBytes = value.size() - id.size() - bson::LengthBytes - 1;
        builder.appendValue(name, element.type(), lengthAndText(value.substr(bson::LengthBytes, textBytes)).append(id));
        break;
    }
    case bson::Object: {
        bson::BSONObjBuilder nested(builder.subobjStart(name));
        appendRepaired(nested, element.embeddedObject(), false);
        break;
    }
    case bson::Array: {
        bson::BSONObjBuilder nested(builder.subarrayStart(name));
        appendRepaired(nested, element.embeddedObject(), true);
        break;
    }
    default:
        builder.appendAs(element, name);
    }
}

/// Of a document whose shape, and so its depth, has been checked.
void appendRepaired(bson::BSONObjBuilder& builder, const bson::BSONObj& document, bool isArray)
{
    std::set<std::string> seen;
    int items = 0;
    for (bson::BSONObjIterator it(document); it.more();) {
        const bson::BSONElement element = it.next();
        const std::string name = isArray ? std::to_string(items++) : repairedUtf8(element.fieldName());
        if (isArray || seen.insert(name).second) {
            appendRepaired(builder, element, name);
        }
    }
}

} // namespace

utils::NVError repairDocument(const char* data, std::size_t size, bson::BSONObj& out)
{
    out = bson::BSONObj();
    if (checkDocument(data, size).isSuccess()) {
        out = bson::BSONObj(data, size).getOwned();
        return {};
    }
    const utils::NVError shape = checkShape(data, size);
    if (!shape.isSuccess()) {
        return shape;
    }
    try {
        bson::BSONObjBuilder builder;
        appendRepaired(builder, bson::BSONObj(data, size), false);
        if (static_cast<std::size_t>(builder.len()) < MaxDocumentBytes) {
            out = builder.obj();
            return {};
        }
    } catch (const std::length_error&) {
        // More than any document can hold.
    }
    return {utils::EErrorCode::ResourceExhausted, utils::text("nvservice", "数据文档过大")};
}

} // namespace nvservice
