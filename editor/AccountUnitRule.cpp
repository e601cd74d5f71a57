#include "editor/AccountUnitRule.h"

#include <string>
#include <unordered_map>

namespace QAV
{

boost::optional<std::pair<std::size_t, std::size_t>>
firstAccountWithOwnUnit(const std::vector<boost::shared_ptr<nvservice::CAccountInfo>>& accounts)
{
    // Of one account identifier the pair with the smallest i starts at its first record, and j is the first record
    // after it of the other kind. So one look at the first record of each identifier is enough.
    struct First {
        std::size_t index;
        bool isUnit;
    };
    std::unordered_map<std::string, First> firsts;
    firsts.reserve(accounts.size());
    boost::optional<std::pair<std::size_t, std::size_t>> pair;
    for (std::size_t j = 0; j < accounts.size(); ++j) {
        const bool isUnit = !accounts[j]->unitId.empty();
        const First& first = firsts.emplace(accounts[j]->accountId, First{j, isUnit}).first->second;
        if (first.isUnit != isUnit && (!pair || first.index < pair->first))
            pair = std::make_pair(first.index, j);
    }
    return pair;
}

} // namespace QAV
