#pragma once

namespace support
{

/// Waits until every callback that the service thread has to call by now has been called, and handles what it has sent
/// to this thread.
void settleCallbacks();

} // namespace support
