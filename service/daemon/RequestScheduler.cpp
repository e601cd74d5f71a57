// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/RequestScheduler.h"

#include "service/daemon/Mebibyte.h"

#include <algorithm>
#include <utility>

namespace service::daemon
{

namespace
{

using utils::EErrorCode;
using utils::NVError;

// Queries of one client that run at the same time; further ones wait, so that other clients have their turn.
constexpr int MaxRunningQueries = 4;
// Messages of waiting requests; beyond that nothing more is read from the client.
constexpr std::size_t MaxRequestBytesWaiting = Mebibyte;
// Freeing more records takes so long that a worker does it.
constexpr std::size_t ManyRecords = 1000;

// Queries with shorter answers start even if the answers of others fill the memory.
constexpr std::size_t ShortAnswerBytes = std::size_t{64} * 1024;

} // namespace

RequestScheduler::RequestScheduler(ConversationContext& context, std::string peer, Finished finished)
    : m_context(context), m_peer(std::move(peer)), m_finished(std::move(finished)),
      m_self(std::make_shared<RequestScheduler*>(this))
{
}

RequestScheduler::~RequestScheduler()
{
    *m_self = nullptr;
    m_context.held.change(m_heldBytes, 0);
    for (const RequestPtr& request : m_requests) {
        request->job->isUnwanted = true;
        if (request->answer) {
            dispose(request->answer->cancel({}));
        }
        m_context.metrics.requestsUnderWay(-1);
    }
}

void RequestScheduler::add(const RequestPtr& request)
{
    request->arrived = m_context.now();
    m_requestBytes += request->bytes;
    m_requests.push_back(request);
    m_context.metrics.requestsUnderWay(1);
    startRequests();
}

bool RequestScheduler::isFull() const
{
    return m_requestBytes >= MaxRequestBytesWaiting ||
           m_requests.size() >= static_cast<std::size_t>(m_context.limits.requestsPerConnection);
}

bool RequestScheduler::isUnderWay(std::int64_t id) const
{
    return std::any_of(m_requests.begin(), m_requests.end(),
                       [&](const RequestPtr& request) { return request->id == id; });
}

void RequestScheduler::setHeldBytes(std::size_t bytes)
{
    m_context.held.change(std::exchange(m_heldBytes, bytes), bytes);
}

bool RequestScheduler::mayHold(std::size_t bytes) const
{
    return m_heldBytes < Mebibyte * static_cast<std::size_t>(m_context.limits.heldMebibytesPerConnection) &&
           (!m_context.held.isFull() || bytes <= ShortAnswerBytes);
}

void RequestScheduler::startRequests()
{
    std::size_t held = 0;
    int running = 0;
    for (const RequestPtr& request : m_requests) {
        held += request->answer ? request->answer->heldBytes() : request->expectedBytes;
        running += request->state == Request::EState::Running && !request->isOperation ? 1 : 0;
    }
    setHeldBytes(held);
    bool isOperationAhead = false;
    for (const RequestPtr& request : m_requests) {
        const bool isWaiting = request->state == Request::EState::Waiting;
        if (isWaiting && !isOperationAhead &&
            (request->isOperation ||
             (mayHold(m_context.held.expected(request->answerKind)) && running < MaxRunningQueries))) {
            start(request);
            running += request->isOperation ? 0 : 1;
        }
        isOperationAhead |= request->isOperation && request->state != Request::EState::Answering;
    }
}

void RequestScheduler::start(const RequestPtr& request)
{
    request->state = Request::EState::Running;
    if (!request->isOperation) {
        request->expectedBytes = m_context.held.expected(request->answerKind);
        setHeldBytes(m_heldBytes + request->expectedBytes);
    }
    m_context.requests.post([engine = m_context.engine, session = request->session,
                             job = request->job] { job->carryOut(*engine, session); },
                            [self = m_self, request] {
                                if (*self) {
                                    (*self)->finish(request);
                                }
                            });
}

void RequestScheduler::finish(const RequestPtr& request)
{
    NVError unreadable;
    request->nameKind();
    if (std::holds_alternative<nvservice::CKolmQueryDataReq>(request->job->content)) {
        if (!request->job->isUnwanted) {
            m_context.held.learn(request->answerKind, request->job->replyBytes);
        }
    } else if (const auto* operation = std::get_if<nvservice::COperateDataReq>(&request->job->content)) {
        m_context.log.info("operation", {{"peer", m_peer},
                                         {"user", request->session->login()},
                                         {"data_type", operation->dataType},
                                         {"operation", static_cast<int>(operation->operation)},
                                         {"operation_id", operation->operationId},
                                         {"outcome", nameOfErrorCode(request->job->reply.error.code()).key}});
    } else {
        unreadable = request->job->reply.error;
    }
    if (request->isAnswered) {
        forget(request);
    } else {
        answer(*request);
    }
    startRequests();
    m_finished(request->kind, unreadable);
}

void RequestScheduler::releaseBytes(Request& request)
{
    m_requestBytes -= std::exchange(request.bytes, 0);
    request.room = {};
}

void RequestScheduler::forget(const RequestPtr& request)
{
    releaseBytes(*request);
    m_requests.erase(std::find(m_requests.begin(), m_requests.end(), request));
    m_context.metrics.requestsUnderWay(-1);
}

void RequestScheduler::answer(Request& request)
{
    releaseBytes(request);
    request.expectedBytes = 0;
    request.job->content = wire::Frame();
    request.state = Request::EState::Answering;
    request.answering = m_context.now();
    request.answer = std::make_unique<Answer>(request.id, std::move(request.job->reply), request.job->replyBytes);
}

std::chrono::duration<double> RequestScheduler::lateness() const
{
    using Seconds = std::chrono::duration<double>;
    Seconds latest(0);
    for (const RequestPtr& request : m_requests) {
        if (!request->answer || request->answer->heldBytes() == 0) {
            continue;
        }
        const Seconds due(static_cast<double>(request->answer->sentBytes()) / SlowBytesPerSecond);
        latest = std::max<Seconds>(latest, m_context.now() - request->answering - due);
    }
    return latest;
}

bool RequestScheduler::isAnswerLate() const
{
    return std::any_of(m_requests.begin(), m_requests.end(), [this](const RequestPtr& request) {
        return request->answer &&
               m_context.now() - request->answering > std::chrono::seconds(m_context.timeouts.replySeconds);
    });
}

bool RequestScheduler::cancel(std::int64_t id, const NVError& error)
{
    const auto found = std::find_if(m_requests.begin(), m_requests.end(),
                                    [id](const RequestPtr& request) { return request->id == id; });
    if (found == m_requests.end() || (*found)->isAnswered) {
        return false; // its last message is on the way already
    }
    Request& request = **found;
    const bool isRunning = request.state == Request::EState::Running;
    if (request.isOperation && isRunning) {
        return false; // it is carried out, and the client is told how
    }
    switch (request.state) {
    case Request::EState::Waiting:
        answer(request);
        request.answer->cancel(error);
        break;
    case Request::EState::Running:
        request.job->isUnwanted = true;
        request.isAnswered = true;
        answerDone(request, error.code());
        break;
    case Request::EState::Answering:
        dispose(request.answer->cancel(error));
        break;
    }
    startRequests();
    return isRunning;
}

bson::BSONObj RequestScheduler::takeAnswer()
{
    for (std::size_t i = 0; i < m_requests.size(); ++i) {
        const std::size_t at = (m_turn + i) % m_requests.size();
        const RequestPtr request = m_requests[at];
        if (!request->answer) {
            continue;
        }
        const bson::BSONObj message = request->answer->next();
        m_turn = at + 1;
        if (request->answer->isDone()) {
            answerDone(*request, request->answer->outcome());
            forget(request);
            m_turn = at;
        }
        startRequests();
        return message;
    }
    return {};
}

void RequestScheduler::answerDone(const Request& request, EErrorCode outcome)
{
    m_context.metrics.requestDone(request.kind, outcome, m_context.now() - request.arrived);
}

void RequestScheduler::dispose(std::vector<nvservice::IDataPtr> records)
{
    if (records.size() > ManyRecords) {
        m_context.requests.post([held = std::make_shared<std::vector<nvservice::IDataPtr>>(std::move(records))] {},
                                [] {});
    }
}

} // namespace service::daemon
