#include "exempt/CategorySearch.h"

#include <WQ/Pinyin.h>
#include <WQ/StringConversion.h>

namespace QAV
{

CCategorySearchKey::CCategorySearchKey(const CategoryPtr& category) : m_category(category)
{
    if (!category)
        return;
    m_name = WQ::sToQs(category->categoryName);
    m_foldedName = foldCase(m_name);
    std::vector<std::string> parts;
    WQ::getPy(parts, category->categoryName);
    std::string pinyin;
    for (const std::string& part : parts)
        pinyin += part;
    m_foldedPinyin = foldCase(WQ::sToQs(pinyin));
}

bool CCategorySearchKey::contains(const QString& foldedText) const
{
    return m_category && (m_foldedName.contains(foldedText) || m_foldedPinyin.contains(foldedText));
}

QString foldCase(QString text)
{
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            const uint folded = QChar::toCaseFolded(QChar::surrogateToUcs4(text.at(i), text.at(i + 1)));
            text[i] = QChar(QChar::highSurrogate(folded));
            text[++i] = QChar(QChar::lowSurrogate(folded));
        } else {
            text[i] = text.at(i).toCaseFolded();
        }
    }
    return text;
}

} // namespace QAV
