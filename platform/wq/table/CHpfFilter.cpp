#include "table/CHpfFilter.h"

#include <WQ/Pinyin.h>

#include <algorithm>

namespace WQ
{

namespace
{

QByteArray latinOf(const QString& text)
{
    bool letter = false;
    QByteArray latin;
    for (QChar c : text) {
        const ushort code = c.unicode();
        const bool isLetter = (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z');
        if (!isLetter && !(code >= '0' && code <= '9'))
            return {};
        letter = letter || isLetter;
        latin.append(static_cast<char>(isLetter ? code | 0x20 : code));
    }
    return letter ? latin : QByteArray();
}

} // namespace

CContainsMatcher::CContainsMatcher(const QString& part) : m_plain(part, Qt::CaseInsensitive), m_latin(latinOf(part)) {}

bool CContainsMatcher::matches(const QString& text) const
{
    if (matchesPlainly(text))
        return true;
    if (m_latin.isEmpty())
        return false;
    const PinyinKeys keys = pinyinSearchKeys(text);
    return keys.syllables.contains(QLatin1String(m_latin)) || keys.initials.contains(QLatin1String(m_latin));
}

bool CHpfFilter::set(int column, const FilterPair& filter)
{
    FilterPair wanted = filter;
    if (wanted.first == FilterContains) {
        wanted.second.remove(QString());
        if (wanted.second.isEmpty())
            return remove(column);
    }
    if (of(column) == wanted)
        return false;
    m_filters[column] = wanted;
    return true;
}

FilterPair CHpfFilter::of(int column) const
{
    const auto found = m_filters.find(column);
    return found == m_filters.end() ? FilterPair(FilterNone, {}) : found->second;
}

void CHpfFilter::narrowByContains(const std::vector<IBaseHpfTableDataPtr>& records, std::size_t from, int column,
                                  const QSet<QString>& texts, std::vector<char>& admitted)
{
    std::vector<CContainsMatcher> matchers(texts.begin(), texts.end());
    std::vector<char> byPinyin;
    for (const CContainsMatcher& matcher : matchers) {
        if (matcher.latin().isEmpty())
            continue;
        CPinyinArena& arena = m_pinyin[column];
        for (auto row = static_cast<std::size_t>(arena.size()); row < records.size(); ++row)
            arena.append(records[row]->getFilterQString(column));
        byPinyin.resize(records.size(), 0);
        arena.mark(matcher.latin(), byPinyin);
    }
    for (std::size_t row = from; row < records.size(); ++row) {
        if (!admitted[row] || (!byPinyin.empty() && byPinyin[row]))
            continue;
        const QString text = records[row]->getFilterQString(column);
        bool any = false;
        for (const CContainsMatcher& matcher : matchers)
            any = any || matcher.matchesPlainly(text);
        admitted[row] = any;
    }
}

std::vector<char> CHpfFilter::admitted(const std::vector<IBaseHpfTableDataPtr>& records, int from, int except)
{
    std::vector<char> admitted(records.size(), 1);
    std::fill(admitted.begin(), admitted.begin() + from, char(0));
    for (const auto& [column, filter] : m_filters) {
        if (column == except)
            continue;
        if (filter.first == FilterContains) {
            narrowByContains(records, static_cast<std::size_t>(from), column, filter.second, admitted);
            continue;
        }
        for (auto row = static_cast<std::size_t>(from); row < records.size(); ++row) {
            if (admitted[row])
                admitted[row] = filter.second.contains(records[row]->getFilterQString(column));
        }
    }
    return admitted;
}

std::vector<char> CHpfFilter::containing(const std::vector<IBaseHpfTableDataPtr>& records, int column,
                                         const QString& text)
{
    std::vector<char> hits(records.size(), 1);
    narrowByContains(records, 0, column, {text}, hits);
    return hits;
}

} // namespace WQ
