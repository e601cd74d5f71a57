#pragma once

#include <WQ/CSearchIndex.h>
#include <WQ/IBaseHpfTableData.h>
#include <WQ/TableFilter.h>

#include <map>
#include <vector>

namespace WQ
{

/// The filters of a model's columns, and the search keys of the columns that were filtered by Latin letters.
class CHpfFilter
{
public:
    /// False if the column's filter stays what it was. A filter that admits everything is none.
    bool set(int column, const FilterPair& filter);
    bool remove(int column) { return m_filters.erase(column) > 0; }
    void clear() { m_filters.clear(); }
    /// What was remembered of the records' texts is no longer true.
    void forgetTexts() { m_indexes.clear(); }
    bool isEmpty() const { return m_filters.empty(); }
    FilterPair of(int column) const;

    /// An entry per record, 1 if every filter but that of column `except` admits it; 0 before `from`.
    std::vector<char> admitted(const std::vector<IBaseHpfTableDataPtr>& records, int from, int except);
    /// An entry per record, 1 if its text in the column contains `text`.
    std::vector<char> containing(const std::vector<IBaseHpfTableDataPtr>& records, int column, const QString& text);

private:
    void narrowByContains(const std::vector<IBaseHpfTableDataPtr>& records, std::size_t from, int column,
                          const QSet<QString>& texts, std::vector<char>& admitted);

    std::map<int, FilterPair> m_filters;
    std::map<int, CSearchIndex> m_indexes;
};

} // namespace WQ
