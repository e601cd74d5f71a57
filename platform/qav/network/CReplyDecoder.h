// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/ITransport.h>

#include "platform/wire/Messages.h"

#include <nvservice/Codec.h>

#include <boost/asio/thread_pool.hpp>

#include <cstddef>
#include <cstdint>
#include <map>

namespace QAV
{

/// Decodes the chunks of replies on its own thread, while later chunks arrive. Thread-safe; calls for one reply take
/// effect in their order.
class CReplyDecoder
{
public:
    /// @param maxDocuments  the limit for one reply, see NetworkServer
    explicit CReplyDecoder(std::size_t maxDocuments);
    /// Waits for the chunk that is being decoded. Handlers of unfinished replies are not called.
    ~CReplyDecoder();
    CReplyDecoder(const CReplyDecoder&) = delete;
    CReplyDecoder& operator=(const CReplyDecoder&) = delete;

    void begin(std::int64_t id, std::int32_t totalCount);
    void add(wire::ReplyChunk chunk);
    /// Calls the handler with the decoded reply, on the decoder's thread. The reply is an error if a record cannot be
    /// read or if the number of records differs from that in `end`.
    void end(wire::ReplyEnd end, ITransport::ReplyHandler handler);
    /// Discards an unfinished reply.
    void abandon(std::int64_t id);

private:
    void finish(const wire::ReplyEnd& end, const ITransport::ReplyHandler& handler);

    struct Begun {
        ITransport::Reply reply;
        nvservice::CRecordDecoder decoder;
    };

    void addRecords(const wire::ReplyChunk& chunk);

    const std::size_t m_maxDocuments;
    std::map<std::int64_t, Begun> m_replies; ///< on the decoder's thread only
    boost::asio::thread_pool m_worker{1};
};

} // namespace QAV
