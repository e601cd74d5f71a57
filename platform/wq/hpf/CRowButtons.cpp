// SPDX-License-Identifier: Apache-2.0
#include "hpf/CRowButtons.h"

#include "hpf/KeyHash.h"

namespace WQ
{

// Found by QHash.
static uint qHash(const ButtonData& button, uint seed = 0)
{
    return ::qHash(button.text, seed) + static_cast<uint>(button.id) * 31 + static_cast<uint>(button.buttonType);
}

std::uint32_t CRowButtons::numberOf(const QVector<ButtonData>& buttons)
{
    // Rows that follow each other mostly have the same buttons.
    if (m_lastList >= m_lists.size() || m_lists[m_lastList] != buttons) {
        const auto known = m_numbers.constFind(buttons);
        m_lastList = known != m_numbers.constEnd() ? *known : static_cast<std::uint32_t>(m_lists.size());
        if (m_lastList == m_lists.size()) {
            m_numbers.insert(buttons, m_lastList);
            m_lists.push_back(buttons);
        }
    }
    return m_lastList;
}

void CRowButtons::set(const QString& key, const QVector<ButtonData>& buttons)
{
    m_arrived.push_back({hashOfKey(key), numberOf(buttons) + 1});
}

CRowButtons::Slot& CRowButtons::slotOf(std::size_t hash)
{
    std::size_t at = hash % m_slots.size();
    while (m_slots[at].listPlusOne != 0 && m_slots[at].hash != hash) {
        at = at + 1 == m_slots.size() ? 0 : at + 1;
    }
    return m_slots[at];
}

void CRowButtons::takeIn()
{
    const std::size_t most = m_used + m_arrived.size();
    if (most * 5 > m_slots.size() * 4) {
        const std::vector<Slot> old = std::move(m_slots);
        m_slots.assign(most + most / 3 + 16, Slot());
        for (const Slot& slot : old) {
            if (slot.listPlusOne != 0) {
                slotOf(slot.hash) = slot;
            }
        }
    }
    for (const Slot& arrived : m_arrived) {
        Slot& slot = slotOf(arrived.hash);
        m_used += slot.listPlusOne == 0 ? 1 : 0;
        slot = arrived;
    }
    m_arrived = {};
}

int CRowButtons::listOf(const QString& key)
{
    if (!m_arrived.empty()) {
        takeIn();
    }
    return m_slots.empty() ? -1 : static_cast<int>(slotOf(hashOfKey(key)).listPlusOne) - 1;
}

void CRowButtons::clear()
{
    *this = CRowButtons();
}

} // namespace WQ
