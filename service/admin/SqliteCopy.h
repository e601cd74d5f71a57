#pragma once

#include <QString>

#include <cstdint>
#include <functional>

namespace service
{

using CopyProgress = std::function<void(std::int64_t done, std::int64_t total)>;

/// Copies a SQLite database as it is at one moment, while others may read and write it, over the content of the file
/// `to`, which is created when it is missing. Whoever has `to` open sees the old content or the new one, also when the
/// copy breaks off. Throws `StoreError`; when `to` is in use and can't be written, its text says so.
void copySqliteDatabase(const QString& from, const QString& to, const CopyProgress& progress);

/// Makes the file one that needs no other beside it. False when somebody else has it open. Throws `StoreError`.
bool leaveWriteAheadMode(const QString& file);

} // namespace service
