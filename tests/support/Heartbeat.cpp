// SPDX-License-Identifier: Apache-2.0
#include "support/Heartbeat.h"

#include <QAbstractEventDispatcher>

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
    // A timer would not do: it is served after every second turn if another timer is always due.
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &m_context,
                     [this] { beat(); });
    restart();
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
