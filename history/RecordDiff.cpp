// SPDX-License-Identifier: Apache-2.0
#include "history/RecordDiff.h"

#include "history/ListDiff.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>

#include <set>
#include <string_view>
#include <tuple>

namespace QAV
{

std::vector<int> longestIncreasing(const std::vector<int>& values)
{
    // The last element of the best sequence of each length, and for each element the one before it in its sequence.
    std::vector<int> ends;
    std::vector<int> previous(values.size(), -1);
    const auto value = [&values](int position) { return values[static_cast<std::size_t>(position)]; };
    for (int position = 0; position < static_cast<int>(values.size()); ++position) {
        if (value(position) < 0) {
            continue;
        }
        const auto place = std::lower_bound(ends.begin(), ends.end(), value(position),
                                            [&](int end, int wanted) { return value(end) < wanted; });
        if (place != ends.begin()) {
            previous[static_cast<std::size_t>(position)] = *std::prev(place);
        }
        if (place == ends.end()) {
            ends.push_back(position);
        } else {
            *place = position;
        }
    }
    std::vector<int> sequence;
    for (int position = ends.empty() ? -1 : ends.back(); position >= 0;
         position = previous[static_cast<std::size_t>(position)]) {
        sequence.push_back(position);
    }
    std::reverse(sequence.begin(), sequence.end());
    return sequence;
}

namespace
{

using nvservice::CAccountGroup;
using nvservice::CAccountGroupRCConfig;
using nvservice::CAssetsRC;
using nvservice::CEmailRC;
using nvservice::CTradeLimitEntry;
using nvservice::EZvTraderType;
using AccountPtr = boost::shared_ptr<nvservice::CAccountInfo>;

// What makes two items the same for the user. Tags and revisions do not.
bool sameEntry(const CTradeLimitEntry& a, const CTradeLimitEntry& b)
{
    return std::tie(a.securityName, a.direction, a.listKind) == std::tie(b.securityName, b.direction, b.listKind) &&
           a.unknownFields.binaryEqual(b.unknownFields);
}

bool sameAccount(const AccountPtr& a, const AccountPtr& b)
{
    return !a || !b ||
           (std::tie(a->accountName, a->institutionId, a->institutionName) ==
                std::tie(b->accountName, b->institutionId, b->institutionName) &&
            a->unknownFields.binaryEqual(b->unknownFields));
}

bool sameLimit(const CAssetsRC& a, const CAssetsRC& b)
{
    const auto fields = [](const CAssetsRC& limit) {
        return std::tie(limit.scope, limit.assetClass, limit.categoryId, limit.measured, limit.base, limit.comparison,
                        limit.threshold, limit.unit, limit.action, limit.enabled, limit.serverName, limit.remark);
    };
    return fields(a) == fields(b) && a.unknownFields.binaryEqual(b.unknownFields);
}

bool sameRule(const CEmailRC& a, const CEmailRC& b)
{
    const auto fields = [](const CEmailRC& rule) {
        return std::tie(rule.ruleKind, rule.accountKey, rule.recipients, rule.subject, rule.enabled);
    };
    return fields(a) == fields(b) && a.unknownFields.binaryEqual(b.unknownFields);
}

std::string accountKey(const AccountPtr& account)
{
    return account ? std::to_string(static_cast<int>(account->brokerType)) + '|' + account->accountId + '|' +
                         account->unitId
                   : std::string();
}

class Lines
{
public:
    /// @param hasBefore, hasAfter  whether there is a record at all
    Lines(bool hasBefore, bool hasAfter) : m_hasBefore(hasBefore), m_hasAfter(hasAfter) {}

    void addValue(EArea area, bool isEqual)
    {
        DiffLine line;
        line.area = area;
        line.change = !m_hasBefore  ? EChange::Added
                      : !m_hasAfter ? EChange::Removed
                      : isEqual     ? EChange::Unchanged
                                    : EChange::Changed;
        m_lines.push_back(line);
    }

    template <typename Item, typename Key, typename Same>
    void addList(EArea area, const std::vector<Item>& before, const std::vector<Item>& after, Key key, Same same,
                 EZvTraderType traderType = EZvTraderType::None)
    {
        DiffLine line;
        line.area = area;
        line.traderType = traderType;
        ListDiff<Item, Key, Same>(before, after, key, same).appendTo(m_lines, line);
    }

    /// Only if they differ: nobody can read them.
    void addOther(bool isEqual)
    {
        if (m_hasBefore && m_hasAfter && !isEqual) {
            addValue(EArea::Other, false);
        }
    }

