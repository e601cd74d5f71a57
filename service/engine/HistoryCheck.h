// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/ConsistencyCheck.h"

namespace service
{

/// Finds errors in the histories of a server's groups and configurations, differences between the histories and the
/// current state, and wrong counters of ids. Throws `StoreError`.
std::vector<Finding> checkHistory(const ServerData& data, const CheckOptions& options);

} // namespace service
