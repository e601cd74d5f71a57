// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <QAV/ITransport.h>

#include <boost/function.hpp>

#include <memory>

namespace QAV
{

class CClientCore;
struct ServerEntry;

/// Receives the answer to a query: error, records, total count on the server, extra document. Records are never null,
/// carry their server's system tag, and belong to the receiver. The document is never a view.
using QueryCallback =
    boost::function<void(const utils::NVError&, const std::vector<nvservice::IDataPtr>&, int, bson::BSONObj)>;
/// Receives the answer to an operation: error and result document. The operation was carried out if the error is a
/// success and the document is empty. The document is never a view.
using OperateCallback = boost::function<void(const utils::NVError&, bson::BSONObj)>;
/// Receives the answer to a log-in: error and, on success, the user's record.
using LogInCallback = boost::function<void(const utils::NVError&, const boost::shared_ptr<nvservice::CUserInfo>&)>;

/// The client of one server. Get it from the client centre, which never returns a null pointer: an unknown server has a
/// client too, which answers every request with `NotConnected`.
///
/// Every request is answered exactly once, on the service thread and never from within the call itself. In addition to
/// the server's own error codes there are: `NotConnected` (no such server), `DeadlineExceeded` (no answer in time),
/// `Cancelled` (the server was removed, or the host ends the requests), `Failed` (the transport failed), `InvalidValue`
/// (no request, or no record in it). After a deadline, a removal or a failed transport the operation may or may not
/// have been carried out; the text says so.
///
/// All functions are thread-safe. Requests and their records are copied before a call returns, so the caller may then
/// change its own.
class QAV_EXPORT CKolmClient
{
public:
    /// For the client centre, which owns the types of the arguments.
    CKolmClient(std::shared_ptr<CClientCore> core, std::shared_ptr<ServerEntry> server);
    ~CKolmClient();
    CKolmClient(const CKolmClient&) = delete;
    CKolmClient& operator=(const CKolmClient&) = delete;

    /// `flag` is reserved; pass 0.
    void queryData_async(const boost::shared_ptr<nvservice::CKolmQueryDataReq>& request, const QueryCallback& callback,
                         unsigned char flag = 0);
    /// An empty operation id is replaced by a new one, in the copy that is sent. `flag` is reserved; pass 0.
    void operateData_async(const boost::shared_ptr<nvservice::COperateDataReq>& request,
                           const OperateCallback& callback, unsigned char flag = 0);
    /// For the host: logs in on this server. Plug-ins get the user from `CUserManager`.
    void logIn_async(const std::string& user, const std::string& password, const LogInCallback& callback);

    const std::string& serverName() const;
    /// Empty for an unknown server.
    const std::string& systemTag() const;
    /// `Disconnected` for a server that is unknown or was removed.
    EConnectionState state() const;
    /// Why the server is not connected: Chinese, for the user. Empty while it is connected or if the reason is unknown.
    std::string stateReason() const;

private:
    std::shared_ptr<CClientCore> m_core;
    std::shared_ptr<ServerEntry> m_server;
};

} // namespace QAV
