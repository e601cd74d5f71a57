// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/noncopyable.hpp>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace support
{

/// Stands between a PostgreSQL server and its clients and loses connections where a test wants it. Clients reach it
/// through the folder of its socket, as they reach the server.
class LossyProxy : private boost::noncopyable
{
public:
    enum class ELoss {
        BeforeServer, ///< the server never gets the message
        AfterServer,  ///< the server gets the message, the client never gets the answer
    };

    /// Both folders are those of sockets; the proxy's has to exist.
    LossyProxy(std::string folder, std::string serverFolder);
    ~LossyProxy();

    /// Loses the connection of the next client whose message contains the text; once.
    void loseAt(const std::string& text, ELoss loss);
    /// Whether the loss that was asked for has happened.
    bool hasLost() const;
    /// Closes all connections before it returns and, while it is away, every new one.
    void setAway(bool isAway);

private:
    struct Pair {
        int client;
        int server;
        bool isMute = false; ///< the client is lost as soon as the server answers
    };

    void serve();
    void accept();
    /// False when the pair is to be closed.
    bool pass(Pair& pair, int from);
    bool wantsLoss(const char* bytes, std::size_t count, ELoss& loss);

    std::string m_serverSocket;
    int m_listener = -1;
    int m_wake[2] = {-1, -1};
    std::atomic<bool> m_isOver{false};
    std::atomic<bool> m_isAway{false};
    std::atomic<int> m_turns{0}; ///< how often the thread has followed what it was told
    mutable std::mutex m_mutex;
    std::string m_lossAt; ///< empty: no loss is asked for
    ELoss m_loss = ELoss::BeforeServer;
    std::vector<Pair> m_pairs;
    std::thread m_thread;
};

} // namespace support
