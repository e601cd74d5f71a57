#pragma once

#include "platform/wire/ReplyEncoder.h"
#include "service/engine/DataEngine.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace service::daemon
{

/// The answer to one request on its way to the client: messages are made one by one, when the network has room for
/// them. Records that are sent are freed.
class Answer
{
public:
    /// @param bytes  what the records will be on the network, about.
    Answer(std::int64_t id, service::Reply reply, std::size_t bytes);

    /// The next message; there is one until `isDone`.
    bson::BSONObj next();
    bool isDone() const { return m_isDone; }
    /// The next message is the last one, with this error. Gives back the records that were not sent.
    std::vector<nvservice::IDataPtr> cancel(utils::NVError error);
    /// What the records that are not encoded yet will be on the network, about.
    std::size_t heldBytes() const;
    /// The same of those that are.
    std::size_t sentBytes() const { return m_next * m_recordBytes; }
    /// How the request ends; settled once `isDone`.
    utils::EErrorCode outcome() const { return m_reply.error.code(); }

private:
    std::size_t heldRecords() const { return m_reply.records.size() - m_next; }
    bson::BSONObj nextChunk();
    bson::BSONObj end();

    std::int64_t m_id;
    service::Reply m_reply;
    std::size_t m_recordBytes; ///< of one record, about
    std::size_t m_next = 0;    ///< the record that is encoded next
    wire::ReplyEncoder m_encoder;
    bool m_hasBegun = false;
    bool m_isDone = false;
};

} // namespace service::daemon
