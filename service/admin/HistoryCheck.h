// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/admin/ConsistencyCheck.h"

namespace service
{

struct SubSystem;

/// Finds errors in the histories of a server's groups and configurations, differences between the histories and the
/// current state, and wrong counters of ids. Throws `StoreError`.
std::vector<Finding> checkHistory(Connection& connection, const SubSystem& server);

} // namespace service
