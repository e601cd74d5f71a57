// SPDX-License-Identifier: Apache-2.0
#include "hpf/CHpfRowOrder.h"

#include <algorithm>

namespace WQ
{

int CHpfRowOrder::rowCount() const
{
    return m_filtered ? static_cast<int>(m_shown.size()) : m_dataCount;
}

int CHpfRowOrder::dataIndex(int row) const
{
    const auto at = static_cast<std::size_t>(row);
    if (m_filtered) {
        return static_cast<int>(m_shown[at]);
    }
    return m_sorted.empty() ? row : static_cast<int>(m_sorted[at]);
}

int CHpfRowOrder::rowOf(int dataIndex) const
{
    if (dataIndex < 0 || dataIndex >= m_dataCount) {
        return -1;
    }
    if (!m_filtered && m_sorted.empty()) {
        return dataIndex;
    }
    const std::vector<std::uint32_t>& rows = m_filtered ? m_shown : m_sorted;
    if (m_rowOfData.empty()) {
        if (++m_searches <= 8) {
            const auto found = std::find(rows.begin(), rows.end(), static_cast<std::uint32_t>(dataIndex));
            return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
        }
        m_rowOfData.assign(static_cast<std::size_t>(m_dataCount), -1);
        for (std::size_t row = 0; row < rows.size(); ++row) {
            m_rowOfData[rows[row]] = static_cast<std::int32_t>(row);
        }
    }
    return m_rowOfData[static_cast<std::size_t>(dataIndex)];
}

void CHpfRowOrder::clear()
{
    *this = CHpfRowOrder();
}

int CHpfRowOrder::shownOf(int newCount, const std::vector<char>& admitted) const
{
    if (!m_filtered) {
        return newCount - m_dataCount;
    }
    return static_cast<int>(std::count(admitted.begin() + m_dataCount, admitted.begin() + newCount, char(1)));
}

void CHpfRowOrder::append(int dataCount, const std::vector<char>& admitted)
{
    const auto from = static_cast<std::uint32_t>(m_dataCount);
    const auto to = static_cast<std::uint32_t>(dataCount);
    for (std::uint32_t data = from; data < to; ++data) {
        if (!m_sorted.empty()) {
            m_sorted.push_back(data);
        }
        if (m_filtered) {
            m_admitted.push_back(admitted[data]);
            if (admitted[data]) {
                m_shown.push_back(data);
            }
        }
    }
    m_dataCount = dataCount;
    m_rowOfData = {};
}

void CHpfRowOrder::rebuildShown()
{
    m_rowOfData = {};
    m_searches = 0;
    m_shown = {};
    if (!m_filtered) {
        return;
    }
    m_shown.reserve(static_cast<std::size_t>(std::count(m_admitted.begin(), m_admitted.end(), char(1))));
    if (m_sorted.empty()) {
        for (std::size_t data = 0; data < m_admitted.size(); ++data) {
            if (m_admitted[data]) {
                m_shown.push_back(static_cast<std::uint32_t>(data));
            }
        }
        return;
    }
    for (std::uint32_t data : m_sorted) {
        if (m_admitted[data]) {
            m_shown.push_back(data);
        }
    }
}

void CHpfRowOrder::setSorted(std::vector<std::uint32_t> sorted)
{
    m_sorted = std::move(sorted);
    rebuildShown();
}

void CHpfRowOrder::setFilter(std::vector<char> admitted)
{
    m_filtered = true;
    m_admitted = std::move(admitted);
    rebuildShown();
}

void CHpfRowOrder::clearFilter()
{
    m_filtered = false;
    m_admitted = {};
    rebuildShown();
}

} // namespace WQ
