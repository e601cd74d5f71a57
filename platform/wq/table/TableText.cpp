#include "table/TableText.h"

#include <QAbstractItemModel>
#include <QItemSelection>
#include <QSaveFile>

#include <algorithm>

namespace WQ
{

namespace
{

bool holdsAny(const QString& text, const QString& characters)
{
    return std::any_of(text.cbegin(), text.cend(), [&](QChar c) { return characters.contains(c); });
}

QString quoted(const QString& text)
{
    QString inner = text;
    return QLatin1Char('"') + inner.replace(QLatin1Char('"'), QStringLiteral("\"\"")) + QLatin1Char('"');
}

QString tabCell(const QString& text)
{
    static const QString special = QStringLiteral("\t\r\n");
    return holdsAny(text, special) || text.startsWith(QLatin1Char('"')) ? quoted(text) : text;
}

QString csvCell(const QString& text)
{
    static const QString special = QStringLiteral(",\"\r\n");
    const bool blanks = text.startsWith(QLatin1Char(' ')) || text.endsWith(QLatin1Char(' '));
    return blanks || holdsAny(text, special) ? quoted(text) : text;
}

bool holds(const QItemSelectionRange& range, int column)
{
    return range.left() <= column && column <= range.right();
}

/// Rows in which something of the columns is selected, each once, in order.
std::vector<int> rowsOf(const QItemSelection& selection, const std::vector<int>& columns)
{
    std::vector<std::pair<int, int>> runs;
    for (const QItemSelectionRange& range : selection) {
        if (std::any_of(columns.begin(), columns.end(), [&range](int column) { return holds(range, column); }))
            runs.emplace_back(range.top(), range.bottom());
    }
    std::sort(runs.begin(), runs.end());
    std::vector<int> rows;
    int next = 0;
    for (const auto& [first, last] : runs) {
        for (int row = std::max(first, next); row <= last; ++row)
            rows.push_back(row);
        next = std::max(next, last + 1);
    }
    return rows;
}

QString headerText(const TableTexts& table, int column)
{
    return spreadsheetText(table.model.headerData(column, Qt::Horizontal).toString());
}

} // namespace

QString spreadsheetText(const QString& text)
{
    static const QString starts = QStringLiteral("=+-@\t\r\n");
    return !text.isEmpty() && starts.contains(text.at(0)) ? QLatin1Char('\'') + text : text;
}

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
    if (used.empty() || rows.empty())
        return {};
    if (!withHeader && used.size() == 1 && rows.size() == 1)
        return table.model.index(rows.front(), used.front()).data().toString();

    QString text;
    const auto addLine = [&](const auto& cellText) {
        for (int column : used) {
            if (column != used.front())
                text += QLatin1Char('\t');
            text += cellText(column);
        }
        text += QLatin1Char('\n');
    };
    if (withHeader)
        addLine([&](int column) { return tabCell(headerText(table, column)); });
    for (int row : rows) {
        addLine([&](int column) {
            const bool selected = rectangular || selection.contains(table.model.index(row, column));
            return selected ? tabCell(table.cell(row, column)) : QString();
        });
    }
    return text;
}

bool writeCsv(const TableTexts& table, QIODevice& device)
{
    constexpr int chunk = 1 << 16;
    QByteArray bytes("\xEF\xBB\xBF");
    const int rows = table.model.rowCount();
    for (int row = -1; row < rows; ++row) {
        for (int column : table.columns) {
            if (column != table.columns.front())
                bytes += ',';
            bytes += csvCell(row < 0 ? headerText(table, column) : table.cell(row, column)).toUtf8();
        }
        bytes += "\r\n";
        if (bytes.size() >= chunk) {
            if (device.write(bytes) != bytes.size())
                return false;
            bytes.clear();
        }
    }
    return device.write(bytes) == bytes.size();
}

bool exportCsv(const TableTexts& table, const QString& fileName, QString* error)
{
    QSaveFile file(fileName);
    const bool written = file.open(QIODevice::WriteOnly) && writeCsv(table, file) && file.commit();
    if (!written && error)
        *error = QStringLiteral("无法写入文件“%1”：%2").arg(fileName, file.errorString());
    return written;
}

} // namespace WQ
