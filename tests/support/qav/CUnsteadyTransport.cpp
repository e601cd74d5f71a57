// SPDX-License-Identifier: Apache-2.0
#include "support/qav/CUnsteadyTransport.h"

#include <QtGlobal>

#include <algorithm>

namespace support
{

CUnsteadyTransport::CUnsteadyTransport(boost::shared_ptr<QAV::ITransport> server) : m_server(std::move(server)) {}

void CUnsteadyTransport::setHold(std::function<bool(const Request&)> holds)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_holds = std::move(holds);
}

void CUnsteadyTransport::loseOperations(int count)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_operationsToLose = count;
}

void CUnsteadyTransport::waitForServer() const
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_answered.wait(lock, [this] {
        return std::all_of(m_exchanges.begin(), m_exchanges.end(),
                           [](const Exchange& exchange) { return exchange.isAnswered; });
    });
}

std::vector<CUnsteadyTransport::HeldReply> CUnsteadyTransport::heldReplies() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<HeldReply> held;
    for (const Exchange& exchange : m_exchanges) {
        if (exchange.isAnswered) {
            held.push_back(exchange.held);
        }
    }
    return held;
}

void CUnsteadyTransport::release(int number)
{
    Exchange exchange;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = find(number);
        exchange = std::move(*found);
        m_exchanges.erase(found);
    }
    exchange.handler(std::move(exchange.reply));
}

void CUnsteadyTransport::drop(int number)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_exchanges.erase(find(number));
}

int CUnsteadyTransport::count(const Request& wanted) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_counts.find({wanted.isOperation, wanted.dataType});
    return found == m_counts.end() ? 0 : found->second;
}

int CUnsteadyTransport::requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

std::size_t CUnsteadyTransport::liveRecords() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_records.erase(
        std::remove_if(m_records.begin(), m_records.end(), [](const auto& record) { return record.expired(); }),
        m_records.end());
    return m_records.size();
}

QAV::ITransport::RequestId CUnsteadyTransport::logIn(const std::string& user, const std::string& password,
                                                     LogInHandler handler)
{
    return m_server->logIn(user, password, std::move(handler));
}

QAV::ITransport::RequestId CUnsteadyTransport::query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler)
{
    const auto exchange = *begin({false, request.dataType}, std::move(handler));
    return m_server->query(request, [this, exchange](Reply reply) { take(exchange, std::move(reply)); });
}

QAV::ITransport::RequestId CUnsteadyTransport::operate(const nvservice::COperateDataReq& request, ReplyHandler handler)
{
    const auto exchange = begin({true, request.dataType}, std::move(handler));
    if (!exchange) {
        return 0;
    }
    return m_server->operate(request, [this, exchange = *exchange](Reply reply) { take(exchange, std::move(reply)); });
}

QAV::EConnectionState CUnsteadyTransport::state() const
{
    return m_server->state();
}

void CUnsteadyTransport::setStateHandler(StateHandler handler)
{
    m_server->setStateHandler(std::move(handler));
}

std::optional<CUnsteadyTransport::Exchanges::iterator> CUnsteadyTransport::begin(const Request& request,
                                                                                 ReplyHandler handler)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_requests;
    ++m_counts[{request.isOperation, request.dataType}];
    if (request.isOperation && m_operationsToLose > 0) {
        --m_operationsToLose;
        return std::nullopt;
    }
    Exchange exchange;
    exchange.held = {m_requests, request, {}};
    exchange.handler = std::move(handler);
    exchange.isHeld = m_holds && m_holds(request);
    return m_exchanges.insert(m_exchanges.end(), std::move(exchange));
}

void CUnsteadyTransport::take(Exchanges::iterator exchange, Reply reply)
{
    ReplyHandler handler;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_records.insert(m_records.end(), reply.records.begin(), reply.records.end());
        if (exchange->isHeld) {
            exchange->held.error = reply.error;
            exchange->reply = std::move(reply);
            exchange->isAnswered = true;
        } else {
            handler = std::move(exchange->handler);
        }
    }
    if (handler) {
        // Only a reply that is not held has a handler. NOLINTNEXTLINE(bugprone-use-after-move)
        handler(std::move(reply));
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (handler) {
            m_exchanges.erase(exchange);
        }
    }
    m_answered.notify_all();
}

CUnsteadyTransport::Exchanges::iterator CUnsteadyTransport::find(int number)
{
    const auto found = std::find_if(m_exchanges.begin(), m_exchanges.end(), [number](const Exchange& exchange) {
        return exchange.isAnswered && exchange.held.number == number;
    });
    if (found == m_exchanges.end()) {
        qFatal("no answer %d is held", number);
    }
    return found;
}

} // namespace support
