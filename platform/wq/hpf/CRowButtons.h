// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/ButtonData.h>

#include <QHash>
#include <QVector>

#include <vector>

namespace WQ
{

/// The buttons of all rows by row key. Each distinct list of buttons is stored once. A row takes a slot of 16 bytes,
/// with a 64-bit hash in place of its key: the probability that two of a million rows share a hash is 3 * 10^-8. A
/// standard container with the keys takes more memory than bench_table allows.
class CRowButtons
{
public:
    void set(const QString& key, const QVector<ButtonData>& buttons);
    /// The number of the list; -1 if the key has no buttons.
    int listOf(const QString& key);
    const QVector<ButtonData>& list(int number) const { return m_lists[static_cast<std::size_t>(number)]; }
    void clear();

private:
    struct Slot {
        std::size_t hash = 0;
        std::uint32_t listPlusOne = 0; ///< 0: the slot is free.
    };

    std::uint32_t numberOf(const QVector<ButtonData>& buttons);
    Slot& slotOf(std::size_t hash);
    void takeIn();

    std::vector<QVector<ButtonData>> m_lists;
    QHash<QVector<ButtonData>, std::uint32_t> m_numbers;
    std::uint32_t m_lastList = 0;
    std::vector<Slot> m_arrived; ///< Not in the slots yet, so that filling a table is a plain append.
    std::vector<Slot> m_slots;
    std::size_t m_used = 0;
};

} // namespace WQ
