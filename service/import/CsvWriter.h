#pragma once

#include "service/import/CsvTable.h"

#include <QByteArray>
#include <QStringList>

#include <vector>

namespace service
{

enum class ECsvEncoding { Utf8, Utf8WithMark, Gb18030 };

struct CsvFormat {
    ECsvEncoding encoding = ECsvEncoding::Utf8;
    bool forSpreadsheets = false; ///< codes stand as ="0012", so that a spreadsheet keeps their zeros
};

/// Writes what `CsvTable` reads: a header of Chinese column names, rows of as many fields, lines that end in CR LF.
class CsvWriter
{
public:
    CsvWriter(const CsvFormat& format, std::vector<EColumn> columns);
    /// One value for each column.
    void add(const std::vector<std::string>& row);
    /// The file. Empty when a text can't be written in the encoding.
    QByteArray bytes() const;

private:
    CsvFormat m_format;
    std::vector<EColumn> m_columns;
    QString m_text;
};

} // namespace service
