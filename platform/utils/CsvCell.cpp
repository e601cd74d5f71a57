// SPDX-License-Identifier: Apache-2.0
#include "CsvCell.h"

#include <algorithm>

namespace utils
{

namespace
{

constexpr ushort MinusSign = 0x2212;
const QLatin1String ExactBegin("=\"");
const QLatin1String Quote("\"");
const QLatin1String TwoQuotes("\"\"");

bool isSkipped(QChar letter)
{
    const QChar::Category category = letter.category();
    return letter.isSpace() || category == QChar::Other_Control || category == QChar::Other_Format;
}

/// Full-width and small forms are decomposed to the plain one.
bool beginsFormula(QChar letter)
{
    const QString plain = letter.decomposition();
    const ushort code = plain.isEmpty() ? letter.unicode() : plain.at(0).unicode();
    return code == '=' || code == '+' || code == '-' || code == '@' || code == MinusSign;
}

} // namespace

bool looksLikeFormula(const QString& value)
{
    if (value.isEmpty()) {
        return false;
    }
    const ushort first = value.at(0).unicode();
    if (first == '\t' || first == '\r' || first == '\n') {
        return true;
    }
    const auto letter = std::find_if_not(value.begin(), value.end(), isSkipped);
    return letter != value.end() && beginsFormula(*letter);
}

bool hasGuard(const QString& cell)
{
    if (!cell.startsWith(QLatin1Char('\''))) {
        return false;
    }
    const auto letter = std::find_if(cell.begin(), cell.end(), [](QChar c) { return c != QLatin1Char('\''); });
    if (letter == cell.end()) {
        return false;
    }
    return (*letter >= QLatin1Char('0') && *letter <= QLatin1Char('9')) ||
           looksLikeFormula(cell.mid(static_cast<int>(letter - cell.begin())));
}

QString quotedCell(const QString& value)
{
    return Quote + QString(value).replace(Quote, TwoQuotes) + Quote;
}

QString exactCell(const QString& value)
{
    return QLatin1Char('=') + quotedCell(value);
}

bool readExactCell(const QString& cell, QString& value)
{
    if (cell.size() < 3 || !cell.startsWith(ExactBegin) || !cell.endsWith(Quote)) {
        return false;
    }
    const QString inner = cell.mid(2, cell.size() - 3);
    if (QString(inner).remove(TwoQuotes).contains(Quote)) {
        return false;
    }
    value = QString(inner).replace(TwoQuotes, Quote);
    return true;
}

} // namespace utils
