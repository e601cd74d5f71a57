#include "CEmbeddedTransport.h"

#include "service/engine/DataEngine.h"

#include <boost/asio/post.hpp>

#include <exception>
#include <utility>

namespace workbench
{

namespace
{

utils::NVError failure(const std::exception& e)
{
    return {utils::EErrorCode::StorageFailure, std::string("数据服务故障: ") + e.what()};
}

/// Runs a request of the engine; an exception becomes an error reply.
template <typename Request>
QAV::ITransport::Reply carryOut(const Request& request)
{
    QAV::ITransport::Reply reply;
    try {
        service::Reply answer = request();
        reply.error = answer.error;
        reply.records = std::move(answer.records);
        reply.totalCount = answer.totalCount;
        reply.document = answer.document;
    } catch (const std::exception& e) {
        reply.error = failure(e);
    }
    return reply;
}

} // namespace

CEmbeddedTransport::CEmbeddedTransport(boost::shared_ptr<service::DataEngine> engine) : m_engine(std::move(engine)) {}

CEmbeddedTransport::~CEmbeddedTransport() = default;

void CEmbeddedTransport::logIn(const std::string& user, const std::string& password, LogInHandler handler)
{
    boost::asio::post(m_worker, [this, user, password, handler = std::move(handler)] {
        service::LogInReply answer;
        try {
            answer = m_engine->logIn(user, password);
        } catch (const std::exception& e) {
            answer.error = failure(e);
        }
        m_session = answer.session;
        handler(answer.error, answer.user);
    });
}

void CEmbeddedTransport::query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler)
{
    boost::asio::post(m_worker, [this, request, handler = std::move(handler)] {
        handler(carryOut([&] { return m_engine->query(m_session, request); }));
    });
}

void CEmbeddedTransport::operate(const nvservice::COperateDataReq& request, ReplyHandler handler)
{
    boost::asio::post(m_worker, [this, request, handler = std::move(handler)] {
        handler(carryOut([&] { return m_engine->operate(m_session, request); }));
    });
}

QAV::EConnectionState CEmbeddedTransport::state() const
{
    return QAV::EConnectionState::Connected;
}

void CEmbeddedTransport::setStateHandler(StateHandler)
{
    // The state never changes.
}

} // namespace workbench
