// SPDX-License-Identifier: Apache-2.0
#include "network/CRequestBook.h"

#include <utils/Translation.h>

#include <algorithm>
#include <utility>

namespace QAV
{

void NetworkRequest::fail(const utils::NVError& error) const
{
    ITransport::Reply reply;
    reply.error =
        isInDoubt()
            ? utils::NVError(error.code(), utils::filled(utils::text("QAV", "%1，未知是否已执行"), error.errorMsg()))
            : error;
    handler(std::move(reply));
}

void CRequestBook::add(NetworkRequestPtr request)
{
    m_waiting.push_back(std::move(request));
}

NetworkRequest* CRequestBook::next() const
{
    return m_waiting.empty() ? nullptr : m_waiting.front().get();
}

NetworkRequestPtr CRequestBook::takeNext()
{
    NetworkRequestPtr request = std::move(m_waiting.front());
    m_waiting.pop_front();
    return request;
}

void CRequestBook::markNextSent(std::int64_t id)
{
    NetworkRequestPtr request = takeNext();
    request->wasSent = true;
    request->replyHasBegun = false;
    request->replyBytes = 0;
    m_sent.emplace(id, std::move(request));
}

std::size_t CRequestBook::replyBytes() const
{
    std::size_t bytes = 0;
    for (const auto& [id, request] : m_sent) {
        bytes += request->replyBytes;
    }
    return bytes;
}

NetworkRequest* CRequestBook::sent(std::int64_t id) const
{
    const auto found = m_sent.find(id);
    return found == m_sent.end() ? nullptr : found->second.get();
}

NetworkRequestPtr CRequestBook::takeSent(std::int64_t id)
{
    const auto found = m_sent.find(id);
    if (found == m_sent.end()) {
        return nullptr;
    }
    NetworkRequestPtr request = std::move(found->second);
    m_sent.erase(found);
    return request;
}

std::vector<std::int64_t> CRequestBook::requeueSent()
{
    std::vector<std::int64_t> ids;
    for (auto it = m_sent.rbegin(); it != m_sent.rend(); ++it) {
        ids.push_back(it->first);
        m_waiting.push_front(std::move(it->second));
    }
    m_sent.clear();
    return ids;
}

std::vector<NetworkRequestPtr> CRequestBook::takeWaiting(const std::function<bool(const NetworkRequest&)>& isChosen)
{
    std::vector<NetworkRequestPtr> chosen;
    std::deque<NetworkRequestPtr> others;
    for (NetworkRequestPtr& request : m_waiting) {
        if (isChosen(*request)) {
            chosen.push_back(std::move(request));
        } else {
            others.push_back(std::move(request));
        }
    }
    m_waiting.swap(others);
    return chosen;
}

std::int64_t CRequestBook::remove(ITransport::RequestId request)
{
    const auto sent = std::find_if(m_sent.begin(), m_sent.end(),
                                   [request](const auto& entry) { return entry.second->id == request; });
    if (sent != m_sent.end()) {
        const std::int64_t id = sent->first;
        m_sent.erase(sent);
        return id;
    }
    takeWaiting([request](const NetworkRequest& candidate) { return candidate.id == request; });
    return 0;
}

} // namespace QAV
