// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <cstdint>
#include <functional>
#include <vector>

namespace WQ
{

/// Finds a row by its key without storing keys. A slot has 32 bits of the key's hash and the row; the row's own key
/// decides. Rows are added to the index at the first search. A standard container takes more memory than bench_table
/// allows.
class CRowKeyIndex
{
public:
    using KeyOfRow = std::function<QString(int)>;

    explicit CRowKeyIndex(KeyOfRow keyOfRow);

    void clear();
    /// The row with `key` among rows 0 .. count - 1; -1 if there is none. The key of an indexed row must not change.
    int find(const QString& key, int count);

private:
    struct Slot {
        std::uint32_t tag = 0;
        std::uint32_t rowPlusOne = 0; ///< 0: the slot is free.
    };

    void takeIn(int count);
    /// The first slot with the tag that is accepted, else the free one for it.
    template <typename Accepts>
    Slot& slotOf(std::uint32_t tag, Accepts accepts);

    KeyOfRow m_keyOfRow;
    std::vector<Slot> m_slots;
    int m_known = 0;
};

} // namespace WQ
