// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <vector>

namespace WQ
{

/// Maps rows to records. Stores nothing without a sorting or filter.
class CHpfRowOrder
{
public:
    int dataCount() const { return m_dataCount; }
    int rowCount() const;
    int dataIndex(int row) const;
    /// The row of a record; -1 if it is not shown. A single call searches; many calls in succession build an index.
    int rowOf(int dataIndex) const;

    void clear();
    /// Raises the number of records to `dataCount`; new ones come after all others. For `admitted` see setFilter; it is
    /// not used without a filter.
    void append(int dataCount, const std::vector<char>& admitted);
    /// How many of the records from `dataCount()` to `newCount` would be shown.
    int shownOf(int newCount, const std::vector<char>& admitted) const;
    /// Sets the data indices of all records in their new order; empty: the order of arrival.
    void setSorted(std::vector<std::uint32_t> sorted);
    /// Shows the records whose entry is not 0.
    void setFilter(std::vector<char> admitted);
    void clearFilter();
    bool isFiltered() const { return m_filtered; }

private:
    void rebuildShown();

    int m_dataCount = 0;
    bool m_filtered = false;
    std::vector<std::uint32_t> m_sorted;
    std::vector<std::uint32_t> m_shown;
    std::vector<char> m_admitted;
    mutable std::vector<std::int32_t> m_rowOfData;
    mutable int m_searches = 0;
};

} // namespace WQ
