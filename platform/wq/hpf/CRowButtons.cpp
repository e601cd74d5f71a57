// SPDX-License-Identifier: Apache-2.0
#include "hpf/CRowButtons.h"

namespace WQ
{

namespace
{

uint hashOf(const QVector<ButtonData>& buttons)
{
    uint hash = static_cast<uint>(buttons.size());
    for (const ButtonData& button : buttons) {
        hash = hash * 31 + qHash(button.text) + static_cast<uint>(button.id) * 7 + static_cast<uint>(button.buttonType);
    }
    return hash;
}

} // namespace

std::uint32_t CRowButtons::numberOf(const QVector<ButtonData>& buttons)
{
    // Rows that follow each other mostly have the same buttons.
    if (m_lastList < m_lists.size() && m_lists[m_lastList] == buttons) {
        return m_lastList;
    }
    QVector<int>& candidates = m_listsByHash[hashOf(buttons)];
    for (int candidate : qAsConst(candidates)) {
        if (list(candidate) == buttons) {
            return m_lastList = static_cast<std::uint32_t>(candidate);
        }
    }
    m_lastList = static_cast<std::uint32_t>(m_lists.size());
    candidates.append(static_cast<int>(m_lastList));
    m_lists.push_back(buttons);
    return m_lastList;
}

void CRowButtons::set(const QString& key, const QVector<ButtonData>& buttons)
{
    const KeyHash hash = hashKey(key);
    m_arrived.push_back({hash.low, hash.high, numberOf(buttons) + 1});
}

void CRowButtons::put(const Slot& entry)
{
    std::size_t at = homeSlot(entry.low, m_slots.size());
    while (m_slots[at].listPlusOne != 0) {
        if (m_slots[at].low == entry.low && m_slots[at].high == entry.high) {
            m_slots[at].listPlusOne = entry.listPlusOne;
            return;
        }
        at = at + 1 == m_slots.size() ? 0 : at + 1;
    }
    m_slots[at] = entry;
    ++m_used;
}

void CRowButtons::takeIn()
{
    const std::size_t most = m_used + m_arrived.size();
    if (most * 5 > m_slots.size() * 4) {
        const std::vector<Slot> old = std::move(m_slots);
        m_slots.assign(most + most / 3 + 16, Slot());
        m_used = 0;
        for (const Slot& slot : old) {
            if (slot.listPlusOne != 0) {
                put(slot);
            }
        }
    }
    constexpr std::size_t ahead = 12;
    for (std::size_t i = 0; i < m_arrived.size(); ++i) {
        // The slots of a million rows don't fit the cache: ask for the ones to come.
        if (i + ahead < m_arrived.size()) {
            __builtin_prefetch(&m_slots[homeSlot(m_arrived[i + ahead].low, m_slots.size())], 1);
        }
        put(m_arrived[i]);
    }
    m_arrived = {};
}

int CRowButtons::listOf(const QString& key)
{
    if (!m_arrived.empty()) {
        takeIn();
    }
    if (m_slots.empty()) {
        return -1;
    }
    const KeyHash hash = hashKey(key);
    std::size_t at = homeSlot(hash.low, m_slots.size());
    while (m_slots[at].listPlusOne != 0) {
        if (m_slots[at].low == hash.low && m_slots[at].high == hash.high) {
            return static_cast<int>(m_slots[at].listPlusOne) - 1;
        }
        at = at + 1 == m_slots.size() ? 0 : at + 1;
    }
    return -1;
}

void CRowButtons::clear()
{
    *this = CRowButtons();
}

} // namespace WQ
