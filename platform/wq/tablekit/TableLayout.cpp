// SPDX-License-Identifier: Apache-2.0
#include "tablekit/TableLayout.h"

#include <QStringList>

#include <algorithm>

namespace WQ
{

namespace
{

// hpf1|<table id>|<columns>|o<order>|w<widths>|h<hidden>|s<column><a or d>|<checksum>
const QString Version = QStringLiteral("hpf1");
constexpr int MostColumns = 1000;
constexpr int LongestText = 16384;

QString joined(const QVector<int>& numbers)
{
    QStringList texts;
    for (int number : numbers) {
        texts.append(QString::number(number));
    }
    return texts.join(QLatin1Char('.'));
}

QString checksum(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    return QStringLiteral("%1").arg(qChecksum(bytes.constData(), static_cast<uint>(bytes.size())), 4, 16,
                                    QLatin1Char('0'));
}

/// Decimal without sign, blanks or leading zeros, so that a layout has one spelling only.
bool number(const QString& text, int most, int& out)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok || value < 0 || value > most || QString::number(value) != text) {
        return false;
    }
    out = value;
    return true;
}

bool numbers(const QString& text, QChar letter, int most, QVector<int>& out)
{
    out.clear();
    if (!text.startsWith(letter)) {
        return false;
    }
    if (text.size() == 1) {
        return true;
    }
    const QStringList parts = text.mid(1).split(QLatin1Char('.'));
    for (const QString& part : parts) {
        int value = 0;
        if (!number(part, most, value)) {
            return false;
        }
        out.append(value);
    }
    return true;
}

} // namespace

QString TableLayout::toString() const
{
    QVector<int> hiddenColumns(hidden.cbegin(), hidden.cend());
    std::sort(hiddenColumns.begin(), hiddenColumns.end());
    QString sorting = QStringLiteral("s");
    if (sortColumn >= 0) {
        sorting += QString::number(sortColumn) + QLatin1Char(sortOrder == Qt::AscendingOrder ? 'a' : 'd');
    }
    const QString text = QStringList{Version,
                                     QString::number(tableId),
                                     QString::number(order.size()),
                                     QLatin1Char('o') + joined(order),
                                     QLatin1Char('w') + joined(widths),
                                     QLatin1Char('h') + joined(hiddenColumns),
                                     sorting}
                             .join(QLatin1Char('|'));
    return text + QLatin1Char('|') + checksum(text);
}

bool TableLayout::fromString(const QString& text, TableLayout& layout)
{
    if (text.size() > LongestText) {
        return false;
    }
    const QStringList parts = text.split(QLatin1Char('|'));
    if (parts.size() != 8 || parts.at(0) != Version ||
        checksum(text.left(text.lastIndexOf(QLatin1Char('|')))) != parts.at(7)) {
        return false;
    }
    TableLayout out;
    bool isNumber = false;
    out.tableId = parts.at(1).toInt(&isNumber);
    int columns = 0;
    QVector<int> hidden;
    if (!isNumber || !number(parts.at(2), MostColumns, columns) ||
        !numbers(parts.at(3), QLatin1Char('o'), columns - 1, out.order) ||
        !numbers(parts.at(4), QLatin1Char('w'), WidestColumn, out.widths) ||
        !numbers(parts.at(5), QLatin1Char('h'), columns - 1, hidden)) {
        return false;
    }
    const QSet<int> placed(out.order.cbegin(), out.order.cend());
    out.hidden = QSet<int>(hidden.cbegin(), hidden.cend());
    if (out.order.size() != columns || placed.size() != columns || out.widths.size() != columns ||
        out.hidden.size() != hidden.size()) {
        return false;
    }
    if (std::any_of(out.widths.cbegin(), out.widths.cend(),
                    [](int width) { return width != 0 && width < NarrowestColumn; })) {
        return false;
    }
    const QString& sorting = parts.at(6);
    if (!sorting.startsWith(QLatin1Char('s'))) {
        return false;
    }
    if (sorting.size() > 1) {
        const QChar way = sorting.at(sorting.size() - 1);
        if ((way != QLatin1Char('a') && way != QLatin1Char('d')) ||
            !number(sorting.mid(1, sorting.size() - 2), columns - 1, out.sortColumn)) {
            return false;
        }
        out.sortOrder = way == QLatin1Char('a') ? Qt::AscendingOrder : Qt::DescendingOrder;
    }
    layout = out;
    return true;
}

} // namespace WQ
