#include "service/import/CsvReader.h"

#include <QTextCodec>

namespace service
{

namespace
{

using utils::EErrorCode;
using utils::NVError;

constexpr int MaxFieldLength = 4096;

bool decodeAs(const char* codecName, const QByteArray& bytes, QString& text)
{
    const QTextCodec* codec = QTextCodec::codecForName(codecName);
    if (!codec)
        return false;
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    text = codec->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0 && !text.contains(QChar::ReplacementCharacter);
}

class Parser
{
public:
    Parser(const QString& text, std::vector<CsvRecord>& records) : m_text(text), m_records(records) {}

    NVError run()
    {
        while (m_at < m_text.size()) {
            m_record.line = m_line;
            const NVError error = readRecord();
            if (!error.isSuccess())
                return error;
            if (m_record.fields.size() > 1 || !m_record.fields.front().isEmpty())
                m_records.push_back(m_record);
            m_record.fields.clear();
        }
        return {};
    }

private:
    bool atEnd() const { return m_at >= m_text.size(); }
    QChar current() const { return m_text.at(m_at); }
    bool atLineEnd() const { return atEnd() || current() == '\n' || current() == '\r'; }

    NVError failure(const char* what) const
    {
        return {EErrorCode::Malformed, "第" + std::to_string(m_record.line) + "行：" + what};
    }

    NVError readRecord()
    {
        for (;;) {
            const NVError error = readField();
            if (!error.isSuccess())
                return error;
            if (m_record.fields.back().size() > MaxFieldLength)
                return failure("内容过长");
            if (atLineEnd()) {
                skipLineEnd();
                return {};
            }
            ++m_at; // the comma
        }
    }

    NVError readField()
    {
        const int start = m_at;
        while (!atLineEnd() && current() != ',' && current().isSpace())
            ++m_at;
        const bool isExact = m_text.midRef(m_at, 2) == QLatin1String("=\"");
        if (isExact)
            ++m_at;
        if (!atEnd() && current() == '"')
            return readQuoted(isExact);
        m_at = start;
        while (!atLineEnd() && current() != ',')
            ++m_at;
        m_record.fields << m_text.mid(start, m_at - start).trimmed();
        return {};
    }

    NVError readQuoted(bool isExact)
    {
        QString value;
        for (++m_at; !atEnd(); ++m_at) {
            if (current() == '"') {
                ++m_at;
                if (atEnd() || current() != '"')
                    return finishQuoted(isExact ? value : value.trimmed());
            } else if (current() == '\n') {
                ++m_line;
            }
            value += current();
        }
        return failure("引号没有结束");
    }

    NVError finishQuoted(const QString& value)
    {
        while (!atLineEnd() && current() != ',') {
            if (!current().isSpace())
                return failure("引号后有多余的内容");
            ++m_at;
        }
        m_record.fields << value;
        return {};
    }

    void skipLineEnd()
    {
        if (atEnd())
            return;
        const bool isPair = m_text.midRef(m_at, 2) == QLatin1String("\r\n");
        m_at += isPair ? 2 : 1;
        ++m_line;
    }

    const QString& m_text;
    std::vector<CsvRecord>& m_records;
    CsvRecord m_record;
    int m_at = 0;
    int m_line = 1;
};

} // namespace

NVError decodeCsvText(const QByteArray& bytes, QString& text)
{
    const QByteArray mark("\xEF\xBB\xBF");
    const QByteArray content = bytes.startsWith(mark) ? bytes.mid(mark.size()) : bytes;
    if (!content.contains('\0') && (decodeAs("UTF-8", content, text) || decodeAs("GB18030", content, text)))
        return {};
    text.clear();
    return {EErrorCode::Malformed, "文件不是UTF-8或GB18030编码的文本"};
}

NVError parseCsv(const QString& text, std::vector<CsvRecord>& records)
{
    records.clear();
    return Parser(text, records).run();
}

} // namespace service
