// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CKolmClient.h>
#include <nvservice/CChangeInfo.h>
#include <utils/CSingletonT.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace QAV
{

/// All servers that the client works with, and requests to all of them at once. One per process:
/// `utils::CSingletonT<QAV::CKolmClientCenter>::instance()`.
///
/// All callbacks run one after another on one thread, the service thread, never on the caller's thread. An exception
/// from a callback is logged and dropped. All functions are thread-safe, and none waits for a server.
class QAV_EXPORT CKolmClientCenter
{
public:
    /// Receives the connection state of a server.
    using StateCallback = boost::function<void(const std::string& serverName, EConnectionState state)>;
    /// Keeps a callback for connection states registered. When the last copy is destroyed, it waits until the callback
    /// is not running any more; on the service thread it does not wait. It may outlive the centre.
    using StateSubscription = std::shared_ptr<void>;
    /// Receives what has changed on a server; the arguments are those of IChangeListener::onChanged.
    using ChangeCallback = boost::function<void(
        const std::string& serverName, const std::vector<nvservice::CChangeInfoPtr>& changes, bool isComplete)>;
    /// The same as StateSubscription, for a callback for changes.
    using ChangeSubscription = std::shared_ptr<void>;
    /// A request to one server that waits for its answer.
    struct RequestUnderWay {
        std::uint64_t number = 0; ///< for cancelRequest
        std::string serverName;
        std::int32_t dataType = 0; ///< nvservice::DataType; 0: a log-in
        bool isOperation = false;
        std::chrono::steady_clock::time_point since; ///< when it was sent
    };

    CKolmClientCenter();
    ~CKolmClientCenter();
    CKolmClientCenter(const CKolmClientCenter&) = delete;
    CKolmClientCenter& operator=(const CKolmClientCenter&) = delete;

    /// @name For plug-ins
    ///@{

    /// Queries all servers and answers once, when each of them has answered or failed. `flag` is reserved; pass 0.
    /// - Records are in the order of the server names; the total count is the sum.
    /// - Product records (`nvservice::CKolmProductsResp`) of several servers are merged into one that lists all
    ///   products.
    /// - If servers fail, the error has the code of the first of them by name and a text that names each of them; the
    ///   records of the other servers are still delivered.
    /// - Extra documents of several servers are merged into one document with a field per server name.
    /// - Without any server the error is `NotConnected`.
    void queryData_async(const boost::shared_ptr<nvservice::CKolmQueryDataReq>& request, const QueryCallback& callback,
                         unsigned char flag = 0);

    /// Never null. An empty name means the current server or, without one, the only server.
    boost::shared_ptr<CKolmClient> getClientByName(std::string serverName) const;
    /// Never null.
    boost::shared_ptr<CKolmClient> getClientBySystemTag(std::string systemTag) const;
    /// Empty for an unknown tag.
    std::string getServerNameBySystemTag(std::string systemTag) const;
    /// The tag of the server that getClientByName finds; empty if it finds none.
    std::string getSystemTagByServerName(std::string serverName) const;
    /// True if there are at least two servers.
    bool isMultiServers() const;
    /// All clients by server name, sorted by the bytes of the names.
    std::map<std::string, boost::shared_ptr<CKolmClient>> getAllClients() const;

    /// Registers a callback for the connection states of all servers, for as long as the result exists. It receives the
    /// current state of every server, before this function returns unless that was called on the service thread; then
    /// every change. Any number of callbacks may be registered.
    [[nodiscard]] StateSubscription listenToStates(StateCallback callback);

    /// Registers a callback for changes on all servers that tell them, for as long as the result exists. Any number of
    /// callbacks may be registered. Servers tell changes from the first registration on, each to its logged-in user. A
    /// panel that inherits IChangeListener need not register one.
    [[nodiscard]] ChangeSubscription listenToChanges(ChangeCallback callback);
    /// True if an operation of this process has made the change, one of its last 4096.
    bool isOwnChange(const nvservice::CChangeInfo& change) const;

    ///@}
    /// @name For the host
    ///@{

    /// Adds a server. It tells changes if its transport is a CNetworkTransport or inherits IChangeSource. Errors:
    /// `Duplicate` if the name or the tag is taken; `InvalidValue` if either is empty or the transport is null.
    utils::NVError addServer(const std::string& name, const std::string& systemTag,
                             boost::shared_ptr<ITransport> transport);
    /// Removes a server. Its pending requests are answered with `Cancelled`. An unknown name is ignored.
    void removeServer(const std::string& name);
    /// Ends all requests, so that what their callbacks refer to can be destroyed: answers the pending ones with
    /// `Cancelled` and waits until their callbacks have returned; on the service thread it does not wait. A request
    /// that one of these callbacks sends is never answered. Later requests are carried out as usual.
    void cancelRequests();
    /// The requests that wait for their answers, the oldest first. A query to all servers counts once for each of them.
    std::vector<RequestUnderWay> requestsUnderWay() const;
    /// Ends one request: it is answered with `Cancelled` soon. A number that is not under way any more is ignored.
    void cancelRequest(std::uint64_t number);
    /// Removes all servers and waits until all pending callbacks have returned; on the service thread it does not wait.
    /// Servers can be added again afterwards.
    void shutDown();

    /// Sets the server that the user has selected in the client. An empty or unknown name means none.
    void setCurrentServer(const std::string& serverName);

    /// Sets how long a request may take on each server; 30 seconds by default. Applies to later requests.
    void setDeadline(std::chrono::milliseconds deadline);
    /// The same for one server; overrides the general deadline. An unknown name is ignored.
    void setDeadline(const std::string& serverName, std::chrono::milliseconds deadline);

    ///@}

private:
    std::shared_ptr<CClientCore> m_core;
};

} // namespace QAV
