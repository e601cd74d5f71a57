#pragma once

#include <utils/Export.h>
#include <utils/NVError.h>

#include <QString>
#include <QStringList>

namespace utils
{

/// A row of separated text.
struct CsvRow {
    int line = 0; ///< where the row begins in the text, counted from 1
    QStringList values;
};

/// Reads text in rows and cells, as CCsvWriter and spreadsheets write it: RFC 4180 with any separator and any line end.
///
/// A cell in quotes may hold separators, line ends and doubled quotes, and is taken as it is; any other loses blanks at
/// both ends. What keeps a value from being changed or calculated by a spreadsheet is removed: ="0012" becomes 0012,
/// and an apostrophe goes when a digit or the beginning of a formula follows, with further apostrophes between them or
/// without. Rows of empty cells without any quotes are left out.
///
/// A reader belongs to one thread at a time.
class UTILS_EXPORT CCsvReader
{
public:
    explicit CCsvReader(const QString& text, QChar separator = QLatin1Char(','));

    /// False at the end of the text and at a malformed row; `error()` tells which.
    bool next(CsvRow& row);
    /// Success, or `Malformed` with the line: a quote doesn't end, or ends before its cell does.
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
