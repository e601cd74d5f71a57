#pragma once

#include "service/admin/ConsistencyCheck.h"

namespace service
{

struct SubSystem;

/// What is wrong with the histories of a server's groups and configurations, with what is stored of them today, and
/// with the counters of its ids. Throws `StoreError`.
std::vector<Finding> checkHistory(Connection& connection, const SubSystem& server);

} // namespace service
