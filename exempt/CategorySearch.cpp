// SPDX-License-Identifier: Apache-2.0
#include "exempt/CategorySearch.h"

#include <WQ/Pinyin.h>
#include <WQ/StringConversion.h>

namespace QAV
{

CCategorySearchKey::CCategorySearchKey(const CategoryPtr& category) : m_category(category)
{
    if (!category) {
        return;
    }
    m_name = WQ::sToQs(category->categoryName);
    m_foldedName = foldCase(m_name);
    std::vector<std::string> parts;
    WQ::getPy(parts, category->categoryName);
    std::string pinyin;
    for (const std::string& part : parts) {
        pinyin += part;
    }
    m_foldedPinyin = foldCase(WQ::sToQs(pinyin));
}

bool CCategorySearchKey::contains(const QString& foldedText) const
{
    return m_category && (m_foldedName.contains(foldedText) || m_foldedPinyin.contains(foldedText));
}

QString foldCase(QString text)
{
    QChar* const characters = text.data();
    for (int i = 0; i < text.size(); ++i) {
        QChar& character = characters[i];
        if (character.isHighSurrogate() && i + 1 < text.size() && characters[i + 1].isLowSurrogate()) {
            const uint folded = QChar::toCaseFolded(QChar::surrogateToUcs4(character, characters[i + 1]));
            character = QChar(QChar::highSurrogate(folded));
            characters[++i] = QChar(QChar::lowSurrogate(folded));
        } else if (character < QLatin1Char('a') || character > QLatin1Char('z')) {
            character = character.toCaseFolded();
        }
    }
    return text;
}

} // namespace QAV
