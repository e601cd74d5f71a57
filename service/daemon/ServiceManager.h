#pragma once

#include <chrono>

namespace service::daemon
{

/// What the service manager of the machine is told; nothing when it did not start the program and waits for nothing.

void notifyReady();
void notifyStopping();
/// The certificate is being read anew; `notifyReady` ends it.
void notifyReloading();
void notifyAlive();
/// How often `notifyAlive` is expected at least; zero: not at all.
std::chrono::milliseconds watchdogInterval();

} // namespace service::daemon
