// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/RawClient.h"

#include <boost/noncopyable.hpp>

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <poll.h>
#include <string>
#include <thread>
#include <vector>

/// Many clients of a daemon, read by one thread. They do as little as possible, because in an installation each has a
/// machine of its own: they keep the connection, and read changes only while one is expected.
class Desks : private boost::noncopyable
{
public:
    ~Desks();

    /// Logs in so many.
    bool open(int count, int port);
    void listen();

    /// The change of the group with this name has been asked for.
    void expect(const std::string& group);
    /// How long each desk waited for each expected change, in milliseconds, in ascending order.
    std::vector<double> delays();

    /// How often a desk was told of changes.
    long told() const { return m_told; }
    /// Processor time of the thread.
    double seconds();

private:
    using Clock = std::chrono::steady_clock;

    void run();
    void read(std::size_t desk);
    void receive(int socket, wire::Frame frame);

    std::vector<std::unique_ptr<testservice::RawClient>> m_desks;
    std::vector<pollfd> m_sockets;
    std::vector<wire::FrameReader> m_readers;
    std::vector<char> m_bytes;
    std::atomic<bool> m_isStopping{false};
    std::atomic<bool> m_isExpecting{false};
    std::atomic<long> m_told{0};
    std::mutex m_mutex;                               ///< for the following
    std::map<std::string, Clock::time_point> m_begun; ///< by name
    std::vector<double> m_delays;
    std::thread m_thread;
};
