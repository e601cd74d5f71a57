// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <QAV/IChangeSource.h>
#include <QAV/ITransport.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace QAV
{

/// The address of a server and the settings of the connection.
struct NetworkServer {
    std::string host; ///< name or address; the server's certificate must be issued for it
    std::uint16_t port = 0;
    std::string systemTag; ///< of the expected sub-system; empty: any
    /// PEM file with the certificates of the trusted authorities; empty: those of the operating system.
    std::string caFile;
    /// False: plain TCP, which is accepted only for a loopback address.
    bool encrypted = true;

    /// Limits that keep a server from using up the memory; replies beyond them are refused: the bytes of all pending
    /// replies together, and the documents (records, nested records, lists) of one reply. 100 000 groups of 10 accounts
    /// are 230 MB and 1.2 million documents.
    std::size_t maxReplyBytes = std::size_t{1} << 30;
    std::size_t maxReplyDocuments = std::size_t{8} << 20;

    std::chrono::milliseconds connectDeadline = std::chrono::seconds(10);  ///< from the first packet to the log-in
    std::chrono::milliseconds firstPause = std::chrono::milliseconds(500); ///< before reconnecting; doubles each time
    std::chrono::milliseconds longestPause = std::chrono::seconds(30);
};

/// Connects to a server over the network, with the protocol of docs/wire-protocol.md. It connects when it is created
/// and reconnects whenever the connection is lost, after random pauses of increasing length. Sockets and decoding have
/// separate threads, so a slow or dead server does not delay others.
///
/// The certificate and the host name are always verified; this cannot be switched off.
///
/// State:
/// - `Connecting` while it connects.
/// - `Connected` from the server's welcome on; after a lost connection, from the repeated log-in on.
/// - `Disconnected` during the pauses. Requests are then refused at once with the reason why the last attempt failed. A
///   log-in ends the pause. If the connection is lost before a log-in, only the next request makes it reconnect.
///
/// Each handler is called exactly once while the transport exists, unless the request is cancelled. After a lost
/// connection, the transport logs in the last user again, with credentials kept in memory, and repeats unanswered
/// requests in the same order; the service applies an operation once per operation id. If the next attempt to connect
/// fails, waiting requests are answered with `NotConnected`, except operations that were already sent: they wait for a
/// later attempt until they are cancelled. Without a log-in every request is answered with `NotLoggedIn`. A log-in that
/// did not reach the server is repeated when the server is connected.
///
/// A request that is cancelled after it was sent is cancelled at the server. A cancelled log-in closes the connection,
/// because it is unknown who is logged in there.
class QAV_EXPORT CNetworkTransport : public ITransport
{
public:
    /// Checks the settings.
    static utils::NVError check(const NetworkServer& server);

    /// If check() refuses the settings, every request is answered with its error.
    explicit CNetworkTransport(NetworkServer server);
    ~CNetworkTransport() override;
    CNetworkTransport(const CNetworkTransport&) = delete;
    CNetworkTransport& operator=(const CNetworkTransport&) = delete;

    RequestId logIn(const std::string& user, const std::string& password, LogInHandler handler) override;
    RequestId query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler) override;
    RequestId operate(const nvservice::COperateDataReq& request, ReplyHandler handler) override;
    void cancel(RequestId request) noexcept override;
    EConnectionState state() const override;
    std::string stateReason() const override;
    void setStateHandler(StateHandler handler) override;

    /// Tells changes, if the server does. Lives as long as the transport.
    IChangeSource& changeSource();

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace QAV
