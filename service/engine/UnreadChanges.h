// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/ChangeFeed.h"
#include "service/engine/Session.h"

#include <boost/noncopyable.hpp>

#include <map>

namespace service
{

/// What one session may hear of and has not been told yet: the latest change per group and kind of data. Of more than
/// 1000 groups it only says that anything may have changed. Not thread-safe.
class UnreadChanges : private boost::noncopyable
{
public:
    /// What is told at once.
    struct News {
        std::vector<nvservice::CChangeInfoPtr> records;
        bool isComplete = true; ///< false: anything may have changed, and there are no records
        ChangePosition position;
    };

    /// @param from  what the client has been told before; empty: it wants to hear of what follows
    UnreadChanges(SessionPtr session, std::optional<ChangePosition> from);

    /// Takes over what the user may read of it, by the rights at its end. Ignores what was taken over before.
    void add(const ChangeBatch& batch);
    /// Before the first batch, that which the client knows.
    const std::optional<ChangePosition>& position() const { return m_position; }

    /// True if there is something to tell: changes, or a position without which the client would have to be told much
    /// again after a lost connection.
    bool hasNews() const;
    News take();

private:
    void add(const CommittedChange& change, const StoredUser& user);
    void put(nvservice::CChangeInfoPtr info);
    void loseTrack();

    const SessionPtr m_session;
    std::optional<ChangePosition> m_position;
    std::int64_t m_toldAuditId = -1; ///< of the position that was told last
    bool m_hasBegun = false;         ///< a batch was added
    bool m_isOver = false;           ///< the session has ended
    bool m_isComplete = true;
    bool m_readsRisk = false;
    InstitutionId m_institution;
    bool m_knowsUser = false;
    std::map<std::int32_t, std::map<std::int32_t, nvservice::CChangeInfoPtr>> m_groups; ///< by id, then data type
};

} // namespace service
