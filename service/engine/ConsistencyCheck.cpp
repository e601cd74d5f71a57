// SPDX-License-Identifier: Apache-2.0
#include "service/engine/ConsistencyCheck.h"
#include "service/engine/AccountRights.h"
#include "service/engine/AssetsLimitRules.h"
#include "service/engine/CategoryRules.h"
#include "service/engine/Contradictions.h"
#include "service/engine/GroupRules.h"
#include "service/engine/HistoryCheck.h"
#include "service/engine/Refusal.h"
#include "service/engine/RiskConfigRules.h"
#include "service/engine/TradeLimitRules.h"
#include "service/engine/UserRights.h"
#include "service/store/Query.h"
#include "service/store/RiskConfigs.h"

#include <utils/Translation.h>

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>

namespace service
{

using nvservice::CAccountGroup;
using nvservice::CAccountGroupRCConfig;

namespace
{

std::string textOfAccount(const StoredUser& viewer, const nvservice::CAccountInfo& account)
{
    if (!mayRead(viewer, account.brokerType)) {
        return nameOfAccountType(account.brokerType);
    }
    return nameOfAccountType(account.brokerType) + " " + account.accountId +
           (account.unitId.empty() ? "" : "-" + account.unitId);
}

bool hasRules(const CAccountGroupRCConfig& config)
{
    const auto& setting = config.ratProofSetting;
    const auto& lists = config.rcRule.lists;
    return !config.assetsRCs.empty() || !config.emailRCs.empty() || setting.washTradeForbidden ||
           setting.reverseOrderCheck ||
           std::any_of(lists.begin(), lists.end(), [](const auto& list) { return !list.entries.empty(); });
}

class Checker
{
public:
    Checker(const ServerData& data, const CheckOptions& options)
        : m_data(data), m_options(options), m_user(userWithEveryRight("qav-admin")), m_request{data, m_user},
          m_categories(m_request), m_contradictions(options)
    {
        for (const auto& category : loadCategories(data)) {
            m_categoryIds.insert(category->categoryId);
        }
    }

    std::vector<Finding> run()
    {
        findMembersOfOtherServers();
        const std::vector<StoredAccount> accounts = loadAccounts(m_data, std::nullopt);
        for (const StoredAccount& account : accounts) {
            m_accounts.emplace(account.info.get(), &account);
        }
        const std::vector<GroupPtr> groups =
            loadGroups(m_data, std::nullopt, accountsByRow(accounts),
                       [this](const CAccountGroup& group, const StoreError& failure) {
                           add(EFinding::BrokenFields, group, failure.error().errorMsg());
                       });
        std::int64_t done = 0;
        for (const GroupPtr& group : groups) {
            check(group);
            pulse(m_options);
            if (m_options.progress) {
                m_options.progress(++done, static_cast<std::int64_t>(groups.size()));
            }
        }
        for (std::vector<Finding>& more : std::vector{m_contradictions.find(), checkHistory(m_data, m_options)}) {
            std::move(more.begin(), more.end(), std::back_inserter(m_findings));
        }
        std::stable_sort(m_findings.begin(), m_findings.end(),
                         [](const Finding& a, const Finding& b) { return a.groupId < b.groupId; });
        return std::move(m_findings);
    }

private:
    void add(EFinding kind, const CAccountGroup& group, const std::string& text)
    {
        m_findings.push_back({kind, group.groupId, group.groupName, text});
    }

    /// The foreign keys prevent them, but another program may have written the file.
    void findMembersOfOtherServers()
    {
        Query query(m_data.connection,
                    QStringLiteral("SELECT m.group_id, m.account_id, g.name FROM account_group_member m"
                                   " LEFT JOIN account a ON a.id = m.account_id"
                                   " LEFT JOIN account_group g ON g.server_id = m.server_id"
                                   " AND g.group_id = m.group_id"
                                   " WHERE m.server_id = ? AND (a.id IS NULL OR a.server_id <> m.server_id)"
                                   " ORDER BY m.group_id, m.account_id"));
        query.bind(m_data.server.id);
        for (query.run(); query.next();) {
            m_findings.push_back({EFinding::OtherServerMember, query.integer(0), query.text(2),
                                  utils::filled(utils::text("service", "账号（%1）不属于本分系统"), query.integer(1))});
            m_withForeignMembers.insert(query.integer(0));
        }
    }

    void check(const GroupPtr& group)
    {
        for (const auto& account : group->accounts) {
            checkMember(*group, *m_accounts.at(account.get()));
        }
        const bool isEmpty = group->accounts.empty() && m_withForeignMembers.count(group->groupId) == 0;
        RiskConfigPtr config;
        try {
            const std::optional<StoredRiskConfig> stored = findRiskConfig(m_data, group->groupId);
            if (stored) {
                config = stored->record;
            } else {
                add(EFinding::BrokenConfig, *group, utils::text("service", "没有风控配置"));
            }
        } catch (const StoreError& failure) {
            if (failure.mayPass()) {
                throw;
            }
            add(EFinding::BrokenConfig, *group, failure.error().errorMsg());
        }
        if (isEmpty) {
            add(config && hasRules(*config) ? EFinding::RuleOnEmptyGroup : EFinding::EmptyGroup, *group,
                config && hasRules(*config) ? utils::text("service", "账号组没有账号，却设置了风控")
                                            : utils::text("service", "账号组没有账号"));
        }
        if (config) {
            checkConfig(*group, *config);
            m_contradictions.add(group, config->rcRule);
        }
    }

