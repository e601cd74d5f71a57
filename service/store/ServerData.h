// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Connection.h"

namespace service
{

/// The data of one server, as one connection reads and writes them.
struct ServerData {
    Connection& connection;
    const SubSystem& server;
};

} // namespace service
