#pragma once

#include "service/import/CsvWriter.h"
#include "service/import/Importer.h"

namespace service
{

struct ExportedFile {
    QByteArray bytes; ///< empty when a text can't be written in the encoding
    int rows = 0;
};

/// A file that `importData` would read without changing anything. Groups without accounts, which no file can describe,
/// are left out. Several files show one moment when the caller's transaction is open meanwhile. Throws `StoreError`.
ExportedFile exportData(Connection& connection, const SubSystem& server, EImportFile file, const CsvFormat& format);

} // namespace service
