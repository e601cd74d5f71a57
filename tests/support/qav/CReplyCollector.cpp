// SPDX-License-Identifier: Apache-2.0
#include "CReplyCollector.h"

#include <utility>

namespace support
{

CReplyCollector::CReplyCollector() : m_state(std::make_shared<State>()) {}

void CReplyCollector::State::note(CollectedReply reply)
{
    reply.thread = std::this_thread::get_id();
    {
        const std::lock_guard<std::mutex> lock(mutex);
        replies.push_back(std::move(reply));
    }
    arrived.notify_all();
}

QAV::QueryCallback CReplyCollector::onQuery() const
{
    return [state = m_state](const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records, int total,
                             const bson::BSONObj& document) { state->note({error, records, total, document, {}}); };
}

QAV::OperateCallback CReplyCollector::onOperate() const
{
    return [state = m_state](const utils::NVError& error, const bson::BSONObj& document) {
        state->note({error, {}, 0, document, {}});
    };
}

QAV::LogInCallback CReplyCollector::onLogIn() const
{
    return [state = m_state](const utils::NVError& error, const boost::shared_ptr<nvservice::CUserInfo>& user) {
        state->note({error, {user}, 0, {}, {}});
    };
}

bool CReplyCollector::waitFor(std::size_t count, std::chrono::seconds limit) const
{
    std::unique_lock<std::mutex> lock(m_state->mutex);
    return m_state->arrived.wait_for(lock, limit, [&] { return m_state->replies.size() >= count; });
}

std::vector<CollectedReply> CReplyCollector::replies() const
{
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->replies;
}

std::size_t CReplyCollector::count() const
{
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->replies.size();
}

CollectedReply CReplyCollector::first() const
{
    if (!waitFor(1)) {
        return {utils::NVError(utils::EErrorCode::Failed, "no reply came"), {}, 0, {}, {}};
    }
    return replies().front();
}

} // namespace support
