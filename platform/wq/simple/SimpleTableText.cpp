#include "SimpleTableText.h"

#include <QAbstractItemModel>
#include <QIODevice>

#include <algorithm>
#include <map>
#include <set>

namespace WQ
{

namespace
{

constexpr int ChunkSize = 1 << 16;

QString guarded(const QString& text)
{
    static const QString starts = QStringLiteral("=+-@\t\r\n");
    bool isNumber = false;
    text.toDouble(&isNumber);
    return !text.isEmpty() && !isNumber && starts.contains(text.at(0)) ? QLatin1Char('\'') + text : text;
}

QString quotedIf(bool needed, const QString& text)
{
    if (!needed)
        return text;
    QString inner = text;
    return QLatin1Char('"') + inner.replace(QLatin1Char('"'), QStringLiteral("\"\"")) + QLatin1Char('"');
}

bool holdsAny(const QString& text, const QString& characters)
{
    return std::any_of(text.begin(), text.end(), [&characters](QChar c) { return characters.contains(c); });
}

QString tabCell(const QString& text)
{
    return quotedIf(holdsAny(text, QStringLiteral("\t\r\n")) || text.startsWith(QLatin1Char('"')), guarded(text));
}

QString csvCell(const QString& text)
{
    const bool blanks = text.startsWith(QLatin1Char(' ')) || text.endsWith(QLatin1Char(' '));
    return quotedIf(blanks || holdsAny(text, QStringLiteral(",\"\r\n")), guarded(text));
}

} // namespace

QString tabSeparated(const QAbstractItemModel& model, const QItemSelection& selection, const QVector<int>& columns,
                     bool withHeader)
{
    std::map<int, std::set<int>> cells;
    std::set<int> used;
    for (const QItemSelectionRange& range : selection) {
        for (const int column : columns) {
            if (column < range.left() || column > range.right())
                continue;
            used.insert(column);
            for (int row = range.top(); row <= range.bottom(); ++row)
                cells[row].insert(column);
        }
    }
    if (cells.empty())
        return QString();
    if (!withHeader && cells.size() == 1 && used.size() == 1)
        return model.index(cells.begin()->first, *used.begin()).data().toString();

    QString text;
    const auto addLine = [&](const auto& cellText) {
        bool first = true;
        for (const int column : columns) {
            if (used.count(column) == 0)
                continue;
            if (!first)
                text += QLatin1Char('\t');
            first = false;
            text += tabCell(cellText(column));
        }
        text += QLatin1Char('\n');
    };
    if (withHeader)
        addLine([&model](int column) { return model.headerData(column, Qt::Horizontal).toString(); });
    for (const auto& line : cells) {
        addLine([&model, &line](int column) {
            return line.second.count(column) != 0 ? model.index(line.first, column).data().toString() : QString();
        });
    }
    return text;
}

bool writeCsv(const QAbstractItemModel& model, const QVector<int>& columns, QIODevice& device)
{
    QByteArray bytes("\xEF\xBB\xBF");
    for (int row = -1; row < model.rowCount(); ++row) {
        for (const int column : columns) {
            if (column != columns.first())
                bytes += ',';
            const QVariant cell = row < 0 ? model.headerData(column, Qt::Horizontal) : model.index(row, column).data();
            bytes += csvCell(cell.toString()).toUtf8();
        }
        bytes += "\r\n";
        if (bytes.size() >= ChunkSize) {
            if (device.write(bytes) != bytes.size())
                return false;
            bytes.clear();
        }
    }
    return device.write(bytes) == bytes.size();
}

} // namespace WQ
