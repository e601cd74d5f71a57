#pragma once

#include <QString>

#include <cstdint>
#include <functional>
#include <vector>

namespace WQ
{

/// Finds a row by its key without keeping keys: slots hold 32 bits of the key's hash and the row, and the row's own key
/// decides. Rows are taken in when somebody first asks.
class CRowKeyIndex
{
public:
    using KeyOfRow = std::function<QString(int)>;

    explicit CRowKeyIndex(KeyOfRow keyOfRow);

    void clear();
    /// Row of `key` among rows 0 .. count - 1, -1 if there is none. Rows that were asked about once keep their keys.
    int find(const QString& key, int count);

private:
    struct Slot {
        std::uint32_t tag = 0;
        std::uint32_t rowPlusOne = 0; ///< 0: the slot is free.
    };

    void takeIn(int count);
    void insert(std::uint32_t tag, std::uint32_t rowPlusOne);

    KeyOfRow m_keyOfRow;
    std::vector<Slot> m_slots;
    int m_known = 0;
};

} // namespace WQ
