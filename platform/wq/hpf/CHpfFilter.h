// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CSearchIndex.h>
#include <WQ/IBaseHpfTableData.h>
#include <WQ/TableFilter.h>

#include <QVector>

#include <map>
#include <vector>

namespace WQ
{

/// The filters of a model's columns, the search over several of them, and the search keys of columns that were filtered
/// by Latin letters.
class CHpfFilter
{
public:
    /// Returns false if the column's filter does not change. A filter that every row passes counts as none.
    bool set(int column, const FilterPair& filter);
    bool remove(int column) { return m_filters.erase(column) > 0; }
    /// Returns false if the search does not change. An empty text ends it.
    bool search(const QVector<int>& columns, const QString& text);
    /// Removes filters and search. Returns false if there were none.
    bool clear();
    /// Drops the search keys, because texts of records have changed.
    void forgetTexts() { m_indexes.clear(); }
    bool isEmpty() const { return m_filters.empty() && m_searchText.isEmpty(); }
    FilterPair of(int column) const;

    /// One entry per record: 1 if it passes the search and all filters except that of column `except`; 0 before `from`.
    std::vector<char> admitted(const std::vector<IBaseHpfTableDataPtr>& records, int from, int except = -1);
    /// One entry per record: 1 if its text in the column contains `text`.
    std::vector<char> containing(const std::vector<IBaseHpfTableDataPtr>& records, int column, const QString& text);

private:
    void narrowByContains(const std::vector<IBaseHpfTableDataPtr>& records, std::size_t from, int column,
                          const QSet<QString>& texts, std::vector<char>& admitted);

    void narrowBySearch(const std::vector<IBaseHpfTableDataPtr>& records, std::size_t from,
                        std::vector<char>& admitted);

    std::map<int, FilterPair> m_filters;
    QVector<int> m_searchColumns;
    QString m_searchText;
    std::map<int, CSearchIndex> m_indexes;
};

} // namespace WQ
