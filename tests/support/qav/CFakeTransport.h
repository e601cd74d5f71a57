// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/IChangeSource.h>
#include <QAV/ITransport.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

namespace support
{

/// A transport whose answers the test gives: at once, later, twice or never. Without a behaviour of its own (`onQuery`
/// and the like) a request waits until the test takes it. All operations are thread-safe; the behaviours are to be set
/// before the first request.
class CFakeTransport : public QAV::ITransport, public QAV::IChangeSource
{
public:
    using QueryBehaviour = std::function<void(const nvservice::CKolmQueryDataReq&, ReplyHandler)>;
    using OperateBehaviour = std::function<void(const nvservice::COperateDataReq&, ReplyHandler)>;
    using LogInBehaviour = std::function<void(const std::string& user, const std::string& password, LogInHandler)>;

    struct Query {
        nvservice::CKolmQueryDataReq request;
        ReplyHandler handler;
        RequestId id = 0;
    };
    struct Operation {
        nvservice::COperateDataReq request;
        ReplyHandler handler;
        RequestId id = 0;
    };

    QueryBehaviour onQuery;
    OperateBehaviour onOperate;
    LogInBehaviour onLogIn;

    /// The oldest request that nobody has taken; waits for one.
    Query takeQuery();
    Operation takeOperation();
    /// How many requests wait to be taken.
    std::size_t waitingQueries() const;
    /// The requests that were cancelled, in the order in which that happened.
    std::vector<RequestId> cancelled() const;
    void setState(QAV::EConnectionState state, const std::string& reason = {});
    /// Whether anybody wants to hear of changes.
    bool isListenedTo() const;
    void tellChanges(Changes changes);

    RequestId logIn(const std::string& user, const std::string& password, LogInHandler handler) override;
    RequestId query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler) override;
    RequestId operate(const nvservice::COperateDataReq& request, ReplyHandler handler) override;
    void cancel(RequestId request) noexcept override;
    QAV::EConnectionState state() const override;
    std::string stateReason() const override;
    void setStateHandler(StateHandler handler) override;
    void setChangeHandler(ChangeHandler handler) override;

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_arrived;
    std::deque<Query> m_queries;
    std::deque<Operation> m_operations;
    std::vector<RequestId> m_cancelled;
    std::atomic<RequestId> m_lastRequest{0};
    QAV::EConnectionState m_state = QAV::EConnectionState::Connected;
    std::string m_reason;
    StateHandler m_stateHandler;
    ChangeHandler m_changeHandler;
};

/// A successful reply with these records.
QAV::ITransport::Reply replyWith(std::vector<nvservice::IDataPtr> records);
QAV::ITransport::Reply replyWithError(utils::EErrorCode code, const std::string& text);

} // namespace support
