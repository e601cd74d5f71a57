// SPDX-License-Identifier: Apache-2.0
#include "network/CReplyDecoder.h"

#include <utils/Translation.h>

#include <boost/asio/post.hpp>

#include <utility>

namespace QAV
{

CReplyDecoder::CReplyDecoder(std::size_t maxDocuments) : m_maxDocuments(maxDocuments) {}

CReplyDecoder::~CReplyDecoder() = default;

void CReplyDecoder::begin(std::int64_t id, std::int32_t totalCount)
{
    boost::asio::post(m_worker, [this, id, totalCount] { m_replies[id].reply.totalCount = totalCount; });
}

void CReplyDecoder::add(wire::ReplyChunk chunk)
{
    boost::asio::post(m_worker, [this, chunk = std::move(chunk)] { addRecords(chunk); });
}

void CReplyDecoder::addRecords(const wire::ReplyChunk& chunk)
{
    Begun& begun = m_replies[chunk.id];
    ITransport::Reply& reply = begun.reply;
    if (!reply.error.isSuccess()) {
        return;
    }
    reply.error = chunk.records(reply.records, &begun.decoder);
    if (reply.error.isSuccess() && begun.decoder.documents() > m_maxDocuments) {
        reply.error = {utils::EErrorCode::ResourceExhausted,
                       utils::filled(utils::text("QAV", "应答过大，已放弃接收：最多 %1 个文档"), m_maxDocuments)};
    }
    if (!reply.error.isSuccess()) {
        reply.records = {};
    }
}

void CReplyDecoder::end(wire::ReplyEnd end, ITransport::ReplyHandler handler)
{
    boost::asio::post(m_worker, [this, end = std::move(end), handler = std::move(handler)] { finish(end, handler); });
}

void CReplyDecoder::abandon(std::int64_t id)
{
    boost::asio::post(m_worker, [this, id] { m_replies.erase(id); });
}

void CReplyDecoder::finish(const wire::ReplyEnd& end, const ITransport::ReplyHandler& handler)
{
    ITransport::Reply reply;
    const auto begun = m_replies.find(end.id);
    if (begun != m_replies.end()) {
        reply = std::move(begun->second.reply);
        m_replies.erase(begun);
    }
    if (!end.error.isSuccess()) {
        reply.error = end.error;
    } else if (reply.error.isSuccess() && static_cast<std::int64_t>(reply.records.size()) != end.recordCount) {
        reply.error = {utils::EErrorCode::Malformed,
                       utils::filled(utils::text("QAV", "应答不完整：应有 %1 条记录，收到 %2 条"), end.recordCount,
                                     reply.records.size())};
    }
    if (!reply.error.isSuccess()) {
        reply.records.clear();
        reply.totalCount = 0;
    }
    reply.document = end.document;
    handler(std::move(reply));
}

} // namespace QAV
