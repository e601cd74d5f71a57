#include "account/tradelimit/SeparatedText.h"

#include <QTextCodec>

#include <algorithm>

namespace QAV
{

namespace
{

bool decodeAs(const char* codecName, const QByteArray& bytes, QString& text)
{
    const QTextCodec* const codec = QTextCodec::codecForName(codecName);
    if (!codec)
        return false;
    // The decoder takes the byte order mark off.
    QTextCodec::ConverterState state;
    text = codec->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0 && !text.contains(QChar::ReplacementCharacter);
}

class CSplitter
{
public:
    CSplitter(const QString& text, QChar separator) : m_text(text), m_separator(separator) {}

    std::vector<SeparatedRow> run()
    {
        while (m_at < m_text.size())
            readRow();
        return std::move(m_rows);
    }

private:
    bool atEnd() const { return m_at >= m_text.size(); }
    bool atRowEnd() const
    {
        return atEnd() || m_text.at(m_at) == QLatin1Char('\n') || m_text.at(m_at) == QLatin1Char('\r');
    }
    bool atCellEnd() const { return atRowEnd() || m_text.at(m_at) == m_separator; }

    void readRow()
    {
        SeparatedRow row;
        row.line = m_line;
        for (;;) {
            row.cells << readCell();
            if (atRowEnd())
                break;
            ++m_at;
        }
        skipRowEnd();
        if (std::any_of(row.cells.begin(), row.cells.end(), [](const QString& cell) { return !cell.isEmpty(); }))
            m_rows.push_back(std::move(row));
    }

    void skipRowEnd()
    {
        if (atEnd())
            return;
        m_at += m_text.midRef(m_at, 2) == QLatin1String("\r\n") ? 2 : 1;
        ++m_line;
    }

    QString readCell()
    {
        const int begin = m_at;
        while (!atCellEnd() && m_text.at(m_at).isSpace())
            ++m_at;
        if (m_text.midRef(m_at, 2) == QLatin1String("=\""))
            ++m_at;
        if (!atEnd() && m_text.at(m_at) == QLatin1Char('"'))
            return readQuoted();
        m_at = begin;
        while (!atCellEnd())
            ++m_at;
        return plain(m_text.mid(begin, m_at - begin));
    }

    QString readQuoted()
    {
        QString cell;
        for (++m_at; !atEnd(); ++m_at) {
            const QChar letter = m_text.at(m_at);
            if (letter == QLatin1Char('"')) {
                if (m_text.midRef(m_at + 1, 1) != QLatin1String("\""))
                    break;
                ++m_at;
            }
            if (letter == QLatin1Char('\n'))
                ++m_line;
            cell += letter;
        }
        ++m_at;
        // Whatever stands behind the quoted part belongs to the cell.
        const int rest = std::min(m_at, m_text.size());
        for (m_at = rest; !atCellEnd();)
            ++m_at;
        return plain(cell + m_text.mid(rest, m_at - rest));
    }

    static QString plain(const QString& cell)
    {
        QString text = cell.trimmed();
        if (text.startsWith(QLatin1String("=\"")) && text.endsWith(QLatin1Char('"')) && text.size() > 2)
            text = text.mid(2, text.size() - 3);
        if (text.startsWith(QLatin1Char('\'')))
            text.remove(0, 1);
        return text.trimmed();
    }

    const QString& m_text;
    const QChar m_separator;
    int m_at = 0;
    int m_line = 1;
    std::vector<SeparatedRow> m_rows;
};

} // namespace

bool decodeSeparatedText(const QByteArray& bytes, QString& text)
{
    return decodeAs("UTF-8", bytes, text) || decodeAs("GB18030", bytes, text);
}

std::vector<SeparatedRow> splitSeparatedText(const QString& text, QChar separator)
{
    return CSplitter(text, separator).run();
}

} // namespace QAV
