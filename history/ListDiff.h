// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "history/RecordDiff.h"

#include <algorithm>
#include <functional>
#include <type_traits>
#include <unordered_map>

namespace QAV
{

/// The positions of a longest increasing subsequence; negative values are left out.
std::vector<int> longestIncreasing(const std::vector<int>& values);

/// Finds out what became of the items of a list.
template <typename Item, typename Key, typename Same>
class ListDiff
{
public:
    /// @param key   what identifies an item; the n-th of several with one key is compared with the n-th
    /// @param same  whether two items with one key have the same contents
    ListDiff(const std::vector<Item>& before, const std::vector<Item>& after, Key key, Same same)
        : m_before(before), m_after(after), m_key(key), m_same(same)
    {
        trim();
        pair();
        findKept();
    }

    /// Appends a line for each item, in the order of the lists.
    void appendTo(std::vector<DiffLine>& lines, DiffLine line) const
    {
        const auto append = [&](EChange change, int beforeRow, int afterRow) {
            line.change = change;
            line.beforeRow = beforeRow;
            line.afterRow = afterRow;
            lines.push_back(line);
        };
        for (int row = 0; row < m_begin; ++row) {
            append(EChange::Unchanged, row, row);
        }
        int beforeRow = m_begin;
        const auto appendRemovedUpTo = [&](int end) {
            for (; beforeRow < end; ++beforeRow) {
                if (!m_isPaired[index(beforeRow)]) {
                    append(EChange::Removed, beforeRow, -1);
                }
            }
        };
        for (int row = m_begin; row < afterEnd(); ++row) {
            const int partner = m_partner[index(row)];
            if (m_isKept[index(row)]) {
                appendRemovedUpTo(partner);
                append(EChange::Unchanged, partner, row);
                beforeRow = std::max(beforeRow, partner + 1);
            } else if (partner < 0) {
                append(EChange::Added, -1, row);
            } else {
                const bool hasMoved = isSame(partner, row);
                appendRemovedUpTo(hasMoved ? beforeRow : partner);
                append(hasMoved ? EChange::Moved : EChange::Changed, partner, row);
            }
        }
        appendRemovedUpTo(beforeEnd());
        const int shift = size(m_after) - size(m_before);
        for (int row = beforeEnd(); row < size(m_before); ++row) {
            append(EChange::Unchanged, row, row + shift);
        }
    }

private:
    static int size(const std::vector<Item>& items) { return static_cast<int>(items.size()); }
    int beforeEnd() const { return size(m_before) - m_tail; }
    int afterEnd() const { return size(m_after) - m_tail; }
    std::size_t index(int row) const { return static_cast<std::size_t>(row - m_begin); }
    const Item& itemBefore(int row) const { return m_before[static_cast<std::size_t>(row)]; }
    const Item& itemAfter(int row) const { return m_after[static_cast<std::size_t>(row)]; }

    bool isSame(int beforeRow, int afterRow) const { return m_same(itemBefore(beforeRow), itemAfter(afterRow)); }
    bool isEqual(int beforeRow, int afterRow) const
    {
        return m_key(itemBefore(beforeRow)) == m_key(itemAfter(afterRow)) && isSame(beforeRow, afterRow);
    }

    /// Most lists differ in a few places: what is equal at both ends needs no search.
    void trim()
    {
        const int shorter = std::min(size(m_before), size(m_after));
        while (m_begin < shorter && isEqual(m_begin, m_begin)) {
            ++m_begin;
        }
        while (m_tail < shorter - m_begin && isEqual(beforeEnd() - 1, afterEnd() - 1)) {
            ++m_tail;
        }
    }

    void pair()
    {
        using KeyType = std::decay_t<std::invoke_result_t<Key, const Item&>>;
        const auto beforeCount = static_cast<std::size_t>(beforeEnd() - m_begin);
        m_isPaired.assign(beforeCount, false);
        std::vector<int> next(beforeCount, -1); // the next row with the same key
        std::unordered_map<KeyType, int> first;
        first.reserve(beforeCount);
        for (int row = beforeEnd() - 1; row >= m_begin; --row) {
            const auto [place, isNew] = first.try_emplace(m_key(itemBefore(row)), row);
            if (!isNew) {
                next[index(row)] = place->second;
                place->second = row;
            }
        }
        for (int row = m_begin; row < afterEnd(); ++row) {
            const auto found = first.find(m_key(itemAfter(row)));
            int partner = -1;
            if (found != first.end() && found->second >= 0) {
                partner = found->second;
                found->second = next[index(partner)];
                m_isPaired[index(partner)] = true;
            }
            m_partner.push_back(partner);
        }
    }

    /// Of the items that are the same, as many as possible keep their place; the others have moved.
    void findKept()
    {
        std::vector<int> candidates = m_partner;
        for (int row = m_begin; row < afterEnd(); ++row) {
            int& partner = candidates[index(row)];
            if (partner >= 0 && !isSame(partner, row)) {
                partner = -1;
            }
        }
        m_isKept.assign(candidates.size(), false);
        for (const int position : longestIncreasing(candidates)) {
            m_isKept[static_cast<std::size_t>(position)] = true;
        }
    }

    const std::vector<Item>& m_before;
    const std::vector<Item>& m_after;
    const Key m_key;
    const Same m_same;
    int m_begin = 0; ///< so many items at the beginning are equal
    int m_tail = 0;  ///< and so many at the end
    // Of the items in between.
    std::vector<int> m_partner;   ///< by row after: the row before; -1: there is none
    std::vector<bool> m_isPaired; ///< by row before
    std::vector<bool> m_isKept;   ///< by row after
};

} // namespace QAV
