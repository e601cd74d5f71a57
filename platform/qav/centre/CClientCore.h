// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "centre/CListenerList.h"
#include "centre/COwnOperations.h"
#include "centre/CRequestLedger.h"
#include "centre/CServiceThread.h"

#include <QAV/CKolmClientCenter.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace QAV
{

/// The state that the centre shares with its clients: the servers, the service thread and the pending requests. Clients
/// and transports may keep it alive after the centre has stopped it; every request is then answered with
/// `NotConnected`.
class CClientCore : public std::enable_shared_from_this<CClientCore>
{
public:
    using EntryPtr = std::shared_ptr<ServerEntry>;
    using Call = std::function<ITransport::RequestId(ITransport&, ITransport::ReplyHandler)>;

    CClientCore();

    /// Sends a request with `call`. `done` runs once, on the service thread.
    void send(const EntryPtr& server, RequestKind kind, const Call& call, PendingRequest::Done done);
    /// Runs `done` on the service thread with an error.
    void refuse(utils::EErrorCode code, const std::string& text, PendingRequest::Done done);

    utils::NVError addServer(const std::string& name, const std::string& systemTag,
                             boost::shared_ptr<ITransport> transport);
    void removeServer(const std::string& name);
    void cancelRequests();
    std::vector<CKolmClientCenter::RequestUnderWay> requestsUnderWay() const;
    void cancelRequest(std::uint64_t number);
    void shutDown();
    /// Shuts down and ends the service thread.
    void stop();
    void setDeadline(std::chrono::milliseconds deadline);
    void setDeadline(const std::string& name, std::chrono::milliseconds deadline);
    CKolmClientCenter::StateSubscription listenToStates(CKolmClientCenter::StateCallback callback);
    CKolmClientCenter::ChangeSubscription listenToChanges(CKolmClientCenter::ChangeCallback callback);
    COwnOperations& ownOperations() { return m_ownOperations; }

    /// Null if there is none. An empty name means the current server or, without one, the only server.
    EntryPtr byName(const std::string& name) const;
    EntryPtr bySystemTag(const std::string& tag) const;
    void setCurrentServer(const std::string& name);
    /// Sorted by name.
    std::vector<EntryPtr> servers() const;
    EConnectionState stateOf(const EntryPtr& server) const;
    std::string stateReasonOf(const EntryPtr& server) const;

private:
    void cancel(const ServerEntry& server, ITransport::RequestId request) const;
    bool isKnown(const EntryPtr& server) const;
    boost::shared_ptr<ITransport> transportOf(const EntryPtr& server) const;
    void reportState(const EntryPtr& server, EConnectionState state);
    /// Lets the server tell changes, if it can.
    void listenAt(const EntryPtr& server);
    /// `begun` runs on the service thread when the callback is registered, before this function returns.
    template <typename List>
    std::shared_ptr<void> subscribe(List& list, typename List::Callback callback,
                                    std::function<void(int listener)> begun);
    /// On the service thread at once; from others it waits for it.
    void runOnThread(const CServiceThread::Task& task);
    /// `done` for a request that is sent now; does nothing once cancelRequests() has ended it.
    PendingRequest::Done untilCancelled(PendingRequest::Done done) const;
    /// Lists the request as under way until it is answered.
    void enlist(const CRequestLedger::RequestPtr& request);

    mutable std::shared_mutex m_mutex;
    std::map<std::string, EntryPtr> m_byName;
    std::unordered_map<std::string, EntryPtr> m_byTag;
    std::string m_currentServer;
    std::chrono::milliseconds m_deadline = std::chrono::seconds(30);
    std::atomic<int> m_lastListener{0};
    std::atomic<bool> m_listensToChanges{false};
    COwnOperations m_ownOperations;
    /// How often the requests were cancelled.
    std::atomic<unsigned> m_cancellations{0};

    mutable std::mutex m_underWayMutex;
    /// By the numbers, which count the requests.
    std::map<std::uint64_t, CRequestLedger::RequestPtr> m_underWay;
    std::uint64_t m_lastNumber = 0;

    // Service thread only.
    CRequestLedger m_ledger{
        [this](const ServerEntry& server, ITransport::RequestId request) { cancel(server, request); }};
    CListenerList<const std::string&, EConnectionState> m_stateListeners;
    CListenerList<const std::string&, const std::vector<nvservice::CChangeInfoPtr>&, bool> m_changeListeners;

    CServiceThread m_thread;
};

} // namespace QAV
