// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/import/Importer.h"
#include "service/store/ServerData.h"

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

/// Exports a file with Chinese column names and CR LF line ends. `importData` would change nothing with it. Groups
/// without accounts cannot be written and are left out. To export several files from the same moment, keep a
/// transaction open. Throws `StoreError`.
ExportedFile exportData(const ServerData& data, EImportFile file, const CsvFormat& format);

} // namespace service
