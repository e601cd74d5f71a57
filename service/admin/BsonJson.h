#pragma once

#include <nvservice/Bson.h>

#include <QJsonObject>

namespace service
{

/// A stored document for people and programs to read. Binary values become their base64 text.
QJsonObject documentJson(const bson::BSONObj& document);

} // namespace service
