// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

namespace WQ
{

/// The display order of a table's rows. Row ids count up and are never reused. Appending takes constant time; removing
/// a row and converting between id and position take logarithmic time, in any mix.
class CRowOrder
{
public:
    /// Appends a row and returns its id.
    int append();
    /// False if there is no such row.
    bool remove(int id);
    void clear();

    int count() const { return m_live; }
    bool contains(int id) const { return slotOf(id) >= 0; }
    /// -1 outside 0 .. count()-1.
    int idAt(int index) const;
    /// -1 if there is no such row.
    int indexOf(int id) const;
    /// All ids in display order.
    std::vector<int> ids() const;
    /// The id of the first row appended after the table was last empty, so that ids minus this are small.
    int firstId() const { return m_firstId; }

    /// `ids` must be a permutation of ids().
    void reorder(const std::vector<int>& ids);

private:
    int slotOf(int id) const;
    void buildTree();
    void compact();
    int liveBefore(int slot) const;

    /// Rows are in slots. A removed row leaves an empty slot (-1) until the slots are compacted.
    std::vector<int> m_slots;
    /// By id - m_firstId; -1 for a removed row.
    std::vector<int> m_slotOfId;
    /// Binary indexed tree, from 1, of the number of rows per slot; unused while no slot is empty.
    std::vector<int> m_tree;
    int m_firstId = 0;
    int m_nextId = 0;
    int m_live = 0;
};

} // namespace WQ
