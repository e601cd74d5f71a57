// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>

#include <QJsonObject>

namespace service
{

/// Converts a stored document to JSON. Binary values become base64 text.
QJsonObject documentJson(const bson::BSONObj& document);

} // namespace service
