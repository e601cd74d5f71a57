// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/Export.h>

#include <QString>

namespace utils
{

/// How a cell is protected from spreadsheets.
enum class ECsvForm {
    Plain,   ///< not at all: for programs, or for values that cannot be a formula
    Guarded, ///< a value that a spreadsheet would run as a formula gets a leading apostrophe
    Exact    ///< written as ="0012", so that a spreadsheet keeps the zeros; an empty value stays empty
};

/// Writes CSV: RFC 4180 with any separator and line ending. CCsvReader reads the same values back, whatever their form.
///
/// A value counts as a formula if it starts with a tab or a line end, or if its first character after blanks and
/// invisible characters is =, +, - or @ in any width.
///
/// Not thread-safe: one thread at a time may use a writer.
class UTILS_EXPORT CCsvWriter
{
public:
    explicit CCsvWriter(QChar separator = QLatin1Char(','), const QString& lineEnd = QStringLiteral("\r\n"));

    void add(const QString& value, ECsvForm form = ECsvForm::Plain);
    /// Ends the row, which must have at least one cell.
    void endRow();
    /// Returns the rows written since the last call. Must not be called within a row.
    QString take();

private:
    bool needsQuotes(const QString& cell) const;

    QChar m_separator;
    QString m_lineEnd;
    QString m_text;
    int m_rowBegin = 0;
    bool m_isFirst = true; ///< of the row
    bool m_isEmpty = true; ///< the row so far
};

} // namespace utils
