#include "platform/wire/MessageCodec.h"
#include "service/daemon/ConversationRequest.h"
#include "service/engine/Requests.h"

#include <nvservice/Codec.h>

#include <algorithm>
#include <utility>

namespace service::daemon
{

namespace
{

using utils::EErrorCode;
using utils::NVError;

// Queries of one client that are at the database at the same time; further ones wait, so that others have their turn.
constexpr int MaxRunningQueries = 4;
// To free more records than that takes long enough for a thread that has no client to serve.
constexpr std::size_t ManyRecords = 1000;

constexpr std::size_t Mebibyte = 1024 * 1024;
// The query of an answer that is not longer begins whatever others hold.
constexpr std::size_t ShortAnswerBytes = 64 * 1024;

/// What the records will be on the network, by some of them.
std::size_t encodedBytes(const std::vector<nvservice::IDataPtr>& records)
{
    constexpr std::size_t Samples = 16;
    const std::size_t step = records.size() / Samples + 1;
    std::size_t bytes = 0;
    std::size_t count = 0;
    for (std::size_t i = 0; i < records.size(); i += step, ++count) {
        bytes += static_cast<std::size_t>(nvservice::encodeRecord(*records[i]).objsize());
    }
    return count == 0 ? 0 : bytes * records.size() / count;
}

/// Few enough names for the metrics, whatever a client sends.
std::string kindOf(const char* verb, std::int32_t dataType)
{
    return verb + (isKnownDataType(dataType) ? std::to_string(dataType) : "other");
}

} // namespace

utils::NVError Conversation::Request::Job::read()
{
    auto* frame = std::get_if<wire::Frame>(&request);
    if (!frame) {
        return {};
    }
    wire::Message message;
    NVError error = wire::decode(std::move(*frame), wire::LimitsAfterLogIn, message);
    if (auto* query = std::get_if<wire::Query>(&message); error.isSuccess() && query) {
        request = std::move(query->request);
    } else if (auto* operate = std::get_if<wire::Operate>(&message); error.isSuccess() && operate) {
        request = std::move(operate->request);
    }
    return error;
}

void Conversation::Request::Job::carryOut(service::DataEngine& engine, const service::SessionPtr& session)
{
    reply.error = read();
    if (auto* query = std::get_if<nvservice::CKolmQueryDataReq>(&request)) {
        if (!isUnwanted) {
            reply = engine.query(session, *query);
        }
        if (isUnwanted) {
            reply = service::Reply();
        }
        replyBytes = encodedBytes(reply.records);
    } else if (auto* operation = std::get_if<nvservice::COperateDataReq>(&request)) {
        reply = engine.operate(session, *operation);
        operation->data.reset();
    }
}

void Conversation::handle(wire::Query& query)
{
    const auto request = std::make_shared<Request>();
    request->id = query.id;
    request->kind = kindOf("query_", query.request.dataType);
    request->answerKind = query.request.queryKey.empty() ? request->kind : request->kind + "_key";
    request->job->request = std::move(query.request);
    addRequest(request);
}

void Conversation::handle(wire::Operate& operate)
{
    const auto request = std::make_shared<Request>();
    request->id = operate.id;
    request->isOperation = true;
    request->kind = kindOf("operate_", operate.request.dataType);
    request->job->request = std::move(operate.request);
    addRequest(request);
}

void Conversation::addRequest(RequestPtr request)
{
    if (isUnderWay(request->id)) {
        return refuseMessage({EErrorCode::InvalidValue, "请求编号重复"});
    }
    if (m_isClosing) {
        return refuse(request->id, {EErrorCode::NotConnected, "数据服务正在停止"});
    }
    if (m_stage != EStage::LoggedIn) {
        const NVError error(EErrorCode::NotLoggedIn, "您尚未登录或登录已失效，请重新登录");
        noteRefused(request->kind, error);
        return refuse(request->id, error);
    }
    request->arrived = m_context.now();
    request->session = m_session;
    request->bytes = m_frameBytes;
    request->room = std::move(m_frameRoom);
    m_requestBytes += request->bytes;
    m_requests.push_back(std::move(request));
    m_context.metrics.requestsUnderWay(1);
    startRequests();
}

bool Conversation::isUnderWay(std::int64_t id) const
{
    return std::any_of(m_requests.begin(), m_requests.end(),
                       [&](const RequestPtr& request) { return request->id == id; });
}

void Conversation::setHeldBytes(std::size_t bytes)
{
    m_context.held.change(std::exchange(m_heldBytes, bytes), bytes);
}

bool Conversation::mayHold(std::size_t bytes) const
{
    return m_heldBytes < Mebibyte * static_cast<std::size_t>(m_context.limits.heldMebibytesPerConnection) &&
           (!m_context.held.isFull() || bytes <= ShortAnswerBytes);
}

void Conversation::startRequests()
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

void Conversation::start(const RequestPtr& request)
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

void Conversation::finish(const RequestPtr& request)
{
    if (const auto* query = std::get_if<nvservice::CKolmQueryDataReq>(&request->job->request)) {
        request->kind = kindOf("query_", query->dataType);
        if (!request->job->isUnwanted) {
            m_context.held.learn(request->answerKind, request->job->replyBytes);
        }
    } else if (const auto* operation = std::get_if<nvservice::COperateDataReq>(&request->job->request)) {
        request->kind = kindOf("operate_", operation->dataType);
        m_context.log.info("operation", {{"peer", m_peer},
                                         {"user", request->session->logIn()},
                                         {"data_type", operation->dataType},
                                         {"operation", static_cast<int>(operation->operation)},
                                         {"operation_id", operation->operationId},
                                         {"outcome", nameOf(request->job->reply.error.code())}});
    } else {
        logRefused(request->kind, request->job->reply.error);
    }
    if (request->isAnswered) {
        forget(request);
    } else {
        answer(*request);
    }
    startRequests();
    readInput();
    m_changed();
}

void Conversation::releaseBytes(Request& request)
{
    m_requestBytes -= std::exchange(request.bytes, 0);
    request.room = {};
}

void Conversation::forget(const RequestPtr& request)
{
    releaseBytes(*request);
    m_requests.erase(std::find(m_requests.begin(), m_requests.end(), request));
    m_context.metrics.requestsUnderWay(-1);
}

void Conversation::answer(Request& request)
{
    releaseBytes(request);
    request.expectedBytes = 0;
    request.job->request = wire::Frame();
    request.state = Request::EState::Answering;
    request.answering = m_context.now();
    request.answer = std::make_unique<Answer>(request.id, std::move(request.job->reply), request.job->replyBytes);
}

std::chrono::duration<double> Conversation::lateness() const
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

void Conversation::handle(const wire::Cancel& cancel)
{
    const auto found = std::find_if(m_requests.begin(), m_requests.end(),
                                    [&](const RequestPtr& request) { return request->id == cancel.id; });
    if (found == m_requests.end() || (*found)->isAnswered) {
        return; // its last message is on the way already
    }
    const RequestPtr request = *found;
    if (request->isOperation && request->state == Request::EState::Running) {
        return; // it is carried out, and the client is told how
    }
    const NVError cancelled(EErrorCode::Cancelled, "请求已取消");
    switch (request->state) {
    case Request::EState::Waiting:
        answer(*request);
        request->answer->cancel(cancelled);
        break;
    case Request::EState::Running:
        request->job->isUnwanted = true;
        request->isAnswered = true;
        refuse(request->id, cancelled);
        answerDone(*request, EErrorCode::Cancelled);
        break;
    case Request::EState::Answering:
        dispose(request->answer->cancel(cancelled));
        break;
    }
    startRequests();
}

bson::BSONObj Conversation::takeMessage()
{
    bson::BSONObj message;
    if (!m_messages.empty()) {
        message = m_messages.front();
        m_messages.pop_front();
        m_messageBytes -= static_cast<std::size_t>(message.objsize());
    } else if (!m_isEnding) {
        message = takeAnswer();
    }
    if (!message.isEmpty()) {
        m_lastSent = m_context.now();
        readInput();
    }
    return message;
}

bson::BSONObj Conversation::takeAnswer()
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

void Conversation::answerDone(const Request& request, EErrorCode outcome)
{
    m_context.metrics.requestDone(request.kind, outcome, m_context.now() - request.arrived);
}

void Conversation::dispose(std::vector<nvservice::IDataPtr> records)
{
    if (records.size() > ManyRecords) {
        m_context.requests.post([held = std::make_shared<std::vector<nvservice::IDataPtr>>(std::move(records))] {},
                                [] {});
    }
}

} // namespace service::daemon
