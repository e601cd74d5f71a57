// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace QAV
{

/// The state of the connection to one server.
enum class EConnectionState {
    Disconnected = 0, ///< not connected and not connecting; requests are answered with an error
    Connecting = 1,   ///< connecting or reconnecting
    Connected = 2,    ///< requests reach the server
};

} // namespace QAV
