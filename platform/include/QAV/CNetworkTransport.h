#pragma once

#include <QAV/Export.h>
#include <QAV/ITransport.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace QAV
{

/// Where a server is and how it is reached.
struct NetworkServer {
    std::string host; ///< name or address; the server's certificate must be made out to it
    std::uint16_t port = 0;
    std::string systemTag; ///< of the sub-system that is expected there; empty: any
    /// PEM file with the certificates of the authorities that are trusted; empty: those of the operating system.
    std::string caFile;
    /// False: plain TCP, which is accepted for a loopback address only.
    bool encrypted = true;

    /// How much of replies may be under way at a time, in bytes, and how many documents (records, records in them,
    /// lists) one reply may have: what goes beyond is refused, so that a server cannot use up the memory. 100 000
    /// groups of 10 accounts are 230 MB and 1.2 million documents.
    std::size_t maxReplyBytes = std::size_t{1} << 30;
    std::size_t maxReplyDocuments = std::size_t{8} << 20;

    std::chrono::milliseconds connectDeadline = std::chrono::seconds(10);  ///< from the first packet to the log-in
    std::chrono::milliseconds firstPause = std::chrono::milliseconds(500); ///< before connecting again; doubles
    std::chrono::milliseconds longestPause = std::chrono::seconds(30);
};

/// A server that is reached over the network, by the protocol of docs/wire-protocol.md. It begins to connect when it is
/// made and connects again whenever the connection is lost, with growing and random pauses, for as long as it lives.
/// Sockets have a thread of their own, and so has decoding: a server that is slow or dead delays nobody else.
///
/// The certificate and the host name are always verified; nothing switches that off.
///
/// State: `Connecting` while a connection is being made; `Connected` from the server's welcome, after a lost connection
/// from the repeated log-in; `Disconnected` in the pauses, when requests are refused at once with the reason for which
/// the last attempt failed. A log-in ends the pause. A connection that is lost before anybody has logged in is made
/// again for the next request only.
///
/// Each handler is called exactly once while the transport lives, unless the request is cancelled. When the connection
/// is lost, the last user is logged in again with the credentials that are kept in memory, and what was not answered is
/// sent again in the same order: the service applies an operation once per operation id. If the next attempt to connect
/// fails, what waits is answered with `NotConnected`, except operations that were sent already: they wait for a later
/// attempt until they are cancelled. Without a log-in every request is answered with `NotLoggedIn`. A log-in that did
/// not reach the server is made up for when the server is there.
///
/// A request that is cancelled after it was sent is cancelled at the server. Such a log-in costs the connection,
/// because nobody knows who is logged in there.
class QAV_EXPORT CNetworkTransport : public ITransport
{
public:
    /// What is wrong with the settings; success when nothing is.
    static utils::NVError check(const NetworkServer& server);

    /// With settings that check() refuses, every request is answered with what is wrong.
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

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace QAV
