// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/IChangeSource.h>
#include <QAV/ITransport.h>

#include <boost/asio/thread_pool.hpp>
#include <boost/shared_ptr.hpp>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>

namespace service
{
class DataEngine;
class Session;
class UnreadChanges;
} // namespace service

namespace workbench
{

/// A server inside this process. A data engine carries out the requests one after another on a separate thread, and
/// the consistency check, which may take half a minute, on another one. It is always connected. A request that has not
/// begun is not carried out if the transport is destroyed; a query or a log-in that is cancelled isn't either. Both end
/// a check under way.
class CEmbeddedTransport : public QAV::ITransport, public QAV::IChangeSource
{
public:
    explicit CEmbeddedTransport(boost::shared_ptr<service::DataEngine> engine);
    ~CEmbeddedTransport() override;
    CEmbeddedTransport(const CEmbeddedTransport&) = delete;
    CEmbeddedTransport& operator=(const CEmbeddedTransport&) = delete;

    RequestId logIn(const std::string& user, const std::string& password, LogInHandler handler) override;
    RequestId query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler) override;
    RequestId operate(const nvservice::COperateDataReq& request, ReplyHandler handler) override;
    void cancel(RequestId request) noexcept override;
    QAV::EConnectionState state() const override;
    void setStateHandler(StateHandler handler) override;
    void setChangeHandler(ChangeHandler handler) override;

private:
    using Unwanted = std::shared_ptr<std::atomic<bool>>; ///< set when a request is cancelled; held by the request

    template <typename Work>
    RequestId post(Work work);
    /// On the worker: tells what was committed since the last time.
    void tellChanges();
    void postChanges();

    boost::shared_ptr<service::DataEngine> m_engine;
    boost::shared_ptr<const service::Session> m_session; ///< on the worker only
    std::unique_ptr<service::UnreadChanges> m_unread;    ///< on the worker only; null unless changes are wanted
    std::mutex m_mutex;
    RequestId m_lastRequest = 0;
    std::map<RequestId, std::atomic<bool>*> m_underWay;
    ChangeHandler m_changeHandler;
    std::atomic<bool> m_isChangePosted{false};
    boost::asio::thread_pool m_checker{1}; ///< outlives the worker, which gives it work
    boost::asio::thread_pool m_worker{1};
    std::shared_ptr<void> m_watch; ///< from the first handler on
};

} // namespace workbench
