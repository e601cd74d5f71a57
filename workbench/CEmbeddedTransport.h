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

/// A server inside this process: requests are carried out by a data engine, one after the other, on a thread of its
/// own. It is connected as long as it lives. Requests that have not begun when they are cancelled, or when it is
/// destroyed, are not carried out.
class CEmbeddedTransport : public QAV::ITransport
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

private:
    template <typename Work>
    RequestId post(Work work);
    /// Whether a request is to be carried out; it has begun then.
    bool begin(RequestId request);

    boost::shared_ptr<service::DataEngine> m_engine;
    boost::shared_ptr<const service::Session> m_session; ///< on the worker only
    std::mutex m_mutex;
    RequestId m_lastRequest = 0;
    std::set<RequestId> m_waiting; ///< neither begun nor cancelled
    boost::asio::thread_pool m_worker{1};
};

} // namespace workbench
