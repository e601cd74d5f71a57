// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>

#include <QByteArray>

namespace service
{

/// The document in a column, owned. A document whose names and texts were never checked is repaired
/// (nvservice::repairDocument). Empty for an empty column. Throws `StoreError` for bytes that are not a document.
bson::BSONObj documentOf(const QByteArray& bytes);

/// The column value of a document; empty for an empty document.
QByteArray bytesOf(const bson::BSONObj& document);

} // namespace service
