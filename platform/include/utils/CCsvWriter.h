#pragma once

#include <utils/Export.h>

#include <QString>

namespace utils
{

/// What a cell is made safe from.
enum class ECsvForm {
    Plain,   ///< nothing: for programs, or for what can't be a formula
    Guarded, ///< formulas: what a spreadsheet would calculate gets an apostrophe in front
    Exact    ///< any change: ="0012", so that a spreadsheet keeps zeros; nothing stays nothing
};

/// Writes what CCsvReader reads back value for value, in whatever form: RFC 4180 with any separator and line end.
///
/// A formula begins, after blanks and invisible characters, with =, +, - or @ in any width, or the value begins with a
/// tab or a line end.
///
/// A writer belongs to one thread at a time.
class UTILS_EXPORT CCsvWriter
{
public:
    explicit CCsvWriter(QChar separator = QLatin1Char(','), const QString& lineEnd = QStringLiteral("\r\n"));

    void add(const QString& value, ECsvForm form = ECsvForm::Plain);
    /// Ends a row of one cell at least.
    void endRow();
    /// The rows that were written since the last call; not within a row.
    QString take();

private:
    bool needsQuotes(const QString& cell) const;

    QChar m_separator;
    QString m_lineEnd;
    QString m_text;
    int m_rowBegin = 0;
    bool m_isFirst = true; ///< of the row
    bool m_isEmpty = true; ///< the row up to now
};

} // namespace utils
