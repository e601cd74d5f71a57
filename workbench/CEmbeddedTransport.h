// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/ITransport.h>

#include <boost/asio/thread_pool.hpp>
#include <boost/shared_ptr.hpp>

#include <mutex>
#include <set>

namespace service
{
class DataEngine;
class Session;
} // namespace service

namespace workbench
{

/// A server inside this process. A data engine carries out the requests one after another on a separate thread. It is
/// always connected. A request that has not begun is not carried out if the transport is destroyed; a query or a log-in
/// that is cancelled isn't either.
class CEmbeddedTransport : public QAV::ITransport
{
public:
    explicit CEmbeddedTransport(boost::shared_ptr<service::DataEngine> engine);
    CEmbeddedTransport(const CEmbeddedTransport&) = delete;
    CEmbeddedTransport& operator=(const CEmbeddedTransport&) = delete;

    RequestId logIn(const std::string& user, const std::string& password, LogInHandler handler) override;
    RequestId query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler) override;
    RequestId operate(const nvservice::COperateDataReq& request, ReplyHandler handler) override;
    void cancel(RequestId request) noexcept override;
    QAV::EConnectionState state() const override;
    void setStateHandler(StateHandler handler) override;

private:
    template <typename Work>
    RequestId post(Work work);
    /// Begins a request; false if it was cancelled.
    bool begin(RequestId request);

    boost::shared_ptr<service::DataEngine> m_engine;
    boost::shared_ptr<const service::Session> m_session; ///< on the worker only
    std::mutex m_mutex;
    RequestId m_lastRequest = 0;
    std::set<RequestId> m_waiting; ///< neither begun nor cancelled
    boost::asio::thread_pool m_worker{1};
};

} // namespace workbench
