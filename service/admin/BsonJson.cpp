// SPDX-License-Identifier: Apache-2.0
#include "service/admin/BsonJson.h"

#include <QByteArray>
#include <QJsonArray>

namespace service
{

namespace
{

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
        return element.numberInt();
    case bson::NumberLong:
        return static_cast<qint64>(element.numberLong());
    case bson::NumberDouble:
        return element.numberDouble();
    case bson::Bool:
        return element.boolean();
    case bson::String:
        return QString::fromStdString(element.str());
    case bson::Object:
        return documentJson(element.Obj());
    case bson::Array:
        return arrayOf(element.Obj());
    case bson::BinData: {
        int length = 0;
        const char* const data = element.binData(length);
        return QString::fromLatin1(QByteArray(data, length).toBase64());
    }
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
        object.insert(QString::fromUtf8(element.fieldName()), valueOf(element));
    }
    return object;
}

} // namespace service
