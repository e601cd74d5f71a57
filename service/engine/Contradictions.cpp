// SPDX-License-Identifier: Apache-2.0
#include "service/engine/Contradictions.h"
#include "service/engine/AccountRights.h"
#include "service/engine/GroupScope.h"
#include "service/engine/TextRules.h"
#include "service/engine/TradeLimitRules.h"

#include <utils/Translation.h>

#include <algorithm>
#include <map>
#include <set>

namespace service
{

using nvservice::EZVRCDirection;
using nvservice::EZVRCListKind;
using nvservice::EZvTraderType;

namespace
{

constexpr std::size_t NamedOfEach = 3; ///< securities and accounts that a finding names; of the rest it says how many

std::string listed(const std::vector<std::string>& texts)
{
    std::string text;
    for (std::size_t i = 0; i < std::min(texts.size(), NamedOfEach); ++i) {
        text += (i == 0 ? std::string() : utils::text("service", "、")) + texts[i];
    }
    return texts.size() > NamedOfEach ? utils::filled(utils::text("service", "%1等%2个"), text, texts.size()) : text;
}

bool overlap(EZVRCDirection a, EZVRCDirection b)
{
    return a == b || a == EZVRCDirection::Both || b == EZVRCDirection::Both;
}

std::vector<std::string> sharedAccounts(const StoredUser& viewer, const nvservice::CAccountGroup& a,
                                        const nvservice::CAccountGroup& b)
{
    std::set<const nvservice::CAccountInfo*> ofA;
    for (const auto& account : a.accounts) {
        ofA.insert(account.get());
    }
    std::vector<std::string> shared;
    for (const auto& account : b.accounts) {
        if (ofA.count(account.get()) != 0) {
            shared.push_back(mayRead(viewer, account->brokerType) ? nvservice::accountDisplayID(account)
                                                                  : nameOfAccountType(account->brokerType));
        }
    }
    return shared;
}

} // namespace

std::int32_t Contradictions::numberOf(EZvTraderType traderType, const nvservice::CTradeLimitEntry& entry)
{
    const std::string key = std::to_string(static_cast<int>(traderType)) + ' ' + foldedSecurityCode(entry.securityCode);
    const auto [found, isNew] = m_numbers.emplace(key, static_cast<std::int32_t>(m_securities.size()));
    if (isNew) {
        m_securities.push_back({traderType, entry.securityCode});
    }
    return found->second;
}

void Contradictions::add(const GroupPtr& group, const nvservice::CAccountGroupRCRule& rule)
{
    ListedGroup listedGroup{group, {}};
    for (const nvservice::CTradeLimitList& list : rule.lists) {
        for (const nvservice::CTradeLimitEntry& entry : list.entries) {
            const bool isBlack = entry.listKind == EZVRCListKind::Black;
            if (!isBlack && entry.listKind != EZVRCListKind::White) {
                continue;
            }
            const std::int32_t number = numberOf(list.traderType, entry);
            Security& security = m_securities[static_cast<std::size_t>(number)];
            (isBlack ? security.isBlackSomewhere : security.isWhiteSomewhere) = true;
            listedGroup.entries.push_back({number, isBlack, entry.direction});
        }
    }
    std::sort(listedGroup.entries.begin(), listedGroup.entries.end(),
              [](const Entry& a, const Entry& b) { return a.security < b.security; });
    const bool isSeen = isInScope(m_options.viewer, institutionOf(group->institutionId));
    if (isSeen && !listedGroup.entries.empty() && !group->accounts.empty()) {
        m_groups.push_back(std::move(listedGroup));
    }
}

bool Contradictions::isDisputed(const Entry& entry) const
{
    const Security& security = m_securities[static_cast<std::size_t>(entry.security)];
    return security.isBlackSomewhere && security.isWhiteSomewhere;
}

std::vector<Finding> Contradictions::find() const
{
    // Compares only groups with a security that is on both kinds of lists.
    std::unordered_map<const nvservice::CAccountInfo*, std::vector<std::size_t>> groupsOfAccount;
    for (std::size_t i = 0; i < m_groups.size(); ++i) {
        const auto& entries = m_groups[i].entries;
        if (std::none_of(entries.begin(), entries.end(), [this](const Entry& entry) { return isDisputed(entry); })) {
            continue;
        }
        for (const auto& account : m_groups[i].group->accounts) {
            groupsOfAccount[account.get()].push_back(i);
        }
    }
    std::set<std::pair<std::size_t, std::size_t>> pairs;
    for (const auto& [account, groups] : groupsOfAccount) {
        for (std::size_t a = 0; a < groups.size(); ++a) {
            for (std::size_t b = a + 1; b < groups.size(); ++b) {
                pairs.emplace(groups[a], groups[b]);
            }
        }
    }
    std::vector<Finding> findings;
    for (const auto& [a, b] : pairs) {
        pulse(m_options);
        compare(m_groups[a], m_groups[b], findings);
    }
    return findings;
}

void Contradictions::compare(const ListedGroup& a, const ListedGroup& b, std::vector<Finding>& findings) const
{
    // By trade type, and whether the first group allows.
    std::map<std::pair<EZvTraderType, bool>, std::vector<std::string>> disputed;
    auto other = b.entries.begin();
    for (const Entry& entry : a.entries) {
        while (other != b.entries.end() && other->security < entry.security) {
            ++other;
        }
        for (auto same = other; same != b.entries.end() && same->security == entry.security; ++same) {
            const Security& security = m_securities[static_cast<std::size_t>(entry.security)];
            if (same->isBlack != entry.isBlack && overlap(same->direction, entry.direction)) {
                disputed[{security.traderType, !entry.isBlack}].push_back(security.code);
            }
        }
    }
    for (const auto& [key, codes] : disputed) {
        findings.push_back(
            {EFinding::ContradictingGroups, a.group->groupId, a.group->groupName,
             utils::filled(key.second ? utils::text("service", "账号%1也在账号组%2%3：%4%5在本组为白名单，"
                                                               "在该组为黑名单")
                                      : utils::text("service", "账号%1也在账号组%2%3：%4%5在本组为黑名单，"
                                                               "在该组为白名单"),
                           listed(sharedAccounts(m_options.viewer, *a.group, *b.group)), b.group->groupId,
                           quoted(b.group->groupName), nameOfTraderType(key.first), listed(codes))});
    }
}

} // namespace service
