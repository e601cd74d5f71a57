// SPDX-License-Identifier: Apache-2.0
#include "CsvCell.h"

#include <utils/CCsvWriter.h>

#include <algorithm>
#include <utility>

namespace utils
{

namespace
{

constexpr ushort ByteOrderMark = 0xFEFF;

/// The text of the cell, before it is quoted.
QString cellOf(const QString& value, ECsvForm form)
{
    QString inner;
    if (form == ECsvForm::Exact && !value.isEmpty()) {
        return exactCell(value);
    }
    if (hasGuard(value) || (form == ECsvForm::Guarded && looksLikeFormula(value))) {
        return QLatin1Char('\'') + value;
    }
    return readExactCell(value, inner) ? exactCell(value) : value;
}

} // namespace

CCsvWriter::CCsvWriter(QChar separator, const QString& lineEnd) : m_separator(separator), m_lineEnd(lineEnd) {}

void CCsvWriter::add(const QString& value, ECsvForm form)
{
    const QString cell = cellOf(value, form);
    if (!m_isFirst) {
        m_text += m_separator;
    }
    m_isFirst = false;
    m_isEmpty = m_isEmpty && cell.isEmpty();
    if (needsQuotes(cell)) {
        m_text += quotedCell(cell);
    } else {
        m_text += cell;
    }
}

void CCsvWriter::endRow()
{
    if (m_isEmpty) {
        m_text.insert(m_rowBegin, quotedCell(QString()));
    }
    m_text += m_lineEnd;
    m_rowBegin = m_text.size();
    m_isFirst = m_isEmpty = true;
}

QString CCsvWriter::take()
{
    m_rowBegin = 0;
    return std::exchange(m_text, QString());
}

bool CCsvWriter::needsQuotes(const QString& cell) const
{
    if (cell.isEmpty()) {
        return false;
    }
    // The usual spelling of ="0012" needs none.
    QString value;
    const bool isExact = readExactCell(cell, value);
    const QString& text = isExact ? value : cell;
    const bool isSpecial = std::any_of(text.begin(), text.end(), [this](QChar letter) {
        return letter == m_separator || letter == QLatin1Char('"') || letter == QLatin1Char('\n') ||
               letter == QLatin1Char('\r');
    });
    return isSpecial || cell.at(0).isSpace() || cell.at(cell.size() - 1).isSpace() || cell.at(0) == ByteOrderMark;
}

} // namespace utils
