// SPDX-License-Identifier: Apache-2.0
#include "service/engine/UnreadChanges.h"

#include "service/engine/GroupRiskConfig.h"

#include <nvservice/DataType.h>

#include <utility>

namespace service
{

namespace
{

using nvservice::CChangeInfo;
using nvservice::EZvDataOperation;
namespace DataType = nvservice::DataType;

constexpr std::size_t MaxGroups = 1000;
// A position is told at the latest after so many audit rows: far fewer than are read for a client that comes back.
constexpr std::int64_t LongestSilence = 1000;

bool mayRead(const StoredUser& user, const CommittedChange& change, const std::optional<CommittedChange::State>& state)
{
    return state && isInScope(user, state->institution) &&
           (change.info->dataType == DataType::AccountGroup || user.has(RiskRight));
}

} // namespace

UnreadChanges::UnreadChanges(SessionPtr session, std::optional<ChangePosition> from)
    : m_session(std::move(session)), m_position(from)
{
}

void UnreadChanges::add(const ChangeBatch& batch)
{
    const auto found = batch.users.find(m_session->userRow());
    const StoredUser* const user = found == batch.users.end() ? nullptr : &found->second;
    if (!batch.users.empty()) {
        m_isOver = m_isOver || !user || !user->enabled || user->passwordHash != m_session->passwordHash();
    }
    const std::optional<ChangePosition> from = std::exchange(m_position, batch.end);
    m_hasBegun = true;
    if (m_isOver) {
        m_groups.clear();
        return;
    }
    if (user) {
        // What waits was chosen by the former rights.
        const bool isOther = m_readsRisk != user->has(RiskRight) || m_institution != user->institution;
        if (m_knowsUser && isOther && !m_groups.empty()) {
            loseTrack();
        }
        m_knowsUser = true;
        m_readsRisk = user->has(RiskRight);
        m_institution = user->institution;
    }
    if (!from) {
        return;
    }
    if (from->epoch != batch.end.epoch || from->auditId > batch.end.auditId || from->auditId < batch.completeFrom) {
        return loseTrack();
    }
    for (const CommittedChange& change : batch.changes) {
        if (change.auditId > from->auditId && m_isComplete && user) {
            add(change, *user);
        }
    }
}

void UnreadChanges::add(const CommittedChange& change, const StoredUser& user)
{
    const bool readsAfter = mayRead(user, change, change.after);
    if (!readsAfter && !mayRead(user, change, change.before)) {
        return;
    }
    const bool isOwn = change.info->userId == user.login;
    if (readsAfter && isOwn) {
        return put(change.info);
    }
    const auto info = boost::make_shared<CChangeInfo>(*change.info);
    if (!isOwn) {
        info->operationId.clear();
    }
    if (!readsAfter) {
        info->operation = EZvDataOperation::Delete;
        info->groupName = change.before->groupName;
    }
    put(info);
}

void UnreadChanges::put(nvservice::CChangeInfoPtr info)
{
    auto& records = m_groups[info->groupId];
    if (info->operation == EZvDataOperation::Delete) {
        records.clear();
    }
    const std::int32_t dataType = info->dataType;
    records[dataType] = std::move(info);
    if (m_groups.size() > MaxGroups) {
        loseTrack();
    }
}

void UnreadChanges::loseTrack()
{
    m_isComplete = false;
    m_groups.clear();
}

bool UnreadChanges::hasNews() const
{
    return m_hasBegun && !m_isOver &&
           (!m_isComplete || !m_groups.empty() || m_toldAuditId < 0 ||
            m_position->auditId - m_toldAuditId > LongestSilence);
}

UnreadChanges::News UnreadChanges::take()
{
    News news;
    news.position = *m_position;
    news.isComplete = std::exchange(m_isComplete, true);
    for (const auto& [groupId, records] : std::exchange(m_groups, {})) {
        for (const auto& [dataType, record] : records) {
            news.records.push_back(record);
        }
    }
    m_toldAuditId = news.position.auditId;
    return news;
}

} // namespace service
