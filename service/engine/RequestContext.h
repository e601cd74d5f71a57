// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Users.h"

#include <string>

namespace service
{

/// Who asks for something, of which server and in which transaction.
struct RequestContext {
    Connection& connection;
    const SubSystem& server;
    const StoredUser& user;
    std::int64_t now = 0;     ///< of an operation: milliseconds since 1970 UTC
    std::string session = {}; ///< of an operation: id of the log-in
};

} // namespace service
