// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "hpf/KeyHash.h"

#include <WQ/ButtonData.h>

#include <QHash>
#include <QVector>

#include <vector>

namespace WQ
{

/// The buttons of all rows by row key. Each distinct list of buttons is stored once; a row takes 16 bytes.
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
        std::uint64_t low = 0;
        std::uint32_t high = 0;
        std::uint32_t listPlusOne = 0; ///< 0: the slot is free.
    };

    std::uint32_t numberOf(const QVector<ButtonData>& buttons);
    void takeIn();
    void put(const Slot& entry);

    std::vector<QVector<ButtonData>> m_lists;
    QHash<uint, QVector<int>> m_listsByHash;
    std::uint32_t m_lastList = 0;
    std::vector<Slot> m_arrived; ///< Not in the slots yet, so that filling a table is a plain append.
    std::vector<Slot> m_slots;
    std::size_t m_used = 0;
};

} // namespace WQ
