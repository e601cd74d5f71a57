// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/FindingKinds.h"
#include "service/store/Users.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace service
{

struct Finding {
    EFinding kind;
    std::int64_t groupId = 0;
    std::string groupName;
    std::string text; ///< in Chinese
};

struct CheckOptions {
    StoredUser
        viewer; ///< texts name only the accounts that this user may see, and the groups of the user's institution
    std::function<void(std::int64_t done, std::int64_t total)> progress = {}; ///< in groups
    std::function<void()> pulse = {}; ///< called all the time; may throw to end the check
};

inline void pulse(const CheckOptions& options)
{
    if (options.pulse) {
        options.pulse();
    }
}

/// Finds what breaks the current rules of the service, and contradictions, in the order of the groups. Changes nothing.
/// Throws `StoreError`.
std::vector<Finding> checkConsistency(const ServerData& data, const CheckOptions& options);

} // namespace service
