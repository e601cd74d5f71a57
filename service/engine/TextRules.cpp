#include "service/engine/TextRules.h"

#include <QVector>

#include <algorithm>
#include <cstring>
#include <vector>

namespace service
{

namespace
{

bool isInvisible(uint character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return QChar::isNonCharacter(character);
    }
}

} // namespace

bool hasInvisibleCharacters(const QString& text)
{
    const QVector<uint> characters = text.toUcs4();
    return std::any_of(characters.begin(), characters.end(), isInvisible);
}

std::string quoted(const std::string& text)
{
    constexpr int longest = 80;
    const QString valid = QString::fromStdString(text);
    return "“" + (valid.size() > longest ? valid.left(longest) + QStringLiteral("…") : valid).toStdString() + "”";
}

bool hasNulCharacters(const bson::BSONObj& document)
{
    std::vector<bson::BSONObjIterator> open = {bson::BSONObjIterator(document)};
    while (!open.empty()) {
        if (!open.back().more()) {
            open.pop_back();
            continue;
        }
        const bson::BSONElement element = open.back().next();
        if (element.isABSONObj())
            open.emplace_back(element.embeddedObject());
        else if (element.type() == bson::String &&
                 std::memchr(element.valuestr(), '\0', static_cast<std::size_t>(element.valuestrsize() - 1)))
            return true;
    }
    return false;
}

} // namespace service
