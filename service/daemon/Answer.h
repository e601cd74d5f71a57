// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/wire/ReplyEncoder.h"
#include "service/engine/DataEngine.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace service::daemon
{

/// The answer to one request on its way to the client. Messages are encoded one by one when the network has room for
/// them. Sent records are freed.
class Answer
{
public:
    /// @param bytes  the approximate size of the records on the network
    Answer(std::int64_t id, service::Reply reply, std::size_t bytes);

    /// The next message. Must not be called after `isDone`.
    bson::BSONObj next();
    bool isDone() const { return m_isDone; }
    /// Makes the next message the last one, with this error. Returns the records that were not sent.
    std::vector<nvservice::IDataPtr> cancel(utils::NVError error);
    /// The approximate size of the records that are not encoded yet.
    std::size_t heldBytes() const;
    /// The approximate size of the encoded records.
    std::size_t sentBytes() const { return m_next * m_recordBytes; }
    /// The outcome of the request; final after `isDone`.
    utils::EErrorCode outcome() const { return m_reply.error.code(); }

private:
    std::size_t heldRecords() const { return m_reply.records.size() - m_next; }
    bson::BSONObj nextChunk();
    bson::BSONObj end();

    std::int64_t m_id;
    service::Reply m_reply;
    std::size_t m_recordBytes; ///< approximate size of one record
    std::size_t m_next = 0;    ///< the record to encode next
    wire::ReplyEncoder m_encoder;
    bool m_hasBegun = false;
    bool m_isDone = false;
};

} // namespace service::daemon