    void checkMember(const CAccountGroup& group, const StoredAccount& account)
    {
        const std::string name =
            utils::filled(utils::text("service", "账号%1"), textOfAccount(m_options.viewer, *account.info));
        switch (memberProblem(account, group.institutionId)) {
        case EMemberProblem::None:
            break;
        case EMemberProblem::OtherInstitution:
            add(EFinding::OtherInstitutionMember, group,
                utils::filled(utils::text("service", "%1不属于账号组的所属机构"), name));
            break;
        case EMemberProblem::Closed:
            add(EFinding::ClosedAccount, group, utils::filled(utils::text("service", "%1已销户"), name));
            break;
        case EMemberProblem::Excluded:
            add(EFinding::ExcludedAccount, group, utils::filled(utils::text("service", "%1不允许加入账号组"), name));
            break;
        }
    }

    void checkConfig(const CAccountGroup& group, const CAccountGroupRCConfig& config)
    {
        // A security may be on the black list of one part and on the white list of another.
        std::map<nvservice::EZvTraderType, nvservice::CTradeLimitList> lists;
        for (const nvservice::CTradeLimitList& part : config.rcRule.lists) {
            const auto [list, isNew] = lists.emplace(part.traderType, part);
            if (isNew) {
                continue;
            }
            add(EFinding::RepeatedList, group,
                utils::filled(utils::text("service", "%1黑白名单重复"), nameOfTraderType(part.traderType)));
            list->second.entries.insert(list->second.entries.end(), part.entries.begin(), part.entries.end());
        }
        for (const auto& [type, list] : lists) {
            checkList(group, list);
        }
        const auto& setting = config.ratProofSetting;
        for (const std::int32_t id : setting.reverseOrderExemptCategoryIds) {
            checkCategory(group, id,
                          [&] { m_categories.requireExempt({id}, {}, utils::text("service", "反向单交易设置")); });
        }
        for (const std::int32_t id : setting.washTradeExemptCategoryIds) {
            checkCategory(group, id,
                          [&] { m_categories.requireExempt({id}, {}, utils::text("service", "对敲交易设置")); });
        }
        for (std::size_t i = 0; i < config.assetsRCs.size(); ++i) {
            const nvservice::CAssetsRC& limit = config.assetsRCs[i];
            const std::string place = utils::filled(utils::text("service", "资产组合风控第%1条"), i + 1);
            if (limit.assetClass == nvservice::EZVRCAssetClass::ByCategory) {
                checkCategory(group, limit.categoryId, [&] { m_categories.require(limit.categoryId, place); });
            }
        }
        // As for a save, values of a later version are not checked.
        checkRule(group, EFinding::BadLimit,
                  [&] { requireValidAssetsLimits(config.assetsRCs, config.assetsRCs, m_categories); });
        checkRule(group, EFinding::BadEmailRule, [&] { requireValidEmailRules(config.emailRCs, config.groupId); });
    }

    void checkList(const CAccountGroup& group, const nvservice::CTradeLimitList& list)
    {
        findTradeLimitProblems(list, &list, [&](const TradeLimitProblem& problem) {
            const bool isOnBoth = problem.kind == TradeLimitProblem::EKind::OnBothLists;
            add(isOnBoth ? EFinding::SecurityOnBothLists : EFinding::BadListEntry, group,
                utils::filled(utils::text("service", "%1黑白名单第%2条：%3"), nameOfTraderType(list.traderType),
                              problem.place + 1, problem.why));
        });
    }

    template <typename Rule>
    void checkCategory(const CAccountGroup& group, std::int32_t id, Rule rule)
    {
        const bool isThere = m_categoryIds.count(id) != 0;
        checkRule(group, isThere ? EFinding::ForbiddenCategory : EFinding::MissingCategory, rule);
    }

    /// Turns a refusal of the rule into a finding.
    template <typename Rule>
    void checkRule(const CAccountGroup& group, EFinding kind, Rule rule)
    {
        try {
            rule();
        } catch (const Refusal& refusal) {
            add(kind, group, refusal.what());
        }
    }

    const ServerData& m_data;
    const CheckOptions& m_options;
    StoredUser m_user;
    RequestContext m_request;
    CategoryRules m_categories;
    std::set<std::int32_t> m_categoryIds;
    std::unordered_map<const nvservice::CAccountInfo*, const StoredAccount*> m_accounts;
    std::set<std::int64_t> m_withForeignMembers;
    Contradictions m_contradictions;
    std::vector<Finding> m_findings;
};

} // namespace

std::vector<Finding> checkConsistency(const ServerData& data, const CheckOptions& options)
{
    return Checker(data, options).run();
}

} // namespace service
