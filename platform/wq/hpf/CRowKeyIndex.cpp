// SPDX-License-Identifier: Apache-2.0
#include "hpf/CRowKeyIndex.h"

#include "hpf/KeyHash.h"

#include <algorithm>

namespace WQ
{

namespace
{

std::uint32_t tagOf(const QString& key)
{
    return static_cast<std::uint32_t>(hashOfKey(key));
}

} // namespace

CRowKeyIndex::CRowKeyIndex(KeyOfRow keyOfRow) : m_keyOfRow(std::move(keyOfRow)) {}

void CRowKeyIndex::clear()
{
    m_slots = {};
    m_known = 0;
}

template <typename Accepts>
CRowKeyIndex::Slot& CRowKeyIndex::slotOf(std::uint32_t tag, Accepts accepts)
{
    std::size_t at = tag % m_slots.size();
    while (m_slots[at].rowPlusOne != 0 && !(m_slots[at].tag == tag && accepts(m_slots[at]))) {
        at = at + 1 == m_slots.size() ? 0 : at + 1;
    }
    return m_slots[at];
}

void CRowKeyIndex::takeIn(int count)
{
    const auto none = [](const Slot&) { return false; };
    // Three quarters full at most; rows that come later find room for a while.
    if (static_cast<std::size_t>(count) * 4 > m_slots.size() * 3) {
        const std::vector<Slot> old = std::move(m_slots);
        m_slots.assign(std::max<std::size_t>(16, static_cast<std::size_t>(count) * 3 / 2), Slot());
        for (const Slot& slot : old) {
            if (slot.rowPlusOne != 0) {
                slotOf(slot.tag, none) = slot;
            }
        }
    }
    for (; m_known < count; ++m_known) {
        const std::uint32_t tag = tagOf(m_keyOfRow(m_known));
        slotOf(tag, none) = {tag, static_cast<std::uint32_t>(m_known) + 1};
    }
}

int CRowKeyIndex::find(const QString& key, int count)
{
    if (m_known < count) {
        takeIn(count);
    }
    const auto hasKey = [&](const Slot& slot) { return m_keyOfRow(static_cast<int>(slot.rowPlusOne) - 1) == key; };
    return m_slots.empty() ? -1 : static_cast<int>(slotOf(tagOf(key), hasKey).rowPlusOne) - 1;
}

} // namespace WQ
