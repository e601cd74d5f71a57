// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <cstdint>
#include <functional>

namespace service
{

using CopyProgress = std::function<void(std::int64_t done, std::int64_t total)>;

/// Copies a consistent snapshot of a SQLite database, which others may read and write meanwhile, over the content of
/// the file `to`; creates the file if it is missing. Programs that have `to` open see the old content or the new one,
/// even if the copy fails. Throws `StoreError`; if `to` is in use and cannot be written, the text says so.
void copySqliteDatabase(const QString& from, const QString& to, const CopyProgress& progress);

/// Switches the database to a mode without files beside it. False if another program has it open. Throws `StoreError`.
bool leaveWriteAheadMode(const QString& file);

} // namespace service
