#include "table/TableText.h"

#include <WQ/IBaseHpfTableModel.h>

#include <QIODevice>
#include <QItemSelection>

#include <algorithm>

namespace WQ
{

namespace
{

bool looksLikeFormula(const QString& text)
{
    static const QString starts = QStringLiteral("=+-@\t\r\n");
    return !text.isEmpty() && starts.contains(text.at(0));
}

QString guarded(const QString& text)
{
    return looksLikeFormula(text) ? QLatin1Char('\'') + text : text;
}

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

/// Rows of the selection, each once, in order.
std::vector<int> rowsOf(const QItemSelection& selection)
{
    std::vector<std::pair<int, int>> runs;
    for (const QItemSelectionRange& range : selection)
        runs.emplace_back(range.top(), range.bottom());
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

} // namespace

QString spreadsheetCell(const IBaseHpfTableModel& model, int row, int column)
{
    const QString text = model.index(row, column).data(Qt::DisplayRole).toString();
    return model.getValueKind(column) == ValueText || model.getValueKind(column) == ValueNone ? guarded(text) : text;
}

QString tabSeparated(const IBaseHpfTableModel& model, const QItemSelection& selection, const std::vector<int>& columns,
                     bool withHeader)
{
    std::vector<int> used;
    bool rectangular = true;
    for (int column : columns) {
        const auto holds = [column](const QItemSelectionRange& r) { return r.left() <= column && column <= r.right(); };
        if (std::any_of(selection.begin(), selection.end(), holds)) {
            used.push_back(column);
            rectangular = rectangular && std::all_of(selection.begin(), selection.end(), holds);
        }
    }
    const std::vector<int> rows = rowsOf(selection);
    if (used.empty() || rows.empty())
        return {};
    if (!withHeader && used.size() == 1 && rows.size() == 1)
        return model.index(rows.front(), used.front()).data(Qt::DisplayRole).toString();

    QString text;
    if (withHeader) {
        for (int column : used) {
            if (column != used.front())
                text += QLatin1Char('\t');
            text += tabCell(guarded(model.getHeaderText(column)));
        }
        text += QLatin1Char('\n');
    }
    for (int row : rows) {
        for (int column : used) {
            if (column != used.front())
                text += QLatin1Char('\t');
            if (rectangular || selection.contains(model.index(row, column)))
                text += tabCell(spreadsheetCell(model, row, column));
        }
        text += QLatin1Char('\n');
    }
    return text;
}

bool writeCsv(const IBaseHpfTableModel& model, const std::vector<int>& columns, QIODevice& device)
{
    constexpr int chunk = 1 << 16;
    QByteArray bytes("\xEF\xBB\xBF");
    for (int column : columns) {
        if (column != columns.front())
            bytes += ',';
        bytes += csvCell(guarded(model.getHeaderText(column))).toUtf8();
    }
    bytes += "\r\n";
    const int rows = model.rowCount();
    for (int row = 0; row < rows; ++row) {
        for (int column : columns) {
            if (column != columns.front())
                bytes += ',';
            bytes += csvCell(spreadsheetCell(model, row, column)).toUtf8();
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

} // namespace WQ
