// SPDX-License-Identifier: Apache-2.0
#include "centre/CRequestLedger.h"

#include <nvservice/SystemTag.h>
#include <utils/Translation.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace QAV
{

namespace
{

// Prevents an overflow of time points.
constexpr std::chrono::milliseconds LongestDeadline = std::chrono::hours(24 * 365);

std::string durationText(std::chrono::milliseconds duration)
{
    const auto count = duration.count();
    return count % 1000 == 0 ? utils::filled(utils::text("QAV", "%1 秒"), count / 1000)
                             : utils::filled(utils::text("QAV", "%1 毫秒"), count);
}

} // namespace

void CRequestLedger::add(const RequestPtr& request)
{
    const auto wait = std::clamp(request->deadline, std::chrono::milliseconds(1), LongestDeadline);
    request->place = m_waiting.emplace(Clock::now() + wait, request);
}

void CRequestLedger::sent(const RequestPtr& request, ITransport::RequestId id)
{
    request->id = id;
    if (request->isGivenUp) {
        m_cancel(*request->server, id);
    }
}

void CRequestLedger::answer(const RequestPtr& request, ITransport::Reply reply)
{
    if (!request->done) {
        return;
    }
    reply.document = reply.document.getOwned();
    auto& records = reply.records;
    records.erase(std::remove(records.begin(), records.end(), nullptr), records.end());
    for (const nvservice::IDataPtr& record : records) {
        nvservice::addMissingSystemTags(*record, request->server->systemTag);
    }
    finish(request, std::move(reply), false);
}

void CRequestLedger::answerWithError(const RequestPtr& request, utils::EErrorCode code, const std::string& text)
{
    if (!request->done) {
        return;
    }
    ITransport::Reply reply;
    reply.error = utils::NVError(code, text);
    finish(request, std::move(reply), true);
}

void CRequestLedger::drop(const std::shared_ptr<ServerEntry>& server)
{
    std::vector<RequestPtr> concerned;
    for (const auto& [deadline, request] : m_waiting) {
        if (request->server == server) {
            concerned.push_back(request);
        }
    }
    for (const RequestPtr& request : concerned) {
        answerWithError(request, utils::EErrorCode::Cancelled,
                        utils::filled(request->kind.isOperation
                                          ? utils::text("QAV", "分系统“%1”已断开：请求已取消，未知是否已执行")
                                          : utils::text("QAV", "分系统“%1”已断开：请求已取消"),
                                      request->server->name));
    }
}

void CRequestLedger::cancel(const RequestPtr& request)
{
    giveUp(*request);
    answerWithError(request, utils::EErrorCode::Cancelled,
                    utils::filled(request->kind.isOperation
                                      ? utils::text("QAV", "分系统“%1”的请求已取消，未知是否已执行")
                                      : utils::text("QAV", "分系统“%1”的请求已取消"),
                                  request->server->name));
}

void CRequestLedger::cancelAll()
{
    while (!m_waiting.empty()) {
        cancel(RequestPtr(m_waiting.begin()->second));
    }
}

std::optional<CRequestLedger::Clock::time_point> CRequestLedger::expire(Clock::time_point now)
{
    while (!m_waiting.empty() && m_waiting.begin()->first <= now) {
        const RequestPtr request = m_waiting.begin()->second;
        giveUp(*request);
        answerWithError(request, utils::EErrorCode::DeadlineExceeded,
                        utils::filled(request->kind.isOperation
                                          ? utils::text("QAV", "分系统“%1”未应答：超过 %2，未知是否已执行")
                                          : utils::text("QAV", "分系统“%1”未应答：超过 %2"),
                                      request->server->name, durationText(request->deadline)));
    }
    if (m_waiting.empty()) {
        return std::nullopt;
    }
    return m_waiting.begin()->first;
}

void CRequestLedger::giveUp(PendingRequest& request) const
{
    request.isGivenUp = true;
    if (request.id) {
        m_cancel(*request.server, *request.id);
    }
}

void CRequestLedger::finish(const RequestPtr& request, ITransport::Reply reply, bool namesServer)
{
    if (request->place) {
        m_waiting.erase(*std::exchange(request->place, std::nullopt));
    }
    std::exchange(request->done, nullptr)(std::move(reply), namesServer);
}

} // namespace QAV
