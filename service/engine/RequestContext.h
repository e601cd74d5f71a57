// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Users.h"

#include <functional>
#include <string>
#include <vector>

namespace service
{

/// A request in its transaction: the data of its server and the user who sent it.
struct RequestContext : ServerData {
    const StoredUser& user;
    std::int64_t now = 0;     ///< of an operation: milliseconds since 1970 UTC
    std::string session = {}; ///< of an operation: id of the log-in
    /// Of a trial, which finds out what an operation would do: collects the refusals. Nothing is stored then.
    std::vector<std::string>* objections = nullptr;
    std::function<bool()> isUnwanted = {}; ///< of a query: true when nobody waits for the answer any more; may be empty

    bool isTrial() const { return objections != nullptr; }
};

} // namespace service
