// SPDX-License-Identifier: Apache-2.0
#include "CsvCell.h"

#include <utils/CCsvReader.h>
#include <utils/Translation.h>

#include <QCoreApplication>

namespace utils
{

CCsvReader::CCsvReader(const QString& text, QChar separator) : m_text(text), m_separator(separator) {}

bool CCsvReader::next(CsvRow& row)
{
    while (m_error.isSuccess() && !atEnd()) {
        bool isEmpty = true;
        if (readRow(row, isEmpty) && !isEmpty) {
            return true;
        }
    }
    return false;
}

bool CCsvReader::atRowEnd() const
{
    return atEnd() || m_text.at(m_at) == QLatin1Char('\n') || m_text.at(m_at) == QLatin1Char('\r');
}

bool CCsvReader::atCellEnd() const
{
    return atRowEnd() || m_text.at(m_at) == m_separator;
}

bool CCsvReader::readRow(CsvRow& row, bool& isEmpty)
{
    row.line = m_line;
    row.values.clear();
    for (;;) {
        bool isQuoted = false;
        if (!readCell(row, isQuoted)) {
            return false;
        }
        isEmpty = isEmpty && !isQuoted && row.values.back().isEmpty();
        if (atRowEnd()) {
            break;
        }
        ++m_at; // the separator
    }
    skipLineEnd();
    return true;
}

bool CCsvReader::readCell(CsvRow& row, bool& isQuoted)
{
    const int begin = m_at;
    while (!atCellEnd() && m_text.at(m_at).isSpace()) {
        ++m_at;
    }
    const bool isExact = m_text.midRef(m_at, 2) == QLatin1String("=\"");
    if (isExact) {
        ++m_at;
    }
    isQuoted = !atEnd() && m_text.at(m_at) == QLatin1Char('"');
    QString cell;
    if (isQuoted) {
        if (!readQuoted(cell)) {
            return false;
        }
    } else {
        while (!atCellEnd()) {
            ++m_at;
        }
        cell = m_text.mid(begin, m_at - begin).trimmed();
    }
    if (!isExact && !readExactCell(cell, cell) && hasGuard(cell)) {
        cell.remove(0, 1);
    }
    row.values << cell;
    return true;
}

bool CCsvReader::readQuoted(QString& text)
{
    const int line = m_line;
    for (++m_at; !atEnd(); ++m_at) {
        const QChar letter = m_text.at(m_at);
        if (letter == QLatin1Char('"')) {
            ++m_at;
            if (atEnd() || m_text.at(m_at) != QLatin1Char('"')) {
                while (!atCellEnd() && m_text.at(m_at).isSpace()) {
                    ++m_at;
                }
                return atCellEnd() || fail(m_line, QT_TRANSLATE_NOOP("utils", "引号后有多余的内容"));
            }
        } else if (letter == QLatin1Char('\n') ||
                   (letter == QLatin1Char('\r') && m_text.midRef(m_at + 1, 1) != QLatin1String("\n"))) {
            ++m_line;
        }
        text += letter;
    }
    return fail(line, QT_TRANSLATE_NOOP("utils", "引号没有结束"));
}

bool CCsvReader::fail(int line, const char* what)
{
    m_error = NVError(EErrorCode::Malformed, filled(text("utils", "第%1行：%2"), line, text("utils", what)));
    return false;
}

void CCsvReader::skipLineEnd()
{
    if (atEnd()) {
        return;
    }
    m_at += m_text.midRef(m_at, 2) == QLatin1String("\r\n") ? 2 : 1;
    ++m_line;
}

} // namespace utils
