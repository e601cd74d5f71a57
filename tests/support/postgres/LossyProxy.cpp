// SPDX-License-Identifier: Apache-2.0
#include "support/postgres/LossyProxy.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace support
{

namespace
{

constexpr char SocketName[] = "/.s.PGSQL.5432";

sockaddr_un addressOf(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw std::runtime_error("the path of the socket is too long: " + path);
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

bool sendAll(int to, const char* bytes, std::size_t count)
{
    while (count > 0) {
        const ssize_t sent = ::send(to, bytes, count, MSG_NOSIGNAL);
        if (sent <= 0) {
            return false;
        }
        bytes += sent;
        count -= static_cast<std::size_t>(sent);
    }
    return true;
}

} // namespace

LossyProxy::LossyProxy(std::string folder, std::string serverFolder)
    : m_serverSocket(std::move(serverFolder) + SocketName), m_listener(::socket(AF_UNIX, SOCK_STREAM, 0))
{
    const sockaddr_un address = addressOf(folder + SocketName);
    if (::bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(m_listener, 64) != 0 || ::pipe(m_wake) != 0) {
        throw std::runtime_error("the proxy can't listen");
    }
    m_thread = std::thread([this] { serve(); });
}

LossyProxy::~LossyProxy()
{
    m_isOver = true;
    ::close(m_wake[1]);
    m_thread.join();
    for (const Pair& pair : m_pairs) {
        ::close(pair.client);
        ::close(pair.server);
    }
    ::close(m_listener);
    ::close(m_wake[0]);
}

void LossyProxy::loseAt(const std::string& text, ELoss loss)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lossAt = text;
    m_loss = loss;
}

bool LossyProxy::hasLost() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_lossAt.empty();
}

void LossyProxy::setAway(bool isAway)
{
    m_isAway = isAway;
    const int turn = m_turns;
    if (::write(m_wake[1], "x", 1) != 1) {
        throw std::runtime_error("the proxy doesn't hear");
    }
    while (m_turns == turn) {
        std::this_thread::yield();
    }
}

void LossyProxy::accept()
{
    const int client = ::accept(m_listener, nullptr, nullptr);
    if (client < 0) {
        return;
    }
    const sockaddr_un address = addressOf(m_serverSocket);
    const int server = m_isAway ? -1 : ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (server < 0 || ::connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ::close(client);
        if (server >= 0) {
            ::close(server);
        }
        return;
    }
    m_pairs.push_back({client, server});
}

bool LossyProxy::wantsLoss(const char* bytes, std::size_t count, ELoss& loss)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_lossAt.empty() || std::search(bytes, bytes + count, m_lossAt.begin(), m_lossAt.end()) == bytes + count) {
        return false;
    }
    m_lossAt.clear();
    loss = m_loss;
    return true;
}

bool LossyProxy::pass(Pair& pair, int from)
{
    char bytes[65536];
    const ssize_t count = ::recv(from, bytes, sizeof bytes, 0);
    if (count <= 0) {
        return false;
    }
    const auto size = static_cast<std::size_t>(count);
    if (from == pair.server) {
        return !pair.isMute && sendAll(pair.client, bytes, size);
    }
    ELoss loss;
    if (wantsLoss(bytes, size, loss)) {
        if (loss == ELoss::BeforeServer) {
            return false;
        }
        pair.isMute = true;
    }
    return sendAll(pair.server, bytes, size);
}

void LossyProxy::serve()
{
    while (!m_isOver) {
        std::vector<pollfd> watched = {{m_wake[0], POLLIN, 0}, {m_listener, POLLIN, 0}};
        for (const Pair& pair : m_pairs) {
            watched.push_back({pair.client, POLLIN, 0});
            watched.push_back({pair.server, POLLIN, 0});
        }
        ::poll(watched.data(), watched.size(), -1);
        char byte;
        if (watched[0].revents != 0 && ::read(m_wake[0], &byte, 1) <= 0) {
            return;
        }
        std::vector<Pair> open;
        for (std::size_t i = 0; i < m_pairs.size(); ++i) {
            Pair pair = m_pairs[i];
            const bool fromClient = watched[2 * i + 2].revents != 0;
            const bool fromServer = watched[2 * i + 3].revents != 0;
            if (!m_isAway && (!fromClient || pass(pair, pair.client)) && (!fromServer || pass(pair, pair.server))) {
                open.push_back(pair);
                continue;
            }
            ::close(pair.client);
            ::close(pair.server);
        }
        m_pairs.swap(open);
        if (watched[1].revents != 0) {
            accept();
        }
        if (watched[0].revents != 0) {
            ++m_turns;
        }
    }
}

} // namespace support
