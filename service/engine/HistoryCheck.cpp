// SPDX-License-Identifier: Apache-2.0
#include "service/engine/HistoryCheck.h"
#include "service/store/Documents.h"
#include "service/store/Query.h"
#include "service/store/RiskConfigs.h"

#include <nvservice/EZvDataOperation.h>
#include <utils/Translation.h>

#include <QCoreApplication>

#include <algorithm>
#include <map>
#include <set>

namespace service
{

namespace
{

using nvservice::EZvDataOperation;

/// The state of a group or a configuration in a row.
struct State {
    std::int64_t revision = 0;
    bool isDeleted = false;
    std::string name;
    InstitutionId institution;
    std::string members;
    QByteArray document; ///< the unknown fields of a group, the body of a configuration

    bool hasContentOf(const State& other) const
    {
        return name == other.name && institution == other.institution && members == other.members &&
               document == other.document;
    }
};

using StatesById = std::map<std::int64_t, State>;

std::string revisionText(std::int64_t revision)
{
    return utils::filled(utils::text("service", "修订%1"), revision);
}

class HistoryChecker
{
public:
    HistoryChecker(const ServerData& data, const CheckOptions& options) : m_data(data), m_options(options) {}

    std::vector<Finding> run()
    {
        loadEpochs();
        const StatesById lastOfGroups = checkGroupHistories();
        const StatesById groups = loadGroupStates();
        compare(lastOfGroups, groups);
        checkConfigs(checkConfigHistories(), groups);
        checkCounters();
        return std::move(m_findings);
    }

private:
    void add(EFinding kind, std::int64_t groupId, const std::string& text)
    {
        m_findings.push_back({kind, groupId, groupId == 0 ? std::string() : m_names[groupId], text});
    }

    void loadEpochs()
    {
        Query query(m_data.connection, QStringLiteral("SELECT revision, next_group_id - 1, next_rule_id - 1 FROM epoch"
                                                      " WHERE system_tag = ?"));
        for (query.bind(m_data.server.systemTag).run(); query.next();) {
            m_epochs.insert(query.integer(0));
            m_highestGroupId = std::max(m_highestGroupId, query.integer(1));
            m_highestRuleId = std::max(m_highestRuleId, query.integer(2));
        }
    }

    /// Finds missing revisions. The first revision of an epoch may leave a gap.
    void checkStep(const char* what, std::int64_t groupId, std::int64_t before, std::int64_t revision)
    {
        if (revision != before + 1 && m_epochs.count(revision) == 0) {
            add(EFinding::HistoryGap, groupId,
                revision == before + 2 ? utils::filled(utils::text("service", "%1历史中缺少修订%2"),
                                                       utils::text("service", what), before + 1)
                                       : utils::filled(utils::text("service", "%1历史中缺少修订%2至修订%3"),
                                                       utils::text("service", what), before + 1, revision - 1));
        }
    }

    /// Returns the state of each group after its last change.
    StatesById checkGroupHistories()
    {
        StatesById last;
        Query query(m_data.connection,
                    QStringLiteral("SELECT group_id, revision, operation, name, institution_id, members, extra"
                                   " FROM account_group_history WHERE server_id = ? ORDER BY group_id, revision"));
        for (query.bind(m_data.server.id).run(); query.next();) {
            pulse(m_options);
            const std::int64_t id = query.integer(0);
            State& state = last[id];
            m_highestGroupId = std::max(m_highestGroupId, id);
            m_names[id] = query.text(3);
            if (state.isDeleted) {
                add(EFinding::HistoryMismatch, id,
                    utils::filled(utils::text("service", "账号组历史在删除之后还有%1"),
                                  revisionText(query.integer(1))));
            }
            checkStep(QT_TRANSLATE_NOOP("service", "账号组"), id, state.revision, query.integer(1));
            state = {query.integer(1), query.integer(2) == static_cast<int>(EZvDataOperation::Delete),
                     query.text(3),    query.optionalInteger(4),
                     query.text(5),    query.blob(6)};
            try {
                documentOf(state.document);
            } catch (const StoreError& failure) {
                add(EFinding::BrokenFields, id,
                    utils::filled(utils::text("service", "账号组历史%1：%2"), revisionText(state.revision),
                                  failure.error().errorMsg()));
            }
        }
        return last;
    }

    StatesById loadGroupStates()
    {
        StatesById groups;
        Query query(m_data.connection, QStringLiteral("SELECT group_id, revision, name, institution_id, extra"
                                                      " FROM account_group WHERE server_id = ?"));
        for (query.bind(m_data.server.id).run(); query.next();) {
            const std::int64_t id = query.integer(0);
            groups[id] = {query.integer(1), false, query.text(2), query.optionalInteger(3), {}, query.blob(4)};
            m_names[id] = query.text(2);
            m_highestGroupId = std::max(m_highestGroupId, id);
        }
        Query members(m_data.connection, QStringLiteral("SELECT group_id, account_id FROM account_group_member"
                                                        " WHERE server_id = ? ORDER BY group_id, position"));
        for (members.bind(m_data.server.id).run(); members.next();) {
            const auto group = groups.find(members.integer(0));
            if (group == groups.end()) {
                continue; // a broken reference
            }
            std::string& text = group->second.members;
            text += (text.empty() ? "" : ",") + std::to_string(members.integer(1));
        }
        return groups;
    }

