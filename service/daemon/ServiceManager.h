// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>

namespace service::daemon
{

/// Notifications to the service manager of the machine. They do nothing if it did not start the program.

void notifyReady();
void notifyStopping();
/// The certificate is being reloaded; call `notifyReady` when that is done.
void notifyReloading();
void notifyAlive();
/// The maximum time between two calls of `notifyAlive`; zero: none are expected.
std::chrono::milliseconds watchdogInterval();

} // namespace service::daemon
