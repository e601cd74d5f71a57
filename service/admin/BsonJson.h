// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>

#include <QJsonObject>

namespace service
{

/// Converts a stored document to JSON. Values of types that JSON lacks are written as relaxed extended JSON does:
/// `{"$date": "1970-01-01T00:00:00Z"}`.
QJsonObject documentJson(const bson::BSONObj& document);

} // namespace service
