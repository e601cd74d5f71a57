#pragma once

#include "service/import/Importer.h"

namespace service
{

enum class ECsvEncoding { Utf8, Utf8WithMark, Gb18030 };

struct CsvFormat {
    ECsvEncoding encoding = ECsvEncoding::Utf8;
    bool forSpreadsheets = false; ///< safe from being calculated; codes stand as ="0012" and keep their zeros
};

struct ExportedFile {
    QByteArray bytes;
    int rows = 0;
};

/// A file of Chinese column names and CR LF that `importData` would read without changing anything. Groups without
/// accounts, which no file can describe, are left out. Several files show one moment when the caller's transaction is
/// open meanwhile. Throws `StoreError`.
ExportedFile exportData(Connection& connection, const SubSystem& server, EImportFile file, const CsvFormat& format);

} // namespace service
