// SPDX-License-Identifier: Apache-2.0
#include "editor/AccountUnitRule.h"

#include <cstdint>
#include <functional>
#include <string>

namespace QAV
{

namespace
{

/// The first account of each account identifier. One piece of memory of eight bytes per slot, so that looking up stays
/// as quick with many accounts as with few.
class FirstOfIdentifier
{
public:
    explicit FirstOfIdentifier(const AccountList& accounts) : m_accounts(accounts)
    {
        std::size_t size = 2;
        while (size < 2 * accounts.size()) {
            size *= 2;
        }
        m_slots.resize(size);
    }

    /// The index of the first account with the identifier of account `index`: `index` itself if there was none before.
    std::size_t find(std::size_t index)
    {
        const std::string& id = m_accounts[index]->accountId;
        const std::size_t hash = std::hash<std::string>()(id);
        const auto mark = static_cast<std::uint32_t>(hash >> 32U);
        for (std::size_t at = hash;; ++at) {
            Slot& slot = m_slots[at & (m_slots.size() - 1)];
            if (slot.account == 0) {
                slot = {static_cast<std::uint32_t>(index + 1), mark};
                return index;
            }
            if (slot.mark == mark && m_accounts[slot.account - 1]->accountId == id) {
                return slot.account - 1;
            }
        }
    }

private:
    struct Slot {
        std::uint32_t account = 0; ///< index + 1; 0 is free
        std::uint32_t mark = 0;    ///< part of the hash, so that other identifiers need not be read
    };

    const AccountList& m_accounts;
    std::vector<Slot> m_slots;
};

} // namespace

boost::optional<std::pair<std::size_t, std::size_t>> firstAccountWithOwnUnit(const AccountList& accounts)
{
    // Of one account identifier the pair with the smallest i starts at its first record, and j is the first record
    // after it of the other kind. So one look at the first record of each identifier is enough.
    FirstOfIdentifier firsts(accounts);
    boost::optional<std::pair<std::size_t, std::size_t>> pair;
    for (std::size_t j = 0; j < accounts.size(); ++j) {
        const std::size_t i = firsts.find(j);
        if (i != j && accounts[i]->unitId.empty() != accounts[j]->unitId.empty() && (!pair || i < pair->first)) {
            pair = std::make_pair(i, j);
        }
    }
    return pair;
}

} // namespace QAV
