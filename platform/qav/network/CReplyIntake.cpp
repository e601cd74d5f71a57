// SPDX-License-Identifier: Apache-2.0
#include "network/CReplyIntake.h"

#include <utils/Translation.h>

#include <utility>

namespace QAV
{

namespace
{

utils::NVError outOfOrder()
{
    return {utils::EErrorCode::Malformed, utils::text("QAV", "应答次序错误")};
}

} // namespace

utils::NVError CReplyIntake::take(const wire::ReplyBegin& message)
{
    NetworkRequest* const request = m_book.sent(message.id);
    if (!request) {
        return {};
    }
    if (request->isLogIn() || request->isOperation() || request->replyHasBegun) {
        return outOfOrder();
    }
    request->replyHasBegun = true;
    m_decoder.begin(message.id, message.totalCount);
    return {};
}

utils::NVError CReplyIntake::take(wire::ReplyChunk& message)
{
    NetworkRequest* const request = m_book.sent(message.id);
    if (!request) {
        return {};
    }
    if (!request->replyHasBegun) {
        return outOfOrder();
    }
    request->replyBytes += message.frame.size();
    if (m_book.replyBytes() > m_maxBytes) {
        return {utils::EErrorCode::ResourceExhausted,
                utils::filled(utils::text("QAV", "应答过大，已放弃接收：同时最多 %1 字节"), m_maxBytes)};
    }
    m_decoder.add(std::move(message));
    return {};
}

utils::NVError CReplyIntake::take(wire::ReplyEnd& message)
{
    const NetworkRequest* const known = m_book.sent(message.id);
    if (!known) {
        return {};
    }
    if (known->isLogIn() || (message.recordCount != 0 && message.error.isSuccess() && !known->replyHasBegun)) {
        return outOfOrder();
    }
    const NetworkRequestPtr request = m_book.takeSent(message.id);
    m_decoder.end(std::move(message), std::move(request->handler));
    return {};
}

} // namespace QAV
