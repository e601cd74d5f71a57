// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/wire/Messages.h"
#include "service/daemon/ConversationContext.h"

#include <utils/Translation.h>

#include <boost/noncopyable.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace service::daemon
{

/// The attempts of one client to log in, one at a time: the limits on them, the check on another thread, the log. Used
/// on one thread.
class LogInAttempts : private boost::noncopyable
{
public:
    using Finished = std::function<void(std::int64_t id, const service::LogInReply& reply)>;

    /// @param peer      the client's address without the port, for the limits
    /// @param finished  called when the password has been checked. Must not destroy this object.
    LogInAttempts(ConversationContext& context, std::string peer, Finished finished);
    ~LogInAttempts();

    /// Has the password checked. An error: the attempt is refused without a check, and `finished` is not called.
    utils::NVError begin(const wire::LogIn& logIn, utils::ELanguage language, bool isStopping);
    bool isUnderWay() const { return m_isUnderWay; }
    /// True after so many refusals in a row that the client may not try again.
    bool areUsedUp() const;

private:
    utils::NVError refusalOf(const std::string& user) const;
    void finish(std::int64_t id, const std::string& user, const service::LogInReply& reply, TimePoint began);

    ConversationContext& m_context;
    const std::string m_peer;
    const Finished m_finished;
    const std::shared_ptr<LogInAttempts*> m_self; ///< points to null after the destruction
    bool m_isUnderWay = false;
    int m_refused = 0; ///< in a row
};

} // namespace service::daemon
