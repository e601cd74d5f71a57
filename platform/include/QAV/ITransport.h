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

/// The way to one server: inside the process or over the network. Nobody above asks which.
///
/// Threads: every operation may be called from any thread and never blocks; a handler may be called from any thread,
/// also before the operation has returned. An operation may be called from several threads at once.
///
/// Answers: a transport is expected to call each handler once. The client centre does not rely on that: a handler that
/// is called twice, late, never, or an operation that throws, still gives exactly one answer to whoever asked. The
/// centre alone keeps deadlines; it cancels the requests that run out. A transport keeps none.
///
/// Life: the destructor waits for nothing but its own threads. Handlers may be called until it returns; those that are
/// left are dropped without a call.
class ITransport
{
public:
    /// What a server answers to a query or an operation.
    struct Reply {
        utils::NVError error;                     ///< success unless the server or the way to it failed
        std::vector<nvservice::IDataPtr> records; ///< owned by the receiver: no other thread keeps a pointer into them
        int totalCount = 0;                       ///< how many records the server holds for the query
        bson::BSONObj document;                   ///< extra document; of an operation: its result, empty on success
    };

    using LogInHandler = std::function<void(const utils::NVError&, boost::shared_ptr<nvservice::CUserInfo>)>;
    using ReplyHandler = std::function<void(Reply)>;
    using StateHandler = std::function<void(EConnectionState)>;
    /// Names a request to `cancel`. A transport gives none twice.
    using RequestId = std::int64_t;

    virtual ~ITransport() = default;

    /// Makes `user` the one in whose name later requests are carried out. The handler gets the user's own record, or an
    /// error and no record.
    virtual RequestId logIn(const std::string& user, const std::string& password, LogInHandler handler) = 0;
    virtual RequestId query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler) = 0;
    /// The request's record belongs to the transport; nobody changes it any more. Its operation id is never empty.
    virtual RequestId operate(const nvservice::COperateDataReq& request, ReplyHandler handler) = 0;
    /// Nobody waits for the answer any more. From any thread; calls no handler and never waits. An id that is unknown,
    /// answered or cancelled has no effect.
    ///
    /// The handler may still be called once, by an answer that is already on its way; otherwise it is dropped without a
    /// call. What the server has begun may go on and take effect; what it has not is not carried out.
    virtual void cancel(RequestId request) noexcept = 0;

    virtual EConnectionState state() const = 0;
    /// Why it is not connected: Chinese, for the user. Empty while it is, and when there is nothing to tell.
    virtual std::string stateReason() const { return {}; }
    /// Replaces the handler that hears of every change of `state()` or `stateReason()`; an empty one ends it. A change
    /// that happens meanwhile may still reach the old one.
    virtual void setStateHandler(StateHandler handler) = 0;
};

} // namespace QAV
