// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/LogInAttempts.h"

#include <utility>

namespace service::daemon
{

namespace
{

using utils::EErrorCode;
using utils::NVError;

// In a row. Each of them is a line in the log.
constexpr int MaxRefusedLogIns = 20;

} // namespace

LogInAttempts::LogInAttempts(ConversationContext& context, std::string peer, Finished finished)
    : m_context(context), m_peer(std::move(peer)), m_finished(std::move(finished)),
      m_self(std::make_shared<LogInAttempts*>(this))
{
}

LogInAttempts::~LogInAttempts()
{
    *m_self = nullptr;
}

bool LogInAttempts::areUsedUp() const
{
    return m_refused >= MaxRefusedLogIns;
}

NVError LogInAttempts::refusalOf(const std::string& user) const
{
    const auto wait = m_context.guard.lockedFor(m_peer, user, m_context.now());
    if (wait.count() > 0) {
        m_context.log.warning("log_in_locked", {{"peer", m_peer}, {"user", user}});
        const auto whole = static_cast<int>(std::chrono::ceil<std::chrono::seconds>(wait).count());
        return {EErrorCode::ResourceExhausted,
                utils::text("service", "登录失败次数过多，请%n秒后再试", nullptr, whole)};
    }
    if (m_context.logIns.waiting() >= static_cast<std::size_t>(m_context.limits.waitingLogIns)) {
        return {EErrorCode::ResourceExhausted, utils::text("service", "同时登录的用户过多，请稍后再试")};
    }
    return {};
}

NVError LogInAttempts::begin(const wire::LogIn& logIn, utils::ELanguage language, bool isStopping)
{
    const NVError refusal = isStopping ? NVError(EErrorCode::NotConnected, utils::text("service", "数据服务正在停止"))
                                       : refusalOf(logIn.user);
    if (!refusal.isSuccess()) {
        m_context.metrics.requestDone("log_in", refusal.code(), Metrics::Seconds(0));
        ++m_refused;
        return refusal;
    }
    m_isUnderWay = true;
    const auto reply = std::make_shared<service::LogInReply>();
    m_context.logIns.post(
        [engine = m_context.engine, reply, language, user = logIn.user, password = logIn.password] {
            const utils::CLanguageScope scope(language);
            *reply = engine->logIn(user, password);
        },
        [self = m_self, reply, id = logIn.id, user = logIn.user, began = m_context.now()] {
            if (*self) {
                (*self)->finish(id, user, *reply, began);
            }
        });
    return {};
}

void LogInAttempts::finish(std::int64_t id, const std::string& user, const service::LogInReply& reply, TimePoint began)
{
    m_isUnderWay = false;
    const EErrorCode outcome = reply.error.code();
    if (outcome == EErrorCode::Success) {
        m_context.guard.succeeded(m_peer, user, m_context.now());
    } else if (outcome == EErrorCode::NotLoggedIn) {
        m_context.guard.failed(m_peer, user, m_context.now());
    }
    m_context.log.write(outcome == EErrorCode::Success ? ELogLevel::Info : ELogLevel::Warning, "log_in",
                        {{"peer", m_peer}, {"user", user}, {"outcome", nameOfErrorCode(outcome).key}});
    m_context.metrics.requestDone("log_in", outcome, m_context.now() - began);
    m_refused = outcome == EErrorCode::Success ? 0 : m_refused + 1;
    m_finished(id, reply);
}

} // namespace service::daemon
