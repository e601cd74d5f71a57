// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/SignalWatcher.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace service::daemon
{

namespace
{

constexpr int Signals[] = {SIGTERM, SIGINT, SIGHUP};

int pipeEnds[2] = {-1, -1};

extern "C" void writeSignal(int number)
{
    const int before = errno;
    const auto byte = static_cast<char>(number);
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
    errno = before;
}

void handleSignals(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int number : Signals) {
        ::sigaction(number, &action, nullptr);
    }
}

} // namespace

SignalWatcher::SignalWatcher(Handler handler) : m_handler(std::move(handler))
{
    if (::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0) {
        qFatal("pipe2 failed");
    }
    m_notifier = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { readSignals(); });
    handleSignals(writeSignal);
}

SignalWatcher::~SignalWatcher()
{
    handleSignals(SIG_DFL);
    m_notifier.reset();
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
}

void SignalWatcher::readSignals()
{
    char byte = 0;
    while (::read(pipeEnds[0], &byte, 1) == 1) {
        m_handler(byte);
    }
}

} // namespace service::daemon
