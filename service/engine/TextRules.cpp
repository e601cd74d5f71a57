// SPDX-License-Identifier: Apache-2.0
#include "service/engine/TextRules.h"

#include <utils/Translation.h>

#include <QVector>

#include <unicode/uchar.h>

#include <algorithm>
#include <vector>

namespace service
{

namespace
{

/// Visible characters according to Unicode, but fonts draw nothing: the braille pattern without dots, the object
/// replacement character, the null notehead.
constexpr uint BlankSigns[] = {0x2800, 0xfffc, 0x1d159};

bool isInvisible(uint character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return QChar::isNonCharacter(character) ||
               u_hasBinaryProperty(static_cast<UChar32>(character), UCHAR_DEFAULT_IGNORABLE_CODE_POINT) ||
               std::find(std::begin(BlankSigns), std::end(BlankSigns), character) != std::end(BlankSigns);
    }
}

/// A combining mark alone is not visible.
bool isBlank(uint character)
{
    return QChar::isSpace(character) || QChar::isMark(character);
}

} // namespace

bool hasInvisibleCharacters(const QString& text)
{
    const QVector<uint> characters = text.toUcs4();
    return std::any_of(characters.begin(), characters.end(), isInvisible);
}

std::string visibleTextProblem(const QString& text)
{
    const QVector<uint> characters = text.toUcs4();
    if (text.trimmed().isEmpty()) {
        return utils::text("service", "不能为空");
    }
    if (std::any_of(characters.begin(), characters.end(), isInvisible)) {
        return utils::text("service", "不能包含控制字符或不可见字符，只能使用看得见的文字、数字、符号和空格");
    }
    if (std::all_of(characters.begin(), characters.end(), isBlank)) {
        return utils::text("service", "至少要有一个看得见的文字、数字或符号");
    }
    return {};
}

std::string quoted(const std::string& text)
{
    constexpr int MaxQuotedLength = 80;
    const QString valid = QString::fromStdString(text);
    return "“" +
           (valid.size() > MaxQuotedLength ? valid.left(MaxQuotedLength) + QStringLiteral("…") : valid).toStdString() +
           "”";
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
        if (element.isABSONObj()) {
            open.emplace_back(element.embeddedObject());
        } else if (element.type() == bson::String && element.str().find('\0') != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

} // namespace service
