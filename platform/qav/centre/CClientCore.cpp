// SPDX-License-Identifier: Apache-2.0
#include "centre/CClientCore.h"

#include "centre/ReplyCallbacks.h"

#include <QAV/CNetworkTransport.h>
#include <utils/Translation.h>

#include <exception>
#include <mutex>
#include <utility>

namespace QAV
{

namespace
{

/// Null if the transport cannot tell changes.
IChangeSource* sourceOf(ITransport* transport)
{
    // A second base class would change the size of this class, which hosts have compiled in.
    if (auto* const network = dynamic_cast<CNetworkTransport*>(transport)) {
        return &network->changeSource();
    }
    return dynamic_cast<IChangeSource*>(transport);
}

} // namespace

CClientCore::CClientCore() : m_thread([this](CServiceThread::Clock::time_point now) { return m_ledger.expire(now); }) {}

void CClientCore::send(const EntryPtr& server, RequestKind kind, const Call& call, PendingRequest::Done done)
{
    const auto request = std::make_shared<PendingRequest>();
    request->server = server;
    request->kind = kind;
    request->since = PendingRequest::Clock::now();
    request->done = untilCancelled(std::move(done));
    boost::shared_ptr<ITransport> transport;
    bool entered = false;
    {
        // Under the lock, so that a later removal finds the request in the ledger.
        const std::shared_lock<std::shared_mutex> lock(m_mutex);
        transport = server->transport;
        if (transport) {
            request->deadline = server->deadline.value_or(m_deadline);
            enlist(request);
            entered = m_thread.post([this, request] { m_ledger.add(request); });
        }
    }
    if (!entered) {
        refuse(utils::EErrorCode::NotConnected,
               server->name.empty() ? utils::text("QAV", "未连接：没有对应的分系统")
                                    : utils::filled(utils::text("QAV", "分系统“%1”未连接"), server->name),
               std::move(request->done));
        return;
    }
    std::string failure = utils::filled(utils::text("QAV", "分系统“%1”通信故障"), server->name);
    try {
        const ITransport::RequestId id =
            call(*transport, [core = shared_from_this(), request](ITransport::Reply reply) {
                core->m_thread.post([core = core.get(), request, reply = std::move(reply)]() mutable {
                    core->m_ledger.answer(request, std::move(reply));
                });
            });
        m_thread.post([this, request, id] { m_ledger.sent(request, id); });
        return;
    } catch (const std::exception& e) {
        failure = utils::filled(utils::text("QAV", "%1：%2"), failure, e.what());
    } catch (...) {
        // The transport gives no reason.
    }
    if (kind.isOperation) {
        failure = utils::filled(utils::text("QAV", "%1，未知是否已执行"), failure);
    }
    m_thread.post([this, request, failure] { m_ledger.answerWithError(request, utils::EErrorCode::Failed, failure); });
}

void CClientCore::enlist(const CRequestLedger::RequestPtr& request)
{
    const std::lock_guard<std::mutex> lock(m_underWayMutex);
    const std::uint64_t number = ++m_lastNumber;
    m_underWay.emplace(number, request);
    request->done = [this, number, done = std::move(request->done)](ITransport::Reply reply, bool namesServer) {
        {
            const std::lock_guard<std::mutex> unlisting(m_underWayMutex);
            m_underWay.erase(number);
        }
        done(std::move(reply), namesServer);
    };
}

std::vector<CKolmClientCenter::RequestUnderWay> CClientCore::requestsUnderWay() const
{
    const std::lock_guard<std::mutex> lock(m_underWayMutex);
    std::vector<CKolmClientCenter::RequestUnderWay> requests;
    requests.reserve(m_underWay.size());
    for (const auto& [number, request] : m_underWay) {
        requests.push_back(
            {number, request->server->name, request->kind.dataType, request->kind.isOperation, request->since});
    }
    return requests;
}

void CClientCore::cancelRequest(std::uint64_t number)
{
    m_thread.post([this, number] {
        CRequestLedger::RequestPtr request;
        {
            const std::lock_guard<std::mutex> lock(m_underWayMutex);
            const auto found = m_underWay.find(number);
            if (found == m_underWay.end()) {
                return;
            }
            request = found->second;
        }
        m_ledger.cancel(request);
    });
}

void CClientCore::refuse(utils::EErrorCode code, const std::string& text, PendingRequest::Done done)
{
    const auto task = [code, text, done = untilCancelled(std::move(done))] {
        ITransport::Reply reply;
        reply.error = utils::NVError(code, text);
        done(std::move(reply), true);
    };
    if (!m_thread.post(task)) {
        task();
    }
}

utils::NVError CClientCore::addServer(const std::string& name, const std::string& systemTag,
                                      boost::shared_ptr<ITransport> transport)
{
    if (name.empty() || systemTag.empty() || !transport) {
        return {utils::EErrorCode::InvalidValue, utils::text("QAV", "分系统的名称、标识或通信方式为空")};
    }
    const auto server = std::make_shared<ServerEntry>();
    server->name = name;
    server->systemTag = systemTag;
    server->transport = transport;
    {
        const std::unique_lock<std::shared_mutex> lock(m_mutex);
        if (m_byName.count(name) > 0 || m_byTag.count(systemTag) > 0) {
            return {utils::EErrorCode::Duplicate,
                    utils::filled(utils::text("QAV", "分系统“%1”的名称或标识已存在"), name)};
        }
        m_byName.emplace(name, server);
        m_byTag.emplace(systemTag, server);
    }
    transport->setStateHandler([weak = weak_from_this(), server](EConnectionState state) {
        if (const auto core = weak.lock()) {
            core->reportState(server, state);
        }
    });
    reportState(server, transport->state());
    if (m_listensToChanges) {
        listenAt(server);
    }
    return {};
}

void CClientCore::removeServer(const std::string& name)
{
    EntryPtr server;
    boost::shared_ptr<ITransport> transport; // its destructor may wait for its threads: outside the lock
    {
        const std::unique_lock<std::shared_mutex> lock(m_mutex);
        const auto it = m_byName.find(name);
        if (it == m_byName.end()) {
            return;
        }
        server = it->second;
        m_byTag.erase(server->systemTag);
        m_byName.erase(it);
        transport.swap(server->transport);
    }
    transport->setStateHandler({});
    if (IChangeSource* const source = sourceOf(transport.get())) {
        source->setChangeHandler({});
    }
    m_thread.post([this, server] { m_ledger.drop(server); });
}

void CClientCore::cancelRequests()
{
    m_thread.post([this] {
        m_ledger.cancelAll();
        ++m_cancellations;
    });
    m_thread.drain();
}

PendingRequest::Done CClientCore::untilCancelled(PendingRequest::Done done) const
{
    return
        [this, sentAfter = m_cancellations.load(), done = std::move(done)](ITransport::Reply reply, bool namesServer) {
            if (m_cancellations == sentAfter) {
                done(std::move(reply), namesServer);
            }
        };
}

void CClientCore::shutDown()
{
    for (const EntryPtr& server : servers()) {
        removeServer(server->name);
    }
    m_thread.drain();
}

void CClientCore::stop()
{
    shutDown();
    m_thread.stop();
}

void CClientCore::setDeadline(std::chrono::milliseconds deadline)
{
    const std::unique_lock<std::shared_mutex> lock(m_mutex);
    m_deadline = deadline;
}

void CClientCore::setDeadline(const std::string& name, std::chrono::milliseconds deadline)
{
    const std::unique_lock<std::shared_mutex> lock(m_mutex);
    const auto it = m_byName.find(name);
    if (it != m_byName.end()) {
        it->second->deadline = deadline;
    }
}

template <typename List>
std::shared_ptr<void> CClientCore::subscribe(List& list, typename List::Callback callback,
                                             std::function<void(int listener)> begun)
{
    const int listener = ++m_lastListener;
    m_thread.post([&list, listener, callback = std::move(callback), begun = std::move(begun)] {
        list.add(listener, callback);
        begun(listener);
    });
    m_thread.drain();
    return {static_cast<void*>(this), [core = shared_from_this(), &list, listener](void*) {
                core->runOnThread([&list, listener] { list.remove(listener); });
            }};
}

void CClientCore::runOnThread(const CServiceThread::Task& task)
{
    if (m_thread.isCurrent()) {
        task();
    } else {
        m_thread.post(task);
        m_thread.drain();
    }
}

CKolmClientCenter::StateSubscription CClientCore::listenToStates(CKolmClientCenter::StateCallback callback)
{
    return subscribe(m_stateListeners, std::move(callback), [this](int listener) {
        for (const EntryPtr& server : servers()) {
            m_stateListeners.tell(listener, server->name, stateOf(server));
        }
    });
}

CKolmClientCenter::ChangeSubscription CClientCore::listenToChanges(CKolmClientCenter::ChangeCallback callback)
{
    CKolmClientCenter::ChangeSubscription subscription = subscribe(m_changeListeners, std::move(callback), [](int) {});
    if (!m_listensToChanges.exchange(true)) {
        for (const EntryPtr& server : servers()) {
            listenAt(server);
        }
    }
    return subscription;
}

void CClientCore::listenAt(const EntryPtr& server)
{
    const boost::shared_ptr<ITransport> transport = transportOf(server);
    IChangeSource* const source = sourceOf(transport.get());
    if (!source) {
        return;
    }
    source->setChangeHandler([weak = weak_from_this(), server](const IChangeSource::Changes& changes) {
        const auto core = weak.lock();
        if (!core) {
            return;
        }
        core->m_thread.post([core = core.get(), server, changes] {
            if (core->isKnown(server)) {
                core->m_changeListeners.tellAll(server->name, changes.records, changes.isComplete);
            }
        });
    });
}

void CClientCore::reportState(const EntryPtr& server, EConnectionState state)
{
    m_thread.post([this, server, state] {
        if (isKnown(server)) {
            m_stateListeners.tellAll(server->name, state);
        }
    });
}

CClientCore::EntryPtr CClientCore::byName(const std::string& name) const
{
    const std::shared_lock<std::shared_mutex> lock(m_mutex);
    const auto it = m_byName.find(name.empty() ? m_currentServer : name);
    if (it != m_byName.end()) {
        return it->second;
    }
    return name.empty() && m_byName.size() == 1 ? m_byName.begin()->second : nullptr;
}

CClientCore::EntryPtr CClientCore::bySystemTag(const std::string& tag) const
{
    const std::shared_lock<std::shared_mutex> lock(m_mutex);
    const auto it = m_byTag.find(tag);
    return it == m_byTag.end() ? nullptr : it->second;
}

void CClientCore::setCurrentServer(const std::string& name)
{
    const std::unique_lock<std::shared_mutex> lock(m_mutex);
    m_currentServer = name;
}

std::vector<CClientCore::EntryPtr> CClientCore::servers() const
{
    const std::shared_lock<std::shared_mutex> lock(m_mutex);
    std::vector<EntryPtr> all;
    all.reserve(m_byName.size());
    for (const auto& [name, server] : m_byName) {
        all.push_back(server);
    }
    return all;
}

EConnectionState CClientCore::stateOf(const EntryPtr& server) const
{
    const boost::shared_ptr<ITransport> transport = transportOf(server);
    return transport ? transport->state() : EConnectionState::Disconnected;
}

std::string CClientCore::stateReasonOf(const EntryPtr& server) const
{
    const boost::shared_ptr<ITransport> transport = transportOf(server);
    return transport ? transport->stateReason() : std::string();
}

void CClientCore::cancel(const ServerEntry& server, ITransport::RequestId request) const
{
    // Under the lock, so that the transport is not destroyed here, which would block the service thread.
    const std::shared_lock<std::shared_mutex> lock(m_mutex);
    if (server.transport) {
        server.transport->cancel(request);
    }
}

bool CClientCore::isKnown(const EntryPtr& server) const
{
    const std::shared_lock<std::shared_mutex> lock(m_mutex);
    return server->transport != nullptr;
}

boost::shared_ptr<ITransport> CClientCore::transportOf(const EntryPtr& server) const
{
    const std::shared_lock<std::shared_mutex> lock(m_mutex);
    return server->transport;
}

} // namespace QAV
