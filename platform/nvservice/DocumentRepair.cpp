// SPDX-License-Identifier: Apache-2.0
#include "DocumentCheck.h"

#include <nvservice/Codec.h>
#include <nvservice/Utf8.h>

#include <set>
#include <string>

namespace nvservice
{

namespace
{

std::string textOf(const bson::BSONElement& element)
{
    return repairedUtf8({element.valuestr(), static_cast<std::size_t>(element.valuestrsize()) - 1});
}

void appendRepaired(bson::BSONObjBuilder& builder, const bson::BSONObj& document, bool isArray);

void appendRepaired(bson::BSONObjBuilder& builder, const bson::BSONElement& element, const std::string& name)
{
    switch (element.type()) {
    case bson::String:
        builder.append(name, textOf(element));
        break;
    case bson::Code:
        builder.appendCode(name, textOf(element));
        break;
    case bson::Symbol:
        builder.appendSymbol(name, textOf(element));
        break;
    case bson::RegEx:
        builder.appendRegex(name, repairedUtf8(element.regex()), repairedUtf8(element.regexFlags()));
        break;
    case bson::DBRef:
        builder.appendDBRef(name, repairedUtf8(element.dbrefNS()), element.dbrefOID());
        break;
    case bson::Object: {
        bson::BSONObjBuilder nested(builder.subobjStart(name));
        appendRepaired(nested, bson::BSONObj(element.value()), false);
        break;
    }
    case bson::Array: {
        bson::BSONObjBuilder nested(builder.subarrayStart(name));
        appendRepaired(nested, bson::BSONObj(element.value()), true);
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
        out = bson::BSONObj(data).getOwned();
        return {};
    }
    const utils::NVError shape = checkShape(data, size);
    if (!shape.isSuccess()) {
        return shape;
    }
    try {
        bson::BSONObjBuilder builder;
        appendRepaired(builder, bson::BSONObj(data), false);
        if (static_cast<std::size_t>(builder.len()) < MaxDocumentBytes) {
            out = builder.obj();
            return {};
        }
    } catch (const bson::MsgAssertionException&) {
        // More than a buffer may ever hold.
    }
    return {utils::EErrorCode::ResourceExhausted, "数据文档过大"};
}

} // namespace nvservice
