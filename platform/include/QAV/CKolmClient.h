#pragma once

#include <QAV/Export.h>
#include <QAV/ITransport.h>

#include <boost/function.hpp>

#include <memory>

namespace QAV
{

class ClientCore;
struct ServerEntry;

/// Receives the answer to a query: error, records, total count on the server, extra document. Records are never null,
/// carry their server's system tag, and belong to the receiver.
using QueryCallback =
    boost::function<void(const utils::NVError&, const std::vector<nvservice::IDataPtr>&, int, bson::BSONObj)>;
/// Receives the answer to an operation: error and result document. An operation is carried out when the error is a
/// success and the document is empty.
using OperateCallback = boost::function<void(const utils::NVError&, bson::BSONObj)>;
/// Receives the answer to a log-in: error and, without one, the user's record.
using LogInCallback = boost::function<void(const utils::NVError&, const boost::shared_ptr<nvservice::CUserInfo>&)>;

/// The client of one server. Always taken from the client centre, which never hands out a null pointer: for a server
/// that nobody knows there is a client too, and it answers every request with `NotConnected`.
///
/// Every request is answered exactly once, on the service thread and never from within the call itself. Error codes
/// beyond the server's own: `NotConnected` (no such server), `DeadlineExceeded` (no answer in time), `Cancelled` (the
/// server was removed), `Failed` (the transport broke), `InvalidValue` (no request or no record in it). A deadline, a
/// removal and a broken transport leave open whether an operation was carried out; the text says so.
///
/// All operations are thread-safe. Requests and their records are copied before the call returns, so that the caller
/// may go on changing its own.
class QAV_EXPORT CKolmClient
{
public:
    /// Only the client centre can make one: the arguments' types are its own.
    CKolmClient(std::shared_ptr<ClientCore> core, std::shared_ptr<ServerEntry> server);
    ~CKolmClient();
    CKolmClient(const CKolmClient&) = delete;
    CKolmClient& operator=(const CKolmClient&) = delete;

    /// `flag` is reserved; pass 0.
    void queryData_async(const boost::shared_ptr<nvservice::CKolmQueryDataReq>& request, const QueryCallback& callback,
                         unsigned char flag = 0);
    /// An empty operation id is replaced by a new one, in the copy that is sent. `flag` is reserved; pass 0.
    void operateData_async(const boost::shared_ptr<nvservice::COperateDataReq>& request,
                           const OperateCallback& callback, unsigned char flag = 0);
    /// For the host: logs in on this server. The plug-ins find the user in `CUserManager`.
    void logIn_async(const std::string& user, const std::string& password, const LogInCallback& callback);

    const std::string& serverName() const;
    /// Empty for a server that nobody knows.
    const std::string& systemTag() const;
    /// `Disconnected` for a server that nobody knows or that was removed.
    EConnectionState state() const;
    /// Why it is not connected: Chinese, for the user. Empty while it is, and when there is nothing to tell.
    std::string stateReason() const;

private:
    std::shared_ptr<ClientCore> m_core;
    std::shared_ptr<ServerEntry> m_server;
};

} // namespace QAV
