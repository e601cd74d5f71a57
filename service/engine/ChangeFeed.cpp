// SPDX-License-Identifier: Apache-2.0
#include "service/engine/ChangeFeed.h"

#include "service/engine/GroupRiskConfig.h"
#include "service/store/ChangeLog.h"
#include "service/store/GroupHistory.h"
#include "service/store/Journal.h"

#include <nvservice/DataType.h>

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <limits>
#include <map>

namespace service
{

namespace
{

using nvservice::CChangeInfo;
using nvservice::EZvDataOperation;
namespace DataType = nvservice::DataType;

constexpr int MaxAttempts = 4096;

bool isSame(const Change& a, const Change& b)
{
    return a.at == b.at && a.login == b.login;
}

/// The group of a change; empty if the attempt was refused, or is about something else.
std::optional<std::int32_t> changedGroup(const ServerData& data, const LoggedAttempt& attempt)
{
    AuditRow row;
    row.dataType = attempt.dataType;
    row.recordKey = attempt.recordKey;
    return attempt.isSuccess ? groupOf(data.server, row) : std::nullopt;
}

/// The history of one group, from the latest change to earlier ones.
class Past
{
public:
    /// @param attempts  how many audit rows may have changes here
    Past(const ServerData& data, std::int32_t groupId, int attempts)
        : m_states(loadGroupChangesBefore(data, groupId, Latest, attempts + 1)),
          m_configs(loadRiskChangesBefore(data, groupId, Latest, attempts))
    {
    }

    /// The change that the attempt made to the group; null if it made none. Goes back to before it.
    const GroupChange* takeState(const Change& attempt) { return take(m_states, m_nextState, attempt); }
    const RiskRevision* takeConfig(const Change& attempt) { return take(m_configs, m_nextConfig, attempt); }

    /// The group before the changes that were taken; empty if there was none.
    std::optional<CommittedChange::State> state() const
    {
        if (m_nextState == m_states.size() || m_states[m_nextState].operation == EZvDataOperation::Delete) {
            return std::nullopt;
        }
        return CommittedChange::State{m_states[m_nextState].name, m_states[m_nextState].institution};
    }

private:
    template <typename Revision>
    static const Revision* take(const std::vector<Revision>& revisions, std::size_t& next, const Change& attempt)
    {
        const auto found =
            std::find_if(revisions.begin() + static_cast<std::ptrdiff_t>(next), revisions.end(),
                         [&attempt](const Revision& revision) { return isSame(revision.change, attempt); });
        if (found == revisions.end()) {
            return nullptr;
        }
        next = static_cast<std::size_t>(found - revisions.begin()) + 1;
        return &*found;
    }

    static constexpr std::int64_t Latest = std::numeric_limits<std::int64_t>::max();

    std::vector<GroupChange> m_states;
    std::vector<RiskRevision> m_configs;
    std::size_t m_nextState = 0;
    std::size_t m_nextConfig = 0;
};

/// Makes changes of audit rows.
class Reader
{
public:
    Reader(const ServerData& data, ChangeBatch& batch) : m_data(data), m_batch(batch) {}

    /// @param attempts  the latest first
    void read(const std::vector<LoggedAttempt>& attempts)
    {
        std::map<std::int32_t, int> counts;
        for (const LoggedAttempt& attempt : attempts) {
            if (const auto groupId = changedGroup(m_data, attempt)) {
                ++counts[*groupId];
            }
        }
        if (counts.empty()) {
            return;
        }
        std::map<std::int32_t, Past> pasts;
        for (const auto& [groupId, count] : counts) {
            pasts.emplace(std::piecewise_construct, std::forward_as_tuple(groupId),
                          std::forward_as_tuple(m_data, groupId, count));
        }
        for (const auto& [row, user] : m_batch.users) {
            m_names[user.login] = user.displayName;
        }
        for (const LoggedAttempt& attempt : attempts) {
            if (const auto groupId = changedGroup(m_data, attempt)) {
                add(attempt, *groupId, pasts.at(*groupId));
            }
        }
        std::reverse(m_batch.changes.begin(), m_batch.changes.end());
    }

private:
    void add(const LoggedAttempt& attempt, std::int32_t groupId, Past& past)
    {
        const std::optional<CommittedChange::State> present = past.state();
        const bool isOfGroup = attempt.dataType == DataType::AccountGroup;
        const bool isOfConfig =
            attempt.dataType == DataType::GroupRiskConfig || attempt.dataType == DataType::EmailRule;
        // Other operations may change both. The configuration of a group that is not there is no news.
        if (const RiskRevision* const config = present && !isOfGroup ? past.takeConfig(attempt.change) : nullptr) {
            CommittedChange change = changeOf(attempt, groupId, DataType::GroupRiskConfig);
            change.before = change.after = present;
            finish(change, config->revision, EZvDataOperation::Modify, present->groupName);
        }
        if (const GroupChange* const state = isOfConfig ? nullptr : past.takeState(attempt.change)) {
            CommittedChange change = changeOf(attempt, groupId, DataType::AccountGroup);
            change.before = state->operation == EZvDataOperation::Add ? std::nullopt : past.state();
            if (state->operation != EZvDataOperation::Delete) {
                change.after = CommittedChange::State{state->name, state->institution};
            }
            finish(change, state->revision, state->operation, state->name);
        }
    }

