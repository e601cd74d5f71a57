#pragma once

namespace QAV
{

/// Where the connection of one server stands.
enum class EConnectionState {
    Disconnected = 0, ///< no connection, and none is being made; requests are answered with an error
    Connecting = 1,   ///< a connection is being made or made again
    Connected = 2,    ///< requests reach the server
};

} // namespace QAV
