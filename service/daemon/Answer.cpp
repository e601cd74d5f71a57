// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Answer.h"

#include "platform/wire/MessageCodec.h"

#include <algorithm>
#include <utility>

namespace service::daemon
{

Answer::Answer(std::int64_t id, service::Reply reply, std::size_t bytes)
    : m_id(id), m_reply(std::move(reply)), m_recordBytes(bytes / std::max<std::size_t>(m_reply.records.size(), 1)),
      m_encoder(id)
{
    if (!m_reply.error.isSuccess()) {
        m_reply.records.clear();
    }
    m_hasBegun = m_reply.records.empty();
}

std::size_t Answer::heldBytes() const
{
    return heldRecords() * m_recordBytes;
}

std::vector<nvservice::IDataPtr> Answer::cancel(utils::NVError error)
{
    m_reply.error = std::move(error);
    m_reply.document = bson::BSONObj();
    m_next = 0;
    m_hasBegun = true;
    return std::exchange(m_reply.records, {});
}

bson::BSONObj Answer::next()
{
    if (!m_hasBegun) {
        m_hasBegun = true;
        return wire::encode(wire::ReplyBegin{m_id, m_reply.totalCount});
    }
    const bson::BSONObj chunk = nextChunk();
    return chunk.isEmpty() ? end() : chunk;
}

bson::BSONObj Answer::nextChunk()
{
    while (heldRecords() > 0 && !m_encoder.isFull()) {
        const nvservice::IDataPtr record = std::move(m_reply.records[m_next]);
        ++m_next;
        const utils::NVError error = m_encoder.add(*record);
        if (!error.isSuccess()) {
            m_reply.error = error;
            m_reply.records.clear();
            m_next = 0;
        }
    }
    return m_encoder.isEmpty() ? bson::BSONObj() : m_encoder.take();
}

bson::BSONObj Answer::end()
{
    m_isDone = true;
    return wire::encode(wire::ReplyEnd{m_id, m_reply.error, m_encoder.recordCount(), m_reply.document, m_reply.newId});
}

} // namespace service::daemon
