// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "network/CReplyDecoder.h"
#include "network/CRequestBook.h"

namespace QAV
{

/// Checks the order and the size of the messages that replies consist of, and passes them to the decoder. A reply to a
/// request that was cancelled is ignored. Each function returns the violation of the protocol, if it is one.
class CReplyIntake
{
public:
    /// @param maxBytes  of all replies that are not complete
    CReplyIntake(CRequestBook& book, CReplyDecoder& decoder, std::size_t maxBytes)
        : m_book(book), m_decoder(decoder), m_maxBytes(maxBytes)
    {
    }

    utils::NVError take(const wire::ReplyBegin& message);
    utils::NVError take(wire::ReplyChunk& message);
    /// The request has been answered afterwards.
    utils::NVError take(wire::ReplyEnd& message);

private:
    CRequestBook& m_book;
    CReplyDecoder& m_decoder;
    const std::size_t m_maxBytes;
};

} // namespace QAV
