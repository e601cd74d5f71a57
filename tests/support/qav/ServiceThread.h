// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace support
{

/// Waits until every callback that the service thread has to call by now has been called. Handles no events.
void awaitCallbacks();

/// The same, and handles what the callbacks have sent to this thread.
void settleCallbacks();

} // namespace support