    std::vector<DiffLine> take() { return std::move(m_lines); }

private:
    bool m_hasBefore;
    bool m_hasAfter;
    std::vector<DiffLine> m_lines;
};

std::vector<DiffLine> groupDiff(const CAccountGroup* before, const CAccountGroup* after)
{
    const CAccountGroup none;
    const CAccountGroup& a = before ? *before : none;
    const CAccountGroup& b = after ? *after : none;
    Lines lines(before, after);
    lines.addValue(EArea::GroupName, a.groupName == b.groupName);
    lines.addValue(EArea::Institution,
                   std::tie(a.institutionId, a.institutionName) == std::tie(b.institutionId, b.institutionName));
    lines.addList(EArea::Accounts, a.accounts, b.accounts, accountKey, sameAccount);
    lines.addOther(a.unknownFields.binaryEqual(b.unknownFields));
    return lines.take();
}

/// The trade types of which one of the rules has a part.
std::set<EZvTraderType> traderTypesOf(const nvservice::CAccountGroupRCRule& a, const nvservice::CAccountGroupRCRule& b)
{
    std::set<EZvTraderType> types;
    for (const auto* const rule : {&a, &b}) {
        for (const nvservice::CTradeLimitList& list : rule->lists) {
            types.insert(list.traderType);
        }
    }
    return types;
}

bool sameUnknownFields(const CAccountGroupRCConfig& a, const CAccountGroupRCConfig& b)
{
    return a.unknownFields.binaryEqual(b.unknownFields) && a.rcRule.unknownFields.binaryEqual(b.rcRule.unknownFields) &&
           a.ratProofSetting.unknownFields.binaryEqual(b.ratProofSetting.unknownFields);
}

std::vector<DiffLine> configDiff(const CAccountGroupRCConfig* before, const CAccountGroupRCConfig* after)
{
    const CAccountGroupRCConfig none;
    const CAccountGroupRCConfig& a = before ? *before : none;
    const CAccountGroupRCConfig& b = after ? *after : none;
    Lines lines(before, after);
    bool isEqual = sameUnknownFields(a, b);
    const nvservice::CTradeLimitList noEntries;
    for (const EZvTraderType type : traderTypesOf(a.rcRule, b.rcRule)) {
        const nvservice::CTradeLimitList* const partBefore = a.rcRule.findList(type);
        const nvservice::CTradeLimitList* const partAfter = b.rcRule.findList(type);
        const nvservice::CTradeLimitList& listBefore = partBefore ? *partBefore : noEntries;
        const nvservice::CTradeLimitList& listAfter = partAfter ? *partAfter : noEntries;
        isEqual = isEqual && listBefore.unknownFields.binaryEqual(listAfter.unknownFields);
        lines.addList(
            EArea::TradeLimits, listBefore.entries, listAfter.entries,
            [](const CTradeLimitEntry& entry) { return std::string_view(entry.securityCode); }, sameEntry, type);
    }
    lines.addList(
        EArea::AssetLimits, a.assetsRCs, b.assetsRCs, [](const CAssetsRC& limit) { return limit.ruleId; }, sameLimit);

    const nvservice::CRatProofSetting& x = a.ratProofSetting;
    const nvservice::CRatProofSetting& y = b.ratProofSetting;
    const auto identity = [](std::int32_t id) { return id; };
    const auto always = [](std::int32_t, std::int32_t) { return true; };
    lines.addValue(EArea::ReverseOrderCheck, x.reverseOrderCheck == y.reverseOrderCheck);
    lines.addValue(EArea::ReverseOrderWarnOnly, x.reverseOrderWarnOnly == y.reverseOrderWarnOnly);
    lines.addValue(EArea::NotCountCancelledOrders, x.notCountCancelledOrders == y.notCountCancelledOrders);
    lines.addList(EArea::ReverseOrderCategories, x.reverseOrderExemptCategoryIds, y.reverseOrderExemptCategoryIds,
                  identity, always);
    lines.addValue(EArea::WashTradeForbidden, x.washTradeForbidden == y.washTradeForbidden);
    lines.addList(EArea::WashTradeCategories, x.washTradeExemptCategoryIds, y.washTradeExemptCategoryIds, identity,
                  always);
    lines.addList(
        EArea::EmailRules, a.emailRCs, b.emailRCs, [](const CEmailRC& rule) { return std::string_view(rule.ruleKey); },
        sameRule);
    lines.addOther(isEqual);
    return lines.take();
}

template <typename Record>
bool isOf(const nvservice::IData* before, const nvservice::IData* after)
{
    const auto fits = [](const nvservice::IData* record) { return !record || dynamic_cast<const Record*>(record); };
    return fits(before) && fits(after);
}

} // namespace

std::vector<DiffLine> diffOf(const nvservice::IData* before, const nvservice::IData* after)
{
    if (!before && !after) {
        return {};
    }
    if (isOf<CAccountGroup>(before, after)) {
        return groupDiff(static_cast<const CAccountGroup*>(before), static_cast<const CAccountGroup*>(after));
    }
    if (isOf<CAccountGroupRCConfig>(before, after)) {
        return configDiff(static_cast<const CAccountGroupRCConfig*>(before),
                          static_cast<const CAccountGroupRCConfig*>(after));
    }
    return {};
}

} // namespace QAV
