// SPDX-License-Identifier: Apache-2.0
#include "CFakeTransport.h"

#include <utility>

namespace support
{

CFakeTransport::Query CFakeTransport::takeQuery()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_arrived.wait(lock, [this] { return !m_queries.empty(); });
    Query query = std::move(m_queries.front());
    m_queries.pop_front();
    return query;
}

CFakeTransport::Operation CFakeTransport::takeOperation()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_arrived.wait(lock, [this] { return !m_operations.empty(); });
    Operation operation = std::move(m_operations.front());
    m_operations.pop_front();
    return operation;
}

std::size_t CFakeTransport::waitingQueries() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_queries.size();
}

void CFakeTransport::setState(QAV::EConnectionState state, const std::string& reason)
{
    StateHandler handler;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_state = state;
        m_reason = reason;
        handler = m_stateHandler;
    }
    if (handler) {
        handler(state);
    }
}

std::vector<QAV::ITransport::RequestId> CFakeTransport::cancelled() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_cancelled;
}

QAV::ITransport::RequestId CFakeTransport::logIn(const std::string& user, const std::string& password,
                                                 LogInHandler handler)
{
    if (onLogIn) {
        onLogIn(user, password, std::move(handler));
    }
    return ++m_lastRequest;
}

QAV::ITransport::RequestId CFakeTransport::query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler)
{
    const RequestId id = ++m_lastRequest;
    if (onQuery) {
        onQuery(request, std::move(handler));
        return id;
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_queries.push_back({request, std::move(handler), id});
    }
    m_arrived.notify_all();
    return id;
}

QAV::ITransport::RequestId CFakeTransport::operate(const nvservice::COperateDataReq& request, ReplyHandler handler)
{
    const RequestId id = ++m_lastRequest;
    if (onOperate) {
        onOperate(request, std::move(handler));
        return id;
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_operations.push_back({request, std::move(handler), id});
    }
    m_arrived.notify_all();
    return id;
}

void CFakeTransport::cancel(RequestId request) noexcept
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_cancelled.push_back(request);
}

QAV::EConnectionState CFakeTransport::state() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_state;
}

std::string CFakeTransport::stateReason() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_reason;
}

void CFakeTransport::setStateHandler(StateHandler handler)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_stateHandler = std::move(handler);
}

void CFakeTransport::setChangeHandler(ChangeHandler handler)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_changeHandler = std::move(handler);
}

bool CFakeTransport::isListenedTo() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<bool>(m_changeHandler);
}

void CFakeTransport::tellChanges(Changes changes)
{
    ChangeHandler handler;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        handler = m_changeHandler;
    }
    if (handler) {
        handler(std::move(changes));
    }
}

QAV::ITransport::Reply replyWith(std::vector<nvservice::IDataPtr> records)
{
    QAV::ITransport::Reply reply;
    reply.totalCount = static_cast<int>(records.size());
    reply.records = std::move(records);
    return reply;
}

QAV::ITransport::Reply replyWithError(utils::EErrorCode code, const std::string& text)
{
    QAV::ITransport::Reply reply;
    reply.error = utils::NVError(code, text);
    return reply;
}

} // namespace support
