#pragma once

#include <QAV/CKolmClient.h>
#include <utils/CSingletonT.h>

#include <chrono>
#include <map>

namespace QAV
{

/// All servers that the client works with, and requests to all of them at once. One per process:
/// `utils::CSingletonT<QAV::CKolmClientCenter>::instance()`.
///
/// Callbacks of all servers come one after the other on one thread, the service thread; none comes on the caller's
/// thread. What a callback throws is logged and goes no further. All operations are thread-safe and none waits for a
/// server.
class QAV_EXPORT CKolmClientCenter
{
public:
    /// Hears of a server's connection state, on the service thread.
    using StateCallback = std::function<void(const std::string& serverName, EConnectionState state)>;

    CKolmClientCenter();
    ~CKolmClientCenter();
    CKolmClientCenter(const CKolmClientCenter&) = delete;
    CKolmClientCenter& operator=(const CKolmClientCenter&) = delete;

    /// @name For plug-ins
    ///@{

    /// Asks every server and answers once, when each has answered or failed. Records stand in the order of the server
    /// names, the total count is the sum. Product records (`nvservice::CKolmProductsResp`) of several servers come as
    /// one record that lists all products. When servers fail, the error has the code of the first of them by name and
    /// a text that names each, and the records of the others are delivered. Extra documents of several servers come as
    /// one document with a field per server name. Without any server: `NotConnected`. `flag` is reserved; pass 0.
    void queryData_async(const boost::shared_ptr<nvservice::CKolmQueryDataReq>& request, const QueryCallback& callback,
                         unsigned char flag = 0);

    /// Never null. An empty name means the server that the user works with: the current one, else the only one.
    boost::shared_ptr<CKolmClient> getClientByName(std::string serverName) const;
    /// Never null.
    boost::shared_ptr<CKolmClient> getClientBySystemTag(std::string systemTag) const;
    /// Empty for an unknown tag.
    std::string getServerNameBySystemTag(std::string systemTag) const;
    /// The tag of the server that getClientByName finds; empty when it finds none.
    std::string getSystemTagByServerName(std::string serverName) const;
    /// True when there are at least two servers.
    bool isMultiServers() const;
    /// The clients by server name, in ascending order of the names' bytes.
    std::map<std::string, boost::shared_ptr<CKolmClient>> getAllClients() const;

    ///@}
    /// @name For the host
    ///@{

    /// Adds a server. Refused (`Duplicate`) when the name or the tag is taken, and (`InvalidValue`) when either is
    /// empty or there is no transport.
    utils::NVError addServer(const std::string& name, const std::string& systemTag,
                             boost::shared_ptr<ITransport> transport);
    /// Forgets a server; its outstanding requests are answered with `Cancelled`. An unknown name is ignored.
    void removeServer(const std::string& name);
    /// Removes all servers and waits until every outstanding callback has returned (on the service thread itself it
    /// does not wait). Servers can be added again afterwards.
    void shutDown();

    /// The server that the user has chosen in the client; empty, or one that is not known, for none.
    void setCurrentServer(const std::string& serverName);

    /// How long a request may take on each server; 30 seconds unless set. Holds for requests sent later.
    void setDeadline(std::chrono::milliseconds deadline);
    /// The same for one server, before the general one. An unknown name is ignored.
    void setDeadline(const std::string& serverName, std::chrono::milliseconds deadline);

    /// Replaces the one that hears of connection states; an empty one ends it. It first hears of the present state of
    /// every server. When the call returns, the old one is not called any more, unless it is the one that calls.
    void setStateCallback(StateCallback callback);

    ///@}

private:
    std::shared_ptr<ClientCore> m_core;
};

} // namespace QAV
