// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/Export.h>
#include <utils/NVError.h>

#include <QString>
#include <QStringList>

namespace utils
{

/// A row of a CSV text.
struct CsvRow {
    int line = 0; ///< the line on which the row starts, counted from 1
    QStringList values;
};

/// Reads CSV as CCsvWriter and spreadsheets write it: RFC 4180 with any separator and any line ending.
///
/// A quoted cell may contain separators, line ends and doubled quotes, and is not trimmed. Other cells lose blanks at
/// both ends. The reader removes what protects a value from a spreadsheet: ="0012" becomes 0012, and a leading
/// apostrophe is dropped if a digit or the start of a formula follows, directly or after more apostrophes. Rows that
/// consist of empty unquoted cells are skipped.
///
/// Not thread-safe: one thread at a time may use a reader.
class UTILS_EXPORT CCsvReader
{
public:
    explicit CCsvReader(const QString& text, QChar separator = QLatin1Char(','));

    /// Reads the next row. Returns false at the end of the text and at a malformed row; `error()` tells them apart.
    bool next(CsvRow& row);
    /// Success, or `Malformed` with the line number: a quote is not closed, or is closed before the end of its cell.
    const NVError& error() const { return m_error; }

private:
    bool atEnd() const { return m_at >= m_text.size(); }
    bool atRowEnd() const;
    bool atCellEnd() const;
    bool readRow(CsvRow& row, bool& isEmpty);
    bool readCell(CsvRow& row, bool& isQuoted);
    bool readQuoted(QString& text);
    bool fail(int line, const char* what);
    void skipLineEnd();

    QString m_text;
    QChar m_separator;
    int m_at = 0;
    int m_line = 1;
    NVError m_error;
};

} // namespace utils
