#pragma once

#include <QString>

#include <vector>

class QIODevice;
class QItemSelection;

namespace WQ
{

class IBaseHpfTableModel;

/// A cell's text as spreadsheets may be given it: a text that begins with =, +, -, @, a tab or a line break gets an
/// apostrophe in front, so that nobody's name is run as a formula. Columns of numbers stay as they are.
QString spreadsheetCell(const IBaseHpfTableModel& model, int row, int column);

/// The selected cells of the given columns, tab-separated, rows ended by line feeds; one cell alone is its plain text.
/// Rows and columns that hold no selected cell are left out.
QString tabSeparated(const IBaseHpfTableModel& model, const QItemSelection& selection, const std::vector<int>& columns,
                     bool withHeader);

/// All rows as CSV: UTF-8 with byte order mark, commas, CRLF. False if the device fails.
bool writeCsv(const IBaseHpfTableModel& model, const std::vector<int>& columns, QIODevice& device);

} // namespace WQ