    CommittedChange changeOf(const LoggedAttempt& attempt, std::int32_t groupId, std::int32_t dataType) const
    {
        const auto info = boost::make_shared<CChangeInfo>();
        info->dataType = dataType;
        info->groupId = groupId;
        info->userId = attempt.change.login;
        const auto name = m_names.find(attempt.change.login);
        info->userName = name == m_names.end() ? std::string() : name->second;
        info->changedAt = attempt.change.at;
        info->operationId = attempt.operationId;
        info->setSystemTag(m_data.server.systemTag);
        CommittedChange change;
        change.auditId = attempt.id;
        change.info = info;
        return change;
    }

    void finish(CommittedChange& change, std::int64_t revision, EZvDataOperation operation, const std::string& name)
    {
        const auto info = boost::make_shared<CChangeInfo>(*change.info);
        info->setRevision(revision);
        info->operation = operation;
        info->groupName = name;
        change.info = info;
        m_batch.changes.push_back(std::move(change));
    }

    const ServerData& m_data;
    ChangeBatch& m_batch;
    std::map<std::string, std::string> m_names; ///< by log-in
};

void loadUsers(const ServerData& data, ChangeBatch& batch)
{
    for (StoredUser& user : loadUsersWithRight(data, RiskRight)) {
        batch.users.emplace(user.row, std::move(user));
    }
}

} // namespace

std::string ChangePosition::text() const
{
    return std::to_string(epoch) + '.' + std::to_string(auditId) + '.' + std::to_string(at);
}

std::optional<ChangePosition> ChangePosition::fromText(const std::string& text)
{
    const QStringList parts = QString::fromStdString(text).split(QLatin1Char('.'));
    if (parts.size() != 3) {
        return std::nullopt;
    }
    std::int64_t numbers[3];
    for (int i = 0; i < 3; ++i) {
        bool isNumber = false;
        numbers[i] = parts[i].toLongLong(&isNumber);
        if (!isNumber || numbers[i] < 0) {
            return std::nullopt;
        }
    }
    return ChangePosition{numbers[0], numbers[1], numbers[2]};
}

ChangeBatch readChanges(const ServerData& data, const std::optional<ChangePosition>& from, const ChangeLimit& limit)
{
    ChangeBatch batch;
    batch.end.epoch = currentEpoch(data);
    batch.end.at = QDateTime::currentMSecsSinceEpoch();
    if (!from || from->epoch != batch.end.epoch) {
        batch.end.auditId = batch.completeFrom = lastAuditId(data);
        loadUsers(data, batch);
        return batch;
    }
    std::vector<LoggedAttempt> attempts;
    std::size_t later = 0;
    readAttemptsSince(data, from->auditId, MaxAttempts + 1, [&](LoggedAttempt attempt) {
        later += attempt.id > limit.after && changedGroup(data, attempt) ? 1 : 0;
        attempts.push_back(std::move(attempt));
        return later <= limit.most;
    });
    batch.completeFrom = from->auditId;
    if (attempts.empty()) {
        batch.end.auditId = hasAuditRow(data, from->auditId) ? from->auditId : lastAuditId(data);
        return batch;
    }
    batch.end.auditId = attempts.front().id;
    loadUsers(data, batch);
    if (later > limit.most) {
        batch.completeFrom = batch.end.auditId;
        return batch;
    }
    if (attempts.size() > MaxAttempts) {
        attempts.pop_back();
        batch.completeFrom = attempts.back().id - 1;
    }
    for (const LoggedAttempt& attempt : attempts) {
        if (attempt.recordKey == PrunedAuditKey && findRemovalTime(data, attempt.id) >= from->at) {
            batch.completeFrom = std::max(batch.completeFrom, attempt.id);
        }
    }
    Reader(data, batch).read(attempts);
    return batch;
}

} // namespace service
