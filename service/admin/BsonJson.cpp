// SPDX-License-Identifier: Apache-2.0
#include "service/admin/BsonJson.h"

#include <QByteArray>
#include <QJsonArray>

namespace service
{

namespace
{

QByteArray bytesOf(std::string_view text)
{
    return {text.data(), static_cast<int>(text.size())};
}

QJsonValue valueOf(const bson::BSONElement& element);

QJsonArray arrayOf(const bson::BSONObj& document)
{
    QJsonArray array;
    for (bson::BSONObjIterator item(document); item.more();) {
        array.append(valueOf(item.next()));
    }
    return array;
}

// Documents of the store are at most 32 levels deep.
QJsonValue valueOf(const bson::BSONElement& element)
{
    switch (element.type()) {
    case bson::NumberInt:
    case bson::NumberLong:
        return static_cast<qint64>(element.numberLong());
    case bson::NumberDouble:
        return element.numberDouble();
    case bson::Bool:
        return element.boolean();
    case bson::String:
        return QString::fromUtf8(bytesOf(element.str()));
    case bson::Object:
        return documentJson(element.embeddedObject());
    case bson::Array:
        return arrayOf(element.embeddedObject());
    case bson::BinData:
        return QString::fromLatin1(bytesOf(element.binData()).toBase64());
    default:
        return {};
    }
}

} // namespace

QJsonObject documentJson(const bson::BSONObj& document)
{
    QJsonObject object;
    for (bson::BSONObjIterator item(document); item.more();) {
        const bson::BSONElement element = item.next();
        object.insert(QString::fromUtf8(bytesOf(element.fieldName())), valueOf(element));
    }
    return object;
}

} // namespace service
