// SPDX-License-Identifier: Apache-2.0
#include <nvservice/Bson.h>
#include <nvservice/Codec.h>
#include <nvservice/Utf8.h>

#include <array>
#include <charconv>
#include <utility>

namespace bson
{

namespace
{

using nvservice::readLittleEndian;

// A longer text or code shows its first bytes alone.
constexpr std::size_t LongTextBytes = 160;
constexpr std::size_t ShownTextBytes = 150;
constexpr std::size_t LongCodeBytes = 80;
constexpr std::size_t ShownCodeBytes = 70;
constexpr std::size_t ShownBinaryBytes = 80;

constexpr std::string_view Ellipsis = "...";
constexpr char LowerDigits[] = "0123456789abcdef";
constexpr char UpperDigits[] = "0123456789ABCDEF";

class TextWriter
{
public:
    explicit TextWriter(bool full) : m_full(full) {}

    void write(const BSONObj& document, bool isArray);
    std::string take() { return std::move(m_text); }

private:
    void write(const BSONElement& element);
    void writeNumber(double number);
    void writeHex(std::string_view bytes, const char* digits);
    void writeShortened(std::string_view text, std::size_t longBytes, std::size_t shownBytes);

    std::string m_text;
    const bool m_full;
    int m_depth = 0;
};

void TextWriter::write(const BSONObj& document, bool isArray)
{
    if (m_depth == nvservice::MaxDocumentDepth) {
        m_text += Ellipsis;
        return;
    }
    ++m_depth;
    m_text += isArray ? '[' : '{';
    for (BSONObjIterator it(document); it.more();) {
        const BSONElement element = it.next();
        m_text += ' ';
        if (!isArray) {
            m_text.append(element.fieldName()).append(": ");
        }
        write(element);
        m_text += it.more() ? ',' : ' ';
    }
    m_text += isArray ? ']' : '}';
    --m_depth;
}

void TextWriter::write(const BSONElement& element)
{
    const std::string_view value = element.value();
    switch (element.type()) {
    case EOO:
        break;
    case NumberDouble:
        writeNumber(element.numberDouble());
        break;
    case NumberInt:
    case NumberLong:
        m_text += std::to_string(element.numberLong());
        break;
    case String:
    case Symbol:
        m_text += '"';
        writeShortened(element.str(), LongTextBytes, ShownTextBytes);
        m_text += '"';
        break;
    case Code:
        writeShortened(element.str(), LongCodeBytes, ShownCodeBytes);
        break;
    case Object:
    case Array:
        write(element.embeddedObject(), element.type() == Array);
        break;
    case Bool:
        m_text += element.boolean() ? "true" : "false";
        break;
    case Null:
        m_text += "null";
        break;
    case Undefined:
        m_text += "undefined";
        break;
    case MinKey:
        m_text += "MinKey";
        break;
    case MaxKey:
        m_text += "MaxKey";
        break;
    case Date:
        m_text += "new Date(" + std::to_string(readLittleEndian<std::int64_t>(value.data())) + ')';
        break;
    case Timestamp:
        m_text += "Timestamp " + std::to_string(readLittleEndian<std::uint32_t>(value.data() + 4)) + '|' +
                  std::to_string(readLittleEndian<std::uint32_t>(value.data()));
        break;
    case ObjectId:
        m_text += "ObjectId('";
        writeHex(value, LowerDigits);
        m_text += "')";
        break;
    case DBRef: {
        const std::size_t textBytes = value.size() - ObjectIdBytes;
        m_text.append("DBRef('").append(value.substr(LengthBytes, textBytes - LengthBytes - 1)).append("',");
        writeHex(value.substr(textBytes), LowerDigits);
        m_text += ')';
        break;
    }
    case RegEx: {
        const std::size_t patternBytes = value.find('\0');
        m_text.append("/").append(value.substr(0, patternBytes)).append("/");
        m_text.append(value.substr(patternBytes + 1, value.size() - patternBytes - 2));
        break;
    }
    case BinData: {
        const std::string_view bytes = element.binData();
        m_text += "BinData(" + std::to_string(element.binDataType()) + ", ";
        const bool isCut = !m_full && bytes.size() > ShownBinaryBytes;
        writeHex(isCut ? bytes.substr(0, ShownBinaryBytes) : bytes, UpperDigits);
        m_text.append(isCut ? Ellipsis : "").append(")");
        break;
    }
    }
}

void TextWriter::writeNumber(double number)
{
    constexpr int Digits = 16;
    std::array<char, 32> buffer{};
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::general, Digits);
    const std::string_view text(buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data()));
    m_text += text;
    if (text.find_first_of(".en") == std::string_view::npos) {
        m_text += ".0"; // not an integer, infinite or no number
    }
}

void TextWriter::writeHex(std::string_view bytes, const char* digits)
{
    for (const char byte : bytes) {
        m_text += digits[static_cast<unsigned char>(byte) >> 4U];
        m_text += digits[static_cast<unsigned char>(byte) & 0xFU];
    }
}

void TextWriter::writeShortened(std::string_view text, std::size_t longBytes, std::size_t shownBytes)
{
    if (m_full || text.size() < longBytes) {
        m_text += text;
    } else {
        m_text.append(nvservice::cutUtf8(text, shownBytes)).append(Ellipsis);
    }
}

} // namespace

std::string BSONObj::toString(bool isArray, bool full) const
{
    TextWriter writer(full);
    writer.write(*this, isArray);
    return writer.take();
}

} // namespace bson
