#pragma once

#include <vector>

namespace WQ
{

/// The rows of a table in display order, by ids that count up and are never used again. Appending takes constant time,
/// removing a row and going from id to position or back a logarithmic one, however they are mixed.
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
    /// The id that the oldest row had when the table was last empty: ids minus this are small.
    int firstId() const { return m_firstId; }

    /// `ids` is a permutation of ids().
    void reorder(const std::vector<int>& ids);

private:
    int slotOf(int id) const;
    void buildTree();
    void compact();
    int liveBefore(int slot) const;

    /// Rows stand in slots; a removed row leaves its slot empty (-1) until the slots are compacted.
    std::vector<int> m_slots;
    /// By id - m_firstId; -1 for a removed row.
    std::vector<int> m_slotOfId;
    /// Binary indexed tree of the number of rows per slot, from 1; unused while no slot is empty.
    std::vector<int> m_tree;
    int m_firstId = 0;
    int m_nextId = 0;
    int m_live = 0;
};

} // namespace WQ
