// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/EventLog.h"
#include "service/daemon/Executor.h"
#include "service/engine/DataEngine.h"
#include "service/engine/UnreadChanges.h"

#include <utils/CMailbox.h>

#include <boost/noncopyable.hpp>

#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace service::daemon
{

/// Hands the changes of one sub-system to the sessions that listen. It reads each change once, whoever listens, and
/// pauses for 600 ms between two readings, so that many changes and many sessions cost little. If there are very many
/// of both at once, it only says that anything may have changed. Used on one thread with an event loop; the executor
/// reads.
class ChangeHub : private boost::noncopyable
{
public:
    /// A session that listens for as long as this exists.
    struct Listener {
        UnreadChanges unread;
        std::function<void()> hasNews; ///< called when there is something to take; must not end the listener
    };
    using ListenerPtr = std::shared_ptr<Listener>;

    ChangeHub(DataEnginePtr engine, IExecutor& executor, EventLog& log);
    ~ChangeHub();

    /// @param from  what the client has been told before
    ListenerPtr listen(SessionPtr session, const std::optional<ChangePosition>& from, std::function<void()> hasNews);

private:
    struct Reading;

    void wake();
    void startReading();
    void finish(Reading& reading);
    std::vector<ListenerPtr> listeners();
    std::optional<ChangePosition> earliest(const std::vector<ListenerPtr>& listeners) const;

    DataEnginePtr m_engine;
    IExecutor& m_executor;
    EventLog& m_log;
    std::vector<std::weak_ptr<Listener>> m_listeners;
    std::optional<ChangePosition> m_end; ///< of what was read; empty before the first reading
    bool m_isReading = false;
    bool m_isOutdated = false; ///< something was committed, or somebody has begun to listen, since the reading began
    QTimer m_pause;            ///< between two readings
    std::shared_ptr<ChangeHub*> m_self; ///< points to null after the hub was destroyed
    utils::CMailbox m_mailbox;
    std::shared_ptr<std::atomic<bool>> m_isWoken; ///< a commit was noted since the last reading began
    std::shared_ptr<void> m_watch;                ///< from the first listener on
};

} // namespace service::daemon
