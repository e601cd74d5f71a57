#pragma once

#include <utils/EErrorCode.h>

#include <boost/noncopyable.hpp>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace service::daemon
{

/// "permission_denied" and so on.
const char* nameOf(utils::EErrorCode code);

/// The figures of the daemon, as Prometheus reads them. May be used on any thread.
class Metrics : private boost::noncopyable
{
public:
    using Seconds = std::chrono::duration<double>;

    Metrics();
    ~Metrics();

    void connectionOpened();
    void connectionClosed();
    /// A connection that was closed before it began: "limit", "address_limit", "handshake".
    void connectionRefused(const char* reason);
    /// @param kind  one of a small number of names: "log_in", "query_625", "operate_625".
    void requestDone(const std::string& kind, utils::EErrorCode outcome, Seconds duration);
    void bytesReceived(std::int64_t bytes);
    void bytesSent(std::int64_t bytes);
    void requestsUnderWay(int change);
    /// Encoded and not yet taken by the network, of all connections together.
    void outputBytes(std::int64_t change);
    void setHeldBytes(std::size_t bytes);
    void setReceivedBytes(std::size_t bytes);
    /// Seconds since 1970 UTC. Without it there is no such figure.
    void setCertificateEnd(std::int64_t seconds);
    /// Of tasks that wait for a thread: "requests", "log_ins".
    void setQueueDepth(const char* queue, std::size_t depth);

    /// In Prometheus' text format.
    std::string text() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace service::daemon