    void compare(const StatesById& last, const StatesById& groups)
    {
        for (const auto& [id, group] : groups) {
            const auto change = last.find(id);
            if (change == last.end()) {
                add(EFinding::HistoryGap, id, utils::text("service", "账号组没有历史"));
            } else if (change->second.isDeleted) {
                add(EFinding::HistoryMismatch, id, utils::text("service", "账号组历史以删除结束，账号组却还在"));
            } else {
                compare(QT_TRANSLATE_NOOP("service", "账号组"), id, change->second, group);
            }
        }
        for (const auto& [id, change] : last) {
            if (!change.isDeleted && groups.count(id) == 0) {
                add(EFinding::HistoryMismatch, id, utils::text("service", "账号组已不在，历史中却没有删除"));
            }
        }
    }

    void compare(const char* what, std::int64_t id, const State& change, const State& stored)
    {
        if (change.revision != stored.revision) {
            add(EFinding::HistoryMismatch, id,
                utils::filled(utils::text("service", "%1为%2，历史中最后为%3"), utils::text("service", what),
                              revisionText(stored.revision), revisionText(change.revision)));
        } else if (!stored.hasContentOf(change)) {
            add(EFinding::HistoryMismatch, id,
                utils::filled(utils::text("service", "%1的内容与历史中的%2不同"), utils::text("service", what),
                              revisionText(change.revision)));
        }
    }

    StatesById checkConfigHistories()
    {
        StatesById last;
        Query query(m_data.connection, QStringLiteral("SELECT group_id, revision, body FROM group_risk_config_history"
                                                      " WHERE server_id = ? ORDER BY group_id, revision"));
        for (query.bind(m_data.server.id).run(); query.next();) {
            pulse(m_options);
            const std::int64_t id = query.integer(0);
            const std::int64_t revision = query.integer(1);
            State& state = last.emplace(id, firstConfig()).first->second;
            checkStep(QT_TRANSLATE_NOOP("service", "风控配置"), id, state.revision, revision);
            state.revision = revision;
            state.document = query.blob(2);
            try {
                const auto config = riskConfigOf(state.document, m_data.server, id, revision);
                for (const nvservice::CAssetsRC& limit : config->assetsRCs) {
                    m_highestRuleId = std::max(m_highestRuleId, limit.ruleId);
                }
            } catch (const StoreError& failure) {
                add(EFinding::BrokenConfig, id,
                    utils::filled(utils::text("service", "风控配置历史%1：%2"), revisionText(revision),
                                  failure.error().errorMsg()));
            }
        }
        return last;
    }

    /// The default configuration, which has no row in the history.
    static State firstConfig()
    {
        State state;
        state.revision = 1;
        return state;
    }

    void checkConfigs(const StatesById& last, const StatesById& groups)
    {
        Query query(m_data.connection,
                    QStringLiteral("SELECT group_id, revision, body FROM group_risk_config WHERE server_id = ?"));
        for (query.bind(m_data.server.id).run(); query.next();) {
            const std::int64_t id = query.integer(0);
            if (groups.count(id) == 0) {
                continue; // without a group it is a broken reference
            }
            State stored;
            stored.revision = query.integer(1);
            stored.document = query.blob(2);
            const auto change = last.find(id);
            compare(QT_TRANSLATE_NOOP("service", "风控配置"), id, change == last.end() ? firstConfig() : change->second,
                    stored);
        }
    }

    void checkCounters()
    {
        Query query(m_data.connection,
                    QStringLiteral("SELECT next_group_id, next_rule_id FROM sub_system WHERE id = ?"));
        if (!query.bind(m_data.server.id).runAndNext()) {
            return;
        }
        const auto check = [this](const char* what, std::int64_t next, std::int64_t highest) {
            if (next <= highest) {
                add(EFinding::LowCounter, 0,
                    utils::filled(utils::text("service", "下一个%1编号（%2）已经用过，用到了%3"),
                                  utils::text("service", what), next, highest));
            }
        };
        check(QT_TRANSLATE_NOOP("service", "账号组"), query.integer(0), m_highestGroupId);
        check(QT_TRANSLATE_NOOP("service", "资产组合风控"), query.integer(1), m_highestRuleId);
    }

    const ServerData& m_data;
    const CheckOptions& m_options;
    std::set<std::int64_t> m_epochs; ///< the revisions with which they began
    std::map<std::int64_t, std::string> m_names;
    std::int64_t m_highestGroupId = 0;
    std::int64_t m_highestRuleId = 0;
    std::vector<Finding> m_findings;
};

} // namespace

std::vector<Finding> checkHistory(const ServerData& data, const CheckOptions& options)
{
    return HistoryChecker(data, options).run();
}

} // namespace service
