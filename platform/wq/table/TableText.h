#pragma once

#include <QString>

#include <functional>
#include <vector>

class QAbstractItemModel;
class QIODevice;
class QItemSelection;

namespace WQ
{

/// A text as spreadsheets may be given it: one that begins with =, +, -, @, a tab or a line break gets an apostrophe in
/// front, so that nobody's name is run as a formula.
QString spreadsheetText(const QString& text);

/// What a table hands out.
struct TableTexts {
    const QAbstractItemModel& model;
    std::vector<int> columns; ///< from left to right
    /// A cell as spreadsheets may be given it: numbers stay as they are.
    std::function<QString(int row, int column)> cell;
};

/// The selected cells, tab-separated, rows ended by line feeds; one cell alone is its plain text. Rows and columns that
/// hold no selected cell are left out.
QString tabSeparated(const TableTexts& table, const QItemSelection& selection, bool withHeader);

/// All rows as CSV: UTF-8 with byte order mark, commas, CRLF. False if the device fails.
bool writeCsv(const TableTexts& table, QIODevice& device);

/// The same into a file, which stays as it was when that fails; `error`, if given, then says why.
bool exportCsv(const TableTexts& table, const QString& fileName, QString* error);

} // namespace WQ
