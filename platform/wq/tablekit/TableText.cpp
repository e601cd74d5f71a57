// SPDX-License-Identifier: Apache-2.0
#include "tablekit/TableText.h"

#include <utils/CCsvWriter.h>

#include <QAbstractItemModel>
#include <QCoreApplication>
#include <QItemSelection>
#include <QSaveFile>

#include <algorithm>

namespace WQ
{

namespace
{

bool holds(const QItemSelectionRange& range, int column)
{
    return range.left() <= column && column <= range.right();
}

/// Rows in which something of the columns is selected, each once, in order.
std::vector<int> rowsOf(const QItemSelection& selection, const std::vector<int>& columns)
{
    std::vector<std::pair<int, int>> runs;
    for (const QItemSelectionRange& range : selection) {
        if (std::any_of(columns.begin(), columns.end(), [&range](int column) { return holds(range, column); })) {
            runs.emplace_back(range.top(), range.bottom());
        }
    }
    std::sort(runs.begin(), runs.end());
    std::vector<int> rows;
    int next = 0;
    for (const auto& [first, last] : runs) {
        for (int row = std::max(first, next); row <= last; ++row) {
            rows.push_back(row);
        }
        next = std::max(next, last + 1);
    }
    return rows;
}

void addHeader(utils::CCsvWriter& writer, const TableTexts& table, int column)
{
    writer.add(table.model.headerData(column, Qt::Horizontal).toString(), utils::ECsvForm::Guarded);
}

void addCell(utils::CCsvWriter& writer, const TableTexts& table, int row, int column)
{
    const QString text = table.model.index(row, column).data().toString();
    writer.add(text, table.isNumber(column, text) ? utils::ECsvForm::Plain : utils::ECsvForm::Guarded);
}

} // namespace

QString tabSeparated(const TableTexts& table, const QItemSelection& selection, bool withHeader)
{
    std::vector<int> used;
    bool rectangular = true;
    for (int column : table.columns) {
        const auto holdsColumn = [column](const QItemSelectionRange& range) { return holds(range, column); };
        if (std::any_of(selection.begin(), selection.end(), holdsColumn)) {
            used.push_back(column);
            rectangular = rectangular && std::all_of(selection.begin(), selection.end(), holdsColumn);
        }
    }
    const std::vector<int> rows = rowsOf(selection, used);
    if (used.empty() || rows.empty()) {
        return {};
    }
    if (!withHeader && used.size() == 1 && rows.size() == 1) {
        return table.model.index(rows.front(), used.front()).data().toString();
    }

    utils::CCsvWriter writer(QLatin1Char('\t'), QStringLiteral("\n"));
    if (withHeader) {
        for (int column : used) {
            addHeader(writer, table, column);
        }
        writer.endRow();
    }
    for (int row : rows) {
        for (int column : used) {
            if (rectangular || selection.contains(table.model.index(row, column))) {
                addCell(writer, table, row, column);
            } else {
                writer.add(QString());
            }
        }
        writer.endRow();
    }
    return writer.take();
}

bool writeCsv(const TableTexts& table, QIODevice& device)
{
    constexpr int ChunkBytes = 1 << 16;
    utils::CCsvWriter writer;
    QByteArray bytes("\xEF\xBB\xBF");
    const int rows = table.model.rowCount();
    for (int row = -1; row < rows; ++row) {
        for (int column : table.columns) {
            if (row < 0) {
                addHeader(writer, table, column);
            } else {
                addCell(writer, table, row, column);
            }
        }
        writer.endRow();
        bytes += writer.take().toUtf8();
        if (bytes.size() >= ChunkBytes) {
            if (device.write(bytes) != bytes.size()) {
                return false;
            }
            bytes.clear();
        }
    }
    return device.write(bytes) == bytes.size();
}

bool exportCsv(const TableTexts& table, const QString& fileName, QString* error)
{
    QSaveFile file(fileName);
    const bool written = file.open(QIODevice::WriteOnly) && writeCsv(table, file) && file.commit();
    if (!written && error) {
        *error = QCoreApplication::translate("WQ", "无法写入文件“%1”：%2").arg(fileName, file.errorString());
    }
    return written;
}

} // namespace WQ
