// SPDX-License-Identifier: Apache-2.0
#include "service/engine/DataHandler.h"
#include "service/engine/GroupScope.h"
#include "service/engine/QueryConditions.h"
#include "service/store/GroupHistory.h"

#include <nvservice/CChangeInfo.h>
#include <nvservice/DataType.h>
#include <nvservice/UserRight.h>

#include <deque>
#include <limits>

namespace service
{

namespace
{

namespace QueryCondition = nvservice::QueryCondition;

constexpr int ChunkRows = 256;
constexpr int MostRowsRead = 10000; ///< for one page
constexpr std::int64_t AboveAll = std::numeric_limits<std::int64_t>::max();

/// The changes of one kind, the latest first, read in chunks.
template <typename Change>
class Changes
{
public:
    using Load = std::vector<Change> (*)(const ServerData&, std::int64_t, std::int64_t, int);

    Changes(const ServerData& data, std::int64_t groupId, std::int64_t before, Load load)
        : m_data(data), m_groupId(groupId), m_before(before), m_load(load)
    {
    }

    /// Null after the first change.
    const Change* next()
    {
        if (m_waiting.empty() && !m_isAtEnd) {
            const std::vector<Change> found = m_load(m_data, m_groupId, m_before, ChunkRows);
            m_waiting.assign(found.begin(), found.end());
            m_isAtEnd = found.empty();
        }
        return m_waiting.empty() ? nullptr : &m_waiting.front();
    }
    void pass()
    {
        m_before = m_waiting.front().revision;
        m_waiting.pop_front();
    }
    /// The revision of the last change that was passed.
    std::int64_t before() const { return m_before; }

private:
    const ServerData& m_data;
    std::int64_t m_groupId;
    std::int64_t m_before;
    Load m_load;
    std::deque<Change> m_waiting;
    bool m_isAtEnd = false;
};

class HistoryPage
{
public:
    HistoryPage(const RequestContext& context, const QueryConditions& conditions)
        : m_context(context), m_groupId(conditions.requiredGroup()), m_since(conditions.number(QueryCondition::Since)),
          m_until(conditions.number(QueryCondition::Until)), m_user(conditions.text(QueryCondition::User)),
          m_wanted(static_cast<std::size_t>(conditions.pageSize())),
          m_groupChanges(context, m_groupId, conditions.cursor().value_or(Start).first, &loadGroupChangesBefore),
          m_riskChanges(context, m_groupId, conditions.cursor().value_or(Start).second, &loadRiskChangesBefore)
    {
    }

    /// Both kinds by time. A change of the configuration belongs to the institution that the group belonged to then:
    /// that of the next change of the group, which is the one before it.
    QueryAnswer read()
    {
        for (int read = 0;; ++read) {
            const GroupChange* const group = m_groupChanges.next();
            const RiskRevision* const risk = m_riskChanges.next();
            if (!group && !risk) {
                return answer({});
            }
            if (m_records.size() == m_wanted || read == MostRowsRead) {
                return answer(cursorOf(m_groupChanges.before(), m_riskChanges.before()));
            }
            const bool isInScope =
                group ? service::isInScope(m_context.user, group->institution) : !m_context.user.institution;
            m_groupName = group ? group->name : m_groupName;
            if (risk && (!group || risk->change.at >= group->change.at)) {
                if (isInScope && m_context.user.has(nvservice::UserRight::SetAccountGroupRisk)) {
                    add(nvservice::DataType::GroupRiskConfig, risk->revision, nvservice::EZvDataOperation::Modify,
                        risk->change);
                }
                m_riskChanges.pass();
            } else {
                if (isInScope) {
                    add(nvservice::DataType::AccountGroup, group->revision, group->operation, group->change);
                }
                m_groupChanges.pass();
            }
        }
    }

private:
    static constexpr std::pair<std::int64_t, std::int64_t> Start{AboveAll, AboveAll};

    void add(std::int32_t dataType, std::int64_t revision, nvservice::EZvDataOperation operation, const Change& change)
    {
        if ((m_since && change.at < *m_since) || (m_until && change.at > *m_until) ||
            (m_user && change.login != *m_user)) {
            return;
        }
        const auto record = boost::make_shared<nvservice::CChangeInfo>();
        record->dataType = dataType;
        record->groupId = m_groupId;
        record->groupName = m_groupName;
        record->operation = operation;
        record->userId = change.login;
        record->changedAt = change.at;
        record->setRevision(revision);
        record->setSystemTag(m_context.server.systemTag);
        m_records.push_back(record);
    }

    QueryAnswer answer(const std::string& next) const
    {
        std::set<std::string> logins;
        for (const auto& record : m_records) {
            logins.insert(record->userId);
        }
        const std::map<std::string, std::string> names = loadUserNames(m_context, logins);
        for (const auto& record : m_records) {
            const auto name = names.find(record->userId);
            record->userName = name == names.end() ? std::string() : name->second;
        }
        return {{m_records.begin(), m_records.end()}, next};
    }

    const RequestContext& m_context;
    std::int32_t m_groupId;
    std::optional<std::int64_t> m_since;
    std::optional<std::int64_t> m_until;
    std::optional<std::string> m_user;
    std::size_t m_wanted;
    Changes<GroupChange> m_groupChanges;
    Changes<RiskRevision> m_riskChanges;
    std::string m_groupName; ///< at the time of the change
    std::vector<boost::shared_ptr<nvservice::CChangeInfo>> m_records;
};

} // namespace

QueryAnswer queryGroupHistory(const RequestContext& context, const std::string& key)
{
    const QueryConditions conditions(key, {QueryCondition::Group, QueryCondition::Since, QueryCondition::Until,
                                           QueryCondition::User, QueryCondition::PageSize, QueryCondition::Cursor});
    return HistoryPage(context, conditions).read();
}

} // namespace service
