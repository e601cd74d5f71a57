#pragma once

#include <QAV/ITransport.h>

#include <boost/asio/thread_pool.hpp>
#include <boost/shared_ptr.hpp>

namespace service
{
class DataEngine;
class Session;
} // namespace service

namespace workbench
{

/// A server inside this process: requests are carried out by a data engine, one after the other, on a thread of its
/// own. It is connected as long as it lives. Requests that have not begun when it is destroyed are not carried out.
class CEmbeddedTransport : public QAV::ITransport
{
public:
    explicit CEmbeddedTransport(boost::shared_ptr<service::DataEngine> engine);
    ~CEmbeddedTransport() override;
    CEmbeddedTransport(const CEmbeddedTransport&) = delete;
    CEmbeddedTransport& operator=(const CEmbeddedTransport&) = delete;

    void logIn(const std::string& user, const std::string& password, LogInHandler handler) override;
    void query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler) override;
    void operate(const nvservice::COperateDataReq& request, ReplyHandler handler) override;
    QAV::EConnectionState state() const override;
    void setStateHandler(StateHandler handler) override;

private:
    boost::shared_ptr<service::DataEngine> m_engine;
    boost::shared_ptr<const service::Session> m_session; ///< on the worker only
    boost::asio::thread_pool m_worker{1};
};

} // namespace workbench
