// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/EErrorCode.h>

#include <boost/noncopyable.hpp>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace service::daemon
{

/// The metrics of the daemon for Prometheus. Thread-safe.
class Metrics : private boost::noncopyable
{
public:
    using Seconds = std::chrono::duration<double>;

    Metrics();
    ~Metrics();

    void connectionOpened();
    void connectionClosed();
    /// A connection was refused: "limit", "address_limit", "handshake".
    void connectionRefused(const char* reason);
    /// @param kind  one of a few names, for example "log_in", "query_625", "operate_625"
    void requestDone(const std::string& kind, utils::EErrorCode outcome, Seconds duration);
    void bytesReceived(std::int64_t bytes);
    void bytesSent(std::int64_t bytes);
    void requestsUnderWay(int change);
    /// Bytes of all connections that are encoded but not yet accepted by the network.
    void outputBytes(std::int64_t change);
    void setHeldBytes(std::size_t bytes);
    void setReceivedBytes(std::size_t bytes);
    /// Seconds since 1970 UTC. Until it is called, the metric is missing.
    void setCertificateEnd(std::int64_t seconds);
    /// The number of tasks that wait for a thread: "requests", "log_ins".
    void setQueueDepth(const char* queue, std::size_t depth);

    /// All metrics in Prometheus' text format.
    std::string text() const;

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace service::daemon
