#pragma once

#include <nvservice/Bson.h>

#include <QByteArray>

namespace service
{

/// The document in a column, owned, and repaired where it is from a time that did not check names and texts
/// (nvservice::repairDocument); empty for an empty column. Throws `StoreError` for bytes that are no document.
bson::BSONObj documentOf(const QByteArray& bytes);

/// The column of a document; empty for an empty document.
QByteArray bytesOf(const bson::BSONObj& document);

} // namespace service
