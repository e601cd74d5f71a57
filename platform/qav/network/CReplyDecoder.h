// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/ITransport.h>

#include "platform/wire/Messages.h"

#include <boost/asio/thread_pool.hpp>

#include <cstddef>
#include <cstdint>
#include <map>

namespace QAV
{

/// Makes records of the chunks of replies on a thread of its own, while the next chunks are still under way. Operations
/// may be called from any thread; those of one reply take effect in the order of the calls.
class CReplyDecoder
{
public:
    /// @param maxDocuments  of one reply, see NetworkServer.
    explicit CReplyDecoder(std::size_t maxDocuments);
    /// Waits for what is being decoded; replies that have not ended are dropped without a call.
    ~CReplyDecoder();
    CReplyDecoder(const CReplyDecoder&) = delete;
    CReplyDecoder& operator=(const CReplyDecoder&) = delete;

    void begin(std::int64_t id, std::int32_t totalCount);
    void add(wire::ReplyChunk chunk);
    /// Calls the handler on the decoder's thread with what has come together. Records that can't be read, or that are
    /// fewer or more than the end says, make the reply an error.
    void end(wire::ReplyEnd end, ITransport::ReplyHandler handler);
    /// Forgets a reply that has begun and will not end.
    void abandon(std::int64_t id);

private:
    void finish(const wire::ReplyEnd& end, const ITransport::ReplyHandler& handler);

    struct Begun {
        ITransport::Reply reply;
        std::size_t documents = 0;
    };

    void addRecords(const wire::ReplyChunk& chunk);

    const std::size_t m_maxDocuments;
    std::map<std::int64_t, Begun> m_replies; ///< on the decoder's thread only
    boost::asio::thread_pool m_worker{1};
};

} // namespace QAV
