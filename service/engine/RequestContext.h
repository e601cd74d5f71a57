// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Users.h"

#include <string>

namespace service
{

/// A request in its transaction: the data of its server and the user who sent it.
struct RequestContext : ServerData {
    const StoredUser& user;
    std::int64_t now = 0;     ///< of an operation: milliseconds since 1970 UTC
    std::string session = {}; ///< of an operation: id of the log-in
};

} // namespace service
