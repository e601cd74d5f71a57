// SPDX-License-Identifier: Apache-2.0
#include "CRowOrder.h"

namespace WQ
{

namespace
{

/// Empty slots that are not worth compacting.
constexpr int HoleAllowance = 64;

int lowestBit(int value)
{
    return value & -value;
}

} // namespace

int CRowOrder::append()
{
    const int id = m_nextId++;
    m_slotOfId.push_back(int(m_slots.size()));
    m_slots.push_back(id);
    ++m_live;
    if (!m_tree.empty()) {
        const int node = int(m_slots.size());
        int sum = 1;
        for (int below = node - 1; below > node - lowestBit(node); below -= lowestBit(below)) {
            sum += m_tree[size_t(below)];
        }
        m_tree.push_back(sum);
    }
    return id;
}

bool CRowOrder::remove(int id)
{
    const int slot = slotOf(id);
    if (slot < 0) {
        return false;
    }
    if (m_live == 1) {
        clear();
        return true;
    }
    if (m_tree.empty()) {
        buildTree();
    }
    m_slots[size_t(slot)] = -1;
    m_slotOfId[size_t(id - m_firstId)] = -1;
    --m_live;
    for (int node = slot + 1; node < int(m_tree.size()); node += lowestBit(node)) {
        --m_tree[size_t(node)];
    }
    if (int(m_slots.size()) - m_live > m_live + HoleAllowance) {
        compact();
    }
    return true;
}

void CRowOrder::clear()
{
    m_slots.clear();
    m_slotOfId.clear();
    m_tree.clear();
    m_firstId = m_nextId;
    m_live = 0;
}

int CRowOrder::idAt(int index) const
{
    if (index < 0 || index >= m_live) {
        return -1;
    }
    if (m_tree.empty()) {
        return m_slots[size_t(index)];
    }
    const int size = int(m_tree.size());
    int step = 1;
    while (step * 2 < size) {
        step *= 2;
    }
    // Goes down to the last node before which no more than `index` rows stand.
    int node = 0;
    for (int left = index; step > 0; step /= 2) {
        if (node + step < size && m_tree[size_t(node + step)] <= left) {
            node += step;
            left -= m_tree[size_t(node)];
        }
    }
    return m_slots[size_t(node)];
}

int CRowOrder::indexOf(int id) const
{
    const int slot = slotOf(id);
    if (slot < 0 || m_tree.empty()) {
        return slot;
    }
    return liveBefore(slot);
}

std::vector<int> CRowOrder::ids() const
{
    std::vector<int> result;
    result.reserve(size_t(m_live));
    for (const int id : m_slots) {
        if (id >= 0) {
            result.push_back(id);
        }
    }
    return result;
}

void CRowOrder::reorder(const std::vector<int>& ids)
{
    m_slots = ids;
    m_tree.clear();
    for (size_t slot = 0; slot < ids.size(); ++slot) {
        m_slotOfId[size_t(ids[slot] - m_firstId)] = int(slot);
    }
}

int CRowOrder::slotOf(int id) const
{
    return id < m_firstId || id >= m_nextId ? -1 : m_slotOfId[size_t(id - m_firstId)];
}

void CRowOrder::buildTree()
{
    const size_t size = m_slots.size() + 1;
    m_tree.assign(size, 0);
    for (size_t node = 1; node < size; ++node) {
        m_tree[node] += m_slots[node - 1] >= 0 ? 1 : 0;
        const size_t above = node + size_t(lowestBit(int(node)));
        if (above < size) {
            m_tree[above] += m_tree[node];
        }
    }
}

void CRowOrder::compact()
{
    reorder(ids());
}

int CRowOrder::liveBefore(int slot) const
{
    int sum = 0;
    for (int node = slot; node > 0; node -= lowestBit(node)) {
        sum += m_tree[size_t(node)];
    }
    return sum;
}

} // namespace WQ
