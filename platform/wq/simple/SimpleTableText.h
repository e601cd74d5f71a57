#pragma once

#include <QItemSelection>
#include <QString>
#include <QVector>

class QAbstractItemModel;
class QIODevice;

namespace WQ
{

/// The selected cells of the given columns, tab-separated, rows ended by line feeds; one cell alone is its plain text.
/// Rows and columns without a selected cell are left out. A text that a spreadsheet would run as a formula gets an
/// apostrophe in front; numbers stay as they are.
QString tabSeparated(const QAbstractItemModel& model, const QItemSelection& selection, const QVector<int>& columns,
                     bool withHeader);

/// All rows as CSV: UTF-8 with byte order mark, commas, CRLF. False if the device fails.
bool writeCsv(const QAbstractItemModel& model, const QVector<int>& columns, QIODevice& device);

} // namespace WQ
