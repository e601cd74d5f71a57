// SPDX-License-Identifier: Apache-2.0
#include "hpf/CHpfFilter.h"

#include "search/MixedMatch.h"
#include "tablekit/CContainsMatcher.h"

#include <algorithm>

namespace WQ
{

bool CHpfFilter::set(int column, const FilterPair& filter)
{
    FilterPair wanted = filter;
    if (wanted.first == FilterContains) {
        wanted.second.remove(QString());
        if (wanted.second.isEmpty()) {
            return remove(column);
        }
    }
    if (of(column) == wanted) {
        return false;
    }
    m_filters[column] = wanted;
    return true;
}

bool CHpfFilter::search(const QVector<int>& columns, const QString& text)
{
    const bool isChanged = text != m_searchText || (!text.isEmpty() && columns != m_searchColumns);
    m_searchColumns = columns;
    m_searchText = text;
    return isChanged;
}

bool CHpfFilter::clear()
{
    const bool isChanged = !isEmpty();
    m_filters.clear();
    m_searchText.clear();
    return isChanged;
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
    std::vector<char> byKeys;
    for (const CContainsMatcher& matcher : matchers) {
        if (matcher.word().isEmpty()) {
            continue;
        }
        CSearchIndex& index = m_indexes[column];
        for (auto row = static_cast<std::size_t>(index.size()); row < records.size(); ++row) {
            index.append(records[row]->getFilterQString(column));
        }
        byKeys.resize(records.size(), 0);
        for (const int row : index.find({matcher.word()})) {
            byKeys[static_cast<std::size_t>(row)] = 1;
        }
    }
    // A search by Latin letters alone finds every plain match, too.
    matchers.erase(std::remove_if(matchers.begin(), matchers.end(),
                                  [](const CContainsMatcher& matcher) {
                                      return !matcher.word().isEmpty() && !isMixed(matcher.word());
                                  }),
                   matchers.end());
    for (std::size_t row = from; row < records.size(); ++row) {
        if (!admitted[row] || (!byKeys.empty() && byKeys[row])) {
            continue;
        }
        const QString text = matchers.empty() ? QString() : records[row]->getFilterQString(column);
        bool any = false;
        for (const CContainsMatcher& matcher : matchers) {
            any = any || matcher.matchesPlainly(text);
        }
        admitted[row] = any;
    }
}

void CHpfFilter::narrowBySearch(const std::vector<IBaseHpfTableDataPtr>& records, std::size_t from,
                                std::vector<char>& admitted)
{
    std::vector<char> missed = admitted;
    for (const int column : m_searchColumns) {
        std::vector<char> hits = missed;
        narrowByContains(records, from, column, {m_searchText}, hits);
        std::transform(missed.begin(), missed.end(), hits.begin(), missed.begin(),
                       [](char open, char hit) { return char(open && !hit); });
    }
    std::transform(admitted.begin(), admitted.end(), missed.begin(), admitted.begin(),
                   [](char open, char miss) { return char(open && !miss); });
}

std::vector<char> CHpfFilter::admitted(const std::vector<IBaseHpfTableDataPtr>& records, int from, int except)
{
    std::vector<char> admitted(records.size(), 1);
    std::fill(admitted.begin(), admitted.begin() + from, char(0));
    for (const auto& [column, filter] : m_filters) {
        if (column == except) {
            continue;
        }
        if (filter.first == FilterContains) {
            narrowByContains(records, static_cast<std::size_t>(from), column, filter.second, admitted);
            continue;
        }
        for (auto row = static_cast<std::size_t>(from); row < records.size(); ++row) {
            if (admitted[row]) {
                admitted[row] = filter.second.contains(records[row]->getFilterQString(column));
            }
        }
    }
    if (!m_searchText.isEmpty()) {
        narrowBySearch(records, static_cast<std::size_t>(from), admitted);
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
