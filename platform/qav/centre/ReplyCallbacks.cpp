// SPDX-License-Identifier: Apache-2.0
#include "centre/ReplyCallbacks.h"

#include <QLoggingCategory>

#include <exception>

namespace QAV
{

namespace
{

Q_LOGGING_CATEGORY(lcClient, "qav.client")

} // namespace

void callLogged(const std::function<void()>& call)
{
    try {
        call();
    } catch (const std::exception& e) {
        qCWarning(lcClient, "A callback threw: %s", e.what());
    } catch (...) {
        qCWarning(lcClient, "A callback threw something that is not an exception");
    }
}

PendingRequest::Done answerTo(const QueryCallback& callback)
{
    return [callback](const ITransport::Reply& reply, bool) {
        if (callback) {
            callLogged([&] { callback(reply.error, reply.records, reply.totalCount, reply.document); });
        }
    };
}

PendingRequest::Done answerTo(const OperateCallback& callback)
{
    return [callback](const ITransport::Reply& reply, bool) {
        if (callback) {
            callLogged([&] { callback(reply.error, reply.document); });
        }
    };
}

PendingRequest::Done answerTo(const LogInCallback& callback)
{
    return [callback](const ITransport::Reply& reply, bool) {
        boost::shared_ptr<nvservice::CUserInfo> user;
        if (!reply.records.empty()) {
            user = boost::dynamic_pointer_cast<nvservice::CUserInfo>(reply.records.front());
        }
        if (callback) {
            callLogged([&] { callback(reply.error, user); });
        }
    };
}

} // namespace QAV
