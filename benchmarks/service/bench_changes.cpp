// SPDX-License-Identifier: Apache-2.0
// Changes at many desks: how soon each of them is told of a change, what listening costs the operations of others, and
// the memory of a desk that listens. usage: bench_changes [<number of desks>]
#include "service/daemon/DaemonProcess.h"
#include "service/daemon/Installation.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace testservice;
using Clock = std::chrono::steady_clock;
namespace DataType = nvservice::DataType;

namespace
{

/// The desks, read by one thread.
class Desks
{
public:
    bool open(int count, int port)
    {
        for (int i = 0; i < count; ++i) {
            auto desk = std::make_unique<RawClient>();
            if (!enter(*desk, port)) {
                return false;
            }
            m_sockets.push_back({static_cast<int>(desk->socket().socketDescriptor()), POLLIN, 0});
            m_desks.push_back(std::move(desk));
        }
        m_readers.resize(m_desks.size(), wire::FrameReader(wire::LimitsAfterLogIn.bytes));
        m_thread = std::thread([this] { run(); });
        return true;
    }

    ~Desks()
    {
        m_isStopping = true;
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }

    void listen()
    {
        const bson::BSONObj message = wire::encode(wire::Listen{});
        for (const pollfd& socket : m_sockets) {
            write(socket.fd, message);
        }
    }

    /// The change under this name has been asked for.
    void expect(const std::string& name)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_begun[name] = Clock::now();
    }

    /// How long each desk waited for each expected change, in milliseconds, in ascending order.
    std::vector<double> delays()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::sort(m_delays.begin(), m_delays.end());
        return m_delays;
    }

private:
    static void write(int socket, const bson::BSONObj& message)
    {
        if (::send(socket, message.objdata(), static_cast<std::size_t>(message.objsize()), MSG_NOSIGNAL) < 0) {
            std::perror("send");
        }
    }

    void run()
    {
        std::vector<char> bytes(65536);
        while (!m_isStopping) {
            ::poll(m_sockets.data(), m_sockets.size(), 50);
            for (std::size_t i = 0; i < m_sockets.size(); ++i) {
                if ((m_sockets[i].revents & POLLIN) == 0) {
                    continue;
                }
                const ssize_t size = ::recv(m_sockets[i].fd, bytes.data(), bytes.size(), MSG_DONTWAIT);
                for (ssize_t taken = 0; taken < size;) {
                    utils::NVError error;
                    taken += static_cast<ssize_t>(
                        m_readers[i].feed(bytes.data() + taken, static_cast<std::size_t>(size - taken), error));
                    if (m_readers[i].hasFrame()) {
                        receive(m_sockets[i].fd, m_readers[i].take());
                    }
                }
            }
        }
    }

    void receive(int socket, wire::Frame frame)
    {
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

    std::vector<std::unique_ptr<RawClient>> m_desks;
    std::vector<pollfd> m_sockets;
    std::vector<wire::FrameReader> m_readers;
    std::thread m_thread;
    std::atomic<bool> m_isStopping{false};
    std::mutex m_mutex;
    std::map<std::string, Clock::time_point> m_begun;
    std::vector<double> m_delays;
};

bool add(RawClient& writer, const std::string& name)
{
    return writer
        .operate(DataType::AccountGroup, EZvDataOperation::Add, group(name, First, {future("8001")}), "op-" + name)
        .error.isSuccess();
}

/// Operations per second of four clients.
double throughput(int port, const std::string& phase, double seconds)
{
    std::atomic<int> done{0};
    std::vector<std::thread> writers;
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 4; ++i) {
        writers.emplace_back([&, i] {
            RawClient writer;
            if (!enter(writer, port)) {
                return;
            }
            for (int n = 0; timer.elapsed() < seconds * 1000; ++n) {
                done += add(writer, phase + std::to_string(i) + '-' + std::to_string(n)) ? 1 : 0;
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    return done * 1000.0 / static_cast<double>(timer.elapsed());
}

double residentKibibytes(qint64 process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/statm");
    double size = 0;
    double resident = 0;
    file >> size >> resident;
    return resident * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1024;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int count = argc > 1 ? std::atoi(argv[1]) : 1000;
    rlimit files{};
    ::getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = files.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &files);
    QTemporaryDir directory;
    Installation installation;
    DaemonProcess daemon(directory.path());
    daemon.configure(installation.fixture.location(), East, {}, {},
                     "[limits]\nconnections = 20000\nconnections_per_address = 20000\n");
    QString errors;
    if (!daemon.start(errors)) {
        std::fprintf(stderr, "%s\n", qPrintable(errors));
        return 1;
    }
    Desks desks;
    if (!desks.open(count, daemon.port())) {
        std::fprintf(stderr, "the desks cannot log in\n");
        return 1;
    }
    constexpr double Seconds = 6;
    throughput(daemon.port(), "warm", 2);
    const double silent = throughput(daemon.port(), "silent", Seconds);
    const double before = residentKibibytes(daemon.id());
    desks.listen();
    std::this_thread::sleep_for(std::chrono::seconds(2));
    const double after = residentKibibytes(daemon.id());
    const double listening = throughput(daemon.port(), "listening", Seconds);

    std::this_thread::sleep_for(std::chrono::seconds(2));
    RawClient writer;
    if (!enter(writer, daemon.port())) {
        return 1;
    }
    constexpr int Changes = 100;
    for (int i = 0; i < Changes; ++i) {
        const std::string name = "seen" + std::to_string(i);
        desks.expect(name);
        if (!add(writer, name)) {
            return 1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(73)); // so that it meets the readings at any moment
    }
    std::this_thread::sleep_for(std::chrono::seconds(3));
    const std::vector<double> delays = desks.delays();
    const std::size_t all = static_cast<std::size_t>(count) * Changes;
    std::printf("%d desks, %zu of %zu changes seen\n", count, delays.size(), all);
    if (delays.size() == all) {
        std::printf("seen after: median %.0f ms, p99 %.0f ms, last %.0f ms\n", delays[all / 2], delays[all * 99 / 100],
                    delays.back());
    }
    std::printf("operations per second: %.0f with silent desks, %.0f with listening ones: ratio %.2f\n", silent,
                listening, listening / silent);
    std::printf("memory of the daemon per listening desk: %.1f KiB\n", (after - before) / count);
    return delays.size() == all ? 0 : 1;
}
