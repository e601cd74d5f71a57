// SPDX-License-Identifier: Apache-2.0
#include "centre/ReplyCallbacks.h"

#include <QLoggingCategory>

#include <exception>
#include <utility>

namespace QAV
{

namespace
{

Q_LOGGING_CATEGORY(lcClient, "qav.client")

template <typename Callback, typename... Args>
void guarded(const Callback& callback, Args&&... args)
{
    if (!callback) {
        return;
    }
    try {
        callback(std::forward<Args>(args)...);
    } catch (const std::exception& e) {
        qCWarning(lcClient, "A reply callback threw: %s", e.what());
    } catch (...) {
        qCWarning(lcClient, "A reply callback threw something that is not an exception");
    }
}

} // namespace

PendingRequest::Done answerTo(const QueryCallback& callback)
{
    return [callback](const ITransport::Reply& reply, bool) {
        guarded(callback, reply.error, reply.records, reply.totalCount, reply.document);
    };
}

PendingRequest::Done answerTo(const OperateCallback& callback)
{
    return [callback](const ITransport::Reply& reply, bool) { guarded(callback, reply.error, reply.document); };
}

PendingRequest::Done answerTo(const LogInCallback& callback)
{
    return [callback](const ITransport::Reply& reply, bool) {
        boost::shared_ptr<nvservice::CUserInfo> user;
        if (!reply.records.empty()) {
            user = boost::dynamic_pointer_cast<nvservice::CUserInfo>(reply.records.front());
        }
        guarded(callback, reply.error, user);
    };
}

} // namespace QAV
