// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CSearchIndex.h>
#include <WQ/IBaseHpfTableData.h>
#include <WQ/TableFilter.h>

#include <map>
#include <vector>

namespace WQ
{

/// The filters of a model's columns, and the search keys of columns that were filtered by Latin letters.
class CHpfFilter
{
public:
    /// Returns false if the column's filter does not change. A filter that every row passes counts as none.
    bool set(int column, const FilterPair& filter);
    bool remove(int column) { return m_filters.erase(column) > 0; }
    /// Returns false if there was none.
    bool clear();
    /// Drops the search keys, because texts of records have changed.
    void forgetTexts() { m_indexes.clear(); }
    bool isEmpty() const { return m_filters.empty(); }
    FilterPair of(int column) const;

    /// One entry per record: 1 if it passes all filters except that of column `except`; 0 before `from`.
    std::vector<char> admitted(const std::vector<IBaseHpfTableDataPtr>& records, int from, int except = -1);
    /// One entry per record: 1 if its text in the column contains `text`.
    std::vector<char> containing(const std::vector<IBaseHpfTableDataPtr>& records, int column, const QString& text);

private:
    void narrowByContains(const std::vector<IBaseHpfTableDataPtr>& records, std::size_t from, int column,
                          const QSet<QString>& texts, std::vector<char>& admitted);

    std::map<int, FilterPair> m_filters;
    std::map<int, CSearchIndex> m_indexes;
};

} // namespace WQ
