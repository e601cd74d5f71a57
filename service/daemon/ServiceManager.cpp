// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/ServiceManager.h"

#include <systemd/sd-daemon.h>

#include <cstdint>

namespace service::daemon
{

void notifyReady()
{
    sd_notify(0, "READY=1");
}

void notifyStopping()
{
    sd_notify(0, "STOPPING=1");
}

void notifyReloading()
{
    sd_notify(0, "RELOADING=1");
}

void notifyAlive()
{
    sd_notify(0, "WATCHDOG=1");
}

std::chrono::milliseconds watchdogInterval()
{
    std::uint64_t microseconds = 0;
    if (sd_watchdog_enabled(0, &microseconds) <= 0) {
        return std::chrono::milliseconds(0);
    }
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::microseconds(microseconds));
}

} // namespace service::daemon
