#pragma once

#include <QString>

#include <functional>
#include <vector>

class QAbstractItemModel;
class QIODevice;
class QItemSelection;

namespace WQ
{

/// What a table hands out.
struct TableTexts {
    const QAbstractItemModel& model;
    std::vector<int> columns; ///< from left to right
    /// Whether the text of a cell is a number. Any other is guarded, so that nobody's name is run as a formula.
    std::function<bool(int column, const QString& text)> isNumber;
};

/// The selected cells, tab-separated, rows ended by line feeds; one cell alone is its plain text. Rows and columns that
/// hold no selected cell are left out.
QString tabSeparated(const TableTexts& table, const QItemSelection& selection, bool withHeader);

/// All rows as CSV: UTF-8 with byte order mark, commas, CRLF. False if the device fails.
bool writeCsv(const TableTexts& table, QIODevice& device);

/// The same into a file, which stays as it was when that fails; `error`, if given, then says why.
bool exportCsv(const TableTexts& table, const QString& fileName, QString* error);

} // namespace WQ
