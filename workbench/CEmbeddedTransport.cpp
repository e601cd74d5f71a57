// SPDX-License-Identifier: Apache-2.0
#include "CEmbeddedTransport.h"

#include "service/engine/DataEngine.h"
#include "service/engine/UnreadChanges.h"

#include <nvservice/DataType.h>
#include <utils/Translation.h>

#include <boost/asio/post.hpp>

#include <exception>
#include <utility>

namespace workbench
{

namespace
{

utils::NVError failure(const std::exception& e)
{
    return {utils::EErrorCode::StorageFailure, utils::filled(utils::text("workbench", "数据服务故障：%1"), e.what())};
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

CEmbeddedTransport::~CEmbeddedTransport()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto& [request, isUnwanted] : m_underWay) {
        *isUnwanted = true;
    }
}

template <typename Work>
QAV::ITransport::RequestId CEmbeddedTransport::post(Work work)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const RequestId id = ++m_lastRequest;
    const Unwanted isUnwanted(new std::atomic<bool>(false), [this, id](std::atomic<bool>* flag) {
        const std::lock_guard<std::mutex> ending(m_mutex);
        m_underWay.erase(id);
        delete flag;
    });
    m_underWay.emplace(id, isUnwanted.get());
    lock.unlock();
    boost::asio::post(m_worker, [isUnwanted, work = std::move(work)] {
        if (!*isUnwanted) {
            work(isUnwanted);
        }
    });
    return id;
}

void CEmbeddedTransport::cancel(RequestId request) noexcept
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_underWay.find(request);
    if (found != m_underWay.end()) {
        *found->second = true;
    }
}

QAV::ITransport::RequestId CEmbeddedTransport::logIn(const std::string& user, const std::string& password,
                                                     LogInHandler handler)
{
    return post([this, user, password, handler = std::move(handler)](const Unwanted&) {
        service::LogInReply answer;
        try {
            answer = m_engine->logIn(user, password);
        } catch (const std::exception& e) {
            answer.error = failure(e);
        }
        m_session = answer.session;
        m_unread.reset();
        tellChanges();
        handler(answer.error, answer.user);
    });
}

QAV::ITransport::RequestId CEmbeddedTransport::query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler)
{
    return post([this, request, handler = std::move(handler)](const Unwanted& isUnwanted) {
        const auto answer = [this, request, handler, isUnwanted, session = m_session] {
            handler(carryOut(
                [&] { return m_engine->query(session, request, [&isUnwanted] { return isUnwanted->load(); }); }));
        };
        if (request.dataType == nvservice::DataType::Finding) {
            boost::asio::post(m_checker, answer);
        } else {
            answer();
        }
    });
}

QAV::ITransport::RequestId CEmbeddedTransport::operate(const nvservice::COperateDataReq& request, ReplyHandler handler)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    // Cannot be cancelled: a save may consist of several operations, and the first of them may have begun.
    boost::asio::post(m_worker, [this, request, handler = std::move(handler)] {
        handler(carryOut([&] { return m_engine->operate(m_session, request); }));
    });
    return ++m_lastRequest;
}

QAV::EConnectionState CEmbeddedTransport::state() const
{
    return QAV::EConnectionState::Connected;
}

void CEmbeddedTransport::setStateHandler(StateHandler)
{
    // The state never changes.
}

void CEmbeddedTransport::setChangeHandler(ChangeHandler handler)
{
    ChangeHandler old; // destroyed outside the lock
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        old = std::exchange(m_changeHandler, std::move(handler));
        if (m_changeHandler && !m_watch) {
            m_watch = m_engine->watchCommits([this] { postChanges(); });
        }
    }
    postChanges();
}

void CEmbeddedTransport::postChanges()
{
    if (!m_isChangePosted.exchange(true)) {
        boost::asio::post(m_worker, [this] {
            m_isChangePosted = false;
            tellChanges();
        });
    }
}

void CEmbeddedTransport::tellChanges()
{
    ChangeHandler handler;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        handler = m_changeHandler;
    }
    if (!handler || !m_session) {
        m_unread.reset();
        return;
    }
    if (!m_unread) {
        m_unread = std::make_unique<service::UnreadChanges>(m_session, std::nullopt);
    }
    try {
        m_unread->add(m_engine->readChanges(m_unread->position()));
    } catch (const std::exception&) {
        return; // the next commit brings it; requests report what is wrong
    }
    if (!m_unread->hasNews()) {
        return;
    }
    service::UnreadChanges::News news = m_unread->take();
    if (!news.isComplete || !news.records.empty()) {
        handler({std::move(news.records), news.isComplete});
    }
}

} // namespace workbench
