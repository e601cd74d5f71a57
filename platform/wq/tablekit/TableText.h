// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <functional>
#include <vector>

class QAbstractItemModel;
class QIODevice;
class QItemSelection;

namespace WQ
{

/// The texts of a table for copy and export.
struct TableTexts {
    const QAbstractItemModel& model;
    std::vector<int> columns; ///< from left to right
    /// True if the text of a cell is a number. Other texts are guarded, so that a spreadsheet never runs a name as a
    /// formula.
    std::function<bool(int column, const QString& text)> isNumber;
};

/// The selected cells, separated by tabs, with a line feed after each row. A single cell gives its plain text. Rows and
/// columns without a selected cell are skipped.
QString tabSeparated(const TableTexts& table, const QItemSelection& selection, bool withHeader);

/// Writes all rows as CSV: UTF-8 with byte order mark, commas, CRLF. False if the device fails.
bool writeCsv(const TableTexts& table, QIODevice& device);

/// The same for a file. If that fails, the file is unchanged and `error`, if not null, is set.
bool exportCsv(const TableTexts& table, const QString& fileName, QString* error);

} // namespace WQ
