// SPDX-License-Identifier: Apache-2.0
#include "hpf/CRowKeyIndex.h"

#include "hpf/KeyHash.h"

namespace WQ
{

namespace
{

std::uint32_t tagOf(const QString& key)
{
    return static_cast<std::uint32_t>(hashKey(key).low >> 32);
}

std::size_t homeOf(std::uint32_t tag, std::size_t size)
{
    return static_cast<std::size_t>((std::uint64_t(tag) * size) >> 32);
}

} // namespace

CRowKeyIndex::CRowKeyIndex(KeyOfRow keyOfRow) : m_keyOfRow(std::move(keyOfRow)) {}

void CRowKeyIndex::clear()
{
    m_slots = {};
    m_known = 0;
}

void CRowKeyIndex::insert(std::uint32_t tag, std::uint32_t rowPlusOne)
{
    std::size_t slot = homeOf(tag, m_slots.size());
    while (m_slots[slot].rowPlusOne != 0) {
        slot = slot + 1 == m_slots.size() ? 0 : slot + 1;
    }
    m_slots[slot] = {tag, rowPlusOne};
}

void CRowKeyIndex::takeIn(int count)
{
    // Three quarters full at most; rows that come later find room for a while.
    if (static_cast<std::size_t>(count) * 4 > m_slots.size() * 3) {
        const std::vector<Slot> old = std::move(m_slots);
        const std::size_t wanted = static_cast<std::size_t>(count) * 3 / 2;
        m_slots.assign(wanted < 16 ? 16 : wanted, Slot());
        for (const Slot& slot : old) {
            if (slot.rowPlusOne != 0) {
                insert(slot.tag, slot.rowPlusOne);
            }
        }
    }
    for (; m_known < count; ++m_known) {
        insert(tagOf(m_keyOfRow(m_known)), static_cast<std::uint32_t>(m_known) + 1);
    }
}

int CRowKeyIndex::find(const QString& key, int count)
{
    if (m_known < count) {
        takeIn(count);
    }
    if (m_slots.empty()) {
        return -1;
    }
    const std::uint32_t tag = tagOf(key);
    std::size_t slot = homeOf(tag, m_slots.size());
    while (m_slots[slot].rowPlusOne != 0) {
        const int row = static_cast<int>(m_slots[slot].rowPlusOne - 1);
        if (m_slots[slot].tag == tag && m_keyOfRow(row) == key) {
            return row;
        }
        slot = slot + 1 == m_slots.size() ? 0 : slot + 1;
    }
    return -1;
}

} // namespace WQ
