// SPDX-License-Identifier: Apache-2.0
#include "support/Heartbeat.h"

#include <algorithm>
#include <ctime>

namespace support
{

namespace
{

double threadMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) * 1e-6;
}

} // namespace

Heartbeat::Heartbeat()
{
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { beat(); });
    restart();
    m_timer.start(1);
}

void Heartbeat::restart(double longestPause)
{
    m_last = threadMilliseconds();
    m_longest = longestPause;
}

void Heartbeat::beat()
{
    const double now = threadMilliseconds();
    m_longest = std::max(m_longest, now - m_last);
    m_last = now;
}

} // namespace support
