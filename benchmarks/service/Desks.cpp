// SPDX-License-Identifier: Apache-2.0
#include "Desks.h"

#include "service/daemon/Installation.h"

#include "platform/wire/FieldNames.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <pthread.h>
#include <sys/socket.h>

namespace
{

constexpr int PollMilliseconds = 50;
constexpr std::chrono::seconds KeepAlive(10);

void write(int socket, const bson::BSONObj& message)
{
    if (::send(socket, message.objdata(), static_cast<std::size_t>(message.objsize()), MSG_NOSIGNAL) < 0) {
        std::perror("send");
    }
}

} // namespace

Desks::~Desks()
{
    m_isStopping = true;
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

bool Desks::open(int count, int port)
{
    for (int i = 0; i < count; ++i) {
        auto desk = std::make_unique<testservice::RawClient>();
        if (!testservice::enter(*desk, port)) {
            return false;
        }
        m_sockets.push_back({static_cast<int>(desk->socket().socketDescriptor()), POLLIN, 0});
        m_desks.push_back(std::move(desk));
    }
    m_readers.resize(m_desks.size(), wire::FrameReader(wire::LimitsAfterLogIn.bytes));
    m_bytes.resize(65536);
    m_thread = std::thread([this] { run(); });
    return true;
}

void Desks::listen()
{
    const bson::BSONObj message = wire::encode(wire::Listen{});
    for (const pollfd& socket : m_sockets) {
        write(socket.fd, message);
    }
}

void Desks::expect(const std::string& group)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_begun[group] = Clock::now();
    m_isExpecting = true;
}

std::vector<double> Desks::delays()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::sort(m_delays.begin(), m_delays.end());
    return m_delays;
}

double Desks::seconds()
{
    clockid_t clock{};
    timespec time{};
    if (::pthread_getcpuclockid(m_thread.native_handle(), &clock) == 0) {
        ::clock_gettime(clock, &time);
    }
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void Desks::run()
{
    const bson::BSONObj ping = wire::encode(wire::Ping{1});
    Clock::time_point pinged = Clock::now();
    while (!m_isStopping) {
        if (Clock::now() - pinged > KeepAlive) {
            pinged = Clock::now();
            for (const pollfd& socket : m_sockets) {
                write(socket.fd, ping);
            }
        }
        ::poll(m_sockets.data(), m_sockets.size(), PollMilliseconds);
        for (std::size_t desk = 0; desk < m_sockets.size(); ++desk) {
            if ((m_sockets[desk].revents & POLLIN) != 0) {
                read(desk);
            }
        }
    }
}

void Desks::read(std::size_t desk)
{
    const int socket = m_sockets[desk].fd;
    wire::FrameReader& reader = m_readers[desk];
    const ssize_t size = ::recv(socket, m_bytes.data(), m_bytes.size(), MSG_DONTWAIT);
    for (ssize_t taken = 0; taken < size;) {
        utils::NVError error;
        taken +=
            static_cast<ssize_t>(reader.feed(m_bytes.data() + taken, static_cast<std::size_t>(size - taken), error));
        if (reader.hasFrame()) {
            receive(socket, reader.take());
        }
    }
}

void Desks::receive(int socket, wire::Frame frame)
{
    const bool isChange = wire::kindOf(frame) == wire::ChangedType;
    m_told += isChange ? 1 : 0;
    if (isChange && !m_isExpecting) {
        return;
    }
    wire::Message message;
    wire::decode(std::move(frame), wire::LimitsAfterLogIn, message);
    if (const auto* ping = std::get_if<wire::Ping>(&message)) {
        return write(socket, wire::encode(wire::Pong{ping->id}));
    }
    const auto* changed = std::get_if<wire::Changed>(&message);
    if (!changed) {
        return;
    }
    const Clock::time_point now = Clock::now();
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const nvservice::CChangeInfoPtr& change : changed->changes) {
        const auto begun = m_begun.find(change->groupName);
        if (begun != m_begun.end()) {
            m_delays.push_back(std::chrono::duration<double, std::milli>(now - begun->second).count());
        }
    }
}
