#include "service/import/CsvWriter.h"

#include <QTextCodec>

#include <algorithm>

namespace service
{

namespace
{

bool isCode(EColumn column)
{
    return column == EColumn::AccountId || column == EColumn::UnitId || column == EColumn::SecurityCode;
}

QString quotedField(const QString& value)
{
    return QLatin1Char('"') + QString(value).replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"');
}

/// As short as a reader can take it back.
QString fieldOf(const QString& value, bool isExact)
{
    if (isExact || value != value.trimmed())
        return QLatin1Char('=') + quotedField(value);
    const bool isSpecial = std::any_of(value.begin(), value.end(), [](QChar letter) {
        return letter == QLatin1Char('"') || letter == QLatin1Char(',') || letter == QLatin1Char('\n') ||
               letter == QLatin1Char('\r');
    });
    return isSpecial ? quotedField(value) : value;
}

} // namespace

CsvWriter::CsvWriter(const CsvFormat& format, std::vector<EColumn> columns)
    : m_format(format), m_columns(std::move(columns))
{
    QStringList titles;
    for (const EColumn column : m_columns)
        titles << columnName(column);
    m_text = titles.join(QLatin1Char(',')) + QLatin1String("\r\n");
}

void CsvWriter::add(const std::vector<std::string>& row)
{
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        const QString value = QString::fromStdString(row.at(i));
        if (i > 0)
            m_text += QLatin1Char(',');
        m_text += fieldOf(value, m_format.forSpreadsheets && isCode(m_columns[i]) && !value.isEmpty());
    }
    m_text += QLatin1String("\r\n");
}

QByteArray CsvWriter::bytes() const
{
    if (m_format.encoding != ECsvEncoding::Gb18030)
        return (m_format.encoding == ECsvEncoding::Utf8WithMark ? QByteArray("\xEF\xBB\xBF") : QByteArray()) +
               m_text.toUtf8();
    const QTextCodec* const codec = QTextCodec::codecForName("GB18030");
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QByteArray encoded = codec ? codec->fromUnicode(m_text.constData(), m_text.size(), &state) : QByteArray();
    return state.invalidChars == 0 ? encoded : QByteArray();
}

} // namespace service
