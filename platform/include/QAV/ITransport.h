// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/EConnectionState.h>
#include <nvservice/Bson.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>
#include <nvservice/CUserInfo.h>
#include <nvservice/IData.h>
#include <utils/NVError.h>

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace QAV
{

/// The connection to one server, inside the process or over the network. Callers need not know which.
///
/// Threads: all functions are thread-safe and never block. A handler may be called from any thread, even before the
/// function has returned.
///
/// Answers: a transport calls each handler once. The client centre does not rely on that: if a handler is called twice,
/// late or never, or if a function throws, the caller still gets exactly one answer. Only the centre keeps deadlines;
/// it cancels overdue requests.
///
/// Lifetime: the destructor waits only for the transport's own threads. Handlers may be called until it returns; the
/// remaining ones are dropped without a call.
class ITransport
{
public:
    /// A server's answer to a query or an operation.
    struct Reply {
        utils::NVError error;                     ///< success unless the server or the connection failed
        std::vector<nvservice::IDataPtr> records; ///< owned by the receiver; no other thread has pointers into them
        int totalCount = 0;                       ///< how many records the server holds for the query
        bson::BSONObj document;                   ///< extra document; of an operation: its result, empty on success
    };

    using LogInHandler = std::function<void(const utils::NVError&, boost::shared_ptr<nvservice::CUserInfo>)>;
    using ReplyHandler = std::function<void(Reply)>;
    using StateHandler = std::function<void(EConnectionState)>;
    /// Identifies a request for `cancel`. A transport never reuses one.
    using RequestId = std::int64_t;

    virtual ~ITransport() = default;

    /// Logs in; later requests are carried out for this user. The handler receives the user's own record, or an error
    /// and no record.
    virtual RequestId logIn(const std::string& user, const std::string& password, LogInHandler handler) = 0;
    virtual RequestId query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler) = 0;
    /// The request's record belongs to the transport and is not changed any more. Its operation id is never empty.
    virtual RequestId operate(const nvservice::COperateDataReq& request, ReplyHandler handler) = 0;
    /// Cancels a request whose answer nobody waits for. Thread-safe; calls no handler and never waits. An id that is
    /// unknown, answered or cancelled has no effect.
    ///
    /// The handler may still be called once by an answer that is already on its way; otherwise it is dropped without a
    /// call. A cancelled operation may take effect all the same.
    virtual void cancel(RequestId request) noexcept = 0;

    virtual EConnectionState state() const = 0;
    /// Why the server is not connected: Chinese, for the user. Empty while it is connected or if the reason is unknown.
    virtual std::string stateReason() const { return {}; }
    /// Replaces the handler for changes of `state()` and `stateReason()`; an empty one removes it. A concurrent change
    /// may still reach the old handler.
    virtual void setStateHandler(StateHandler handler) = 0;
};

} // namespace QAV
