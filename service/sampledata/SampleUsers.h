#pragma once

#include "store/Users.h"

#include <vector>

namespace service
{

/// The sample users as they are stored.
std::vector<StoredUser> sampleUserRows();

} // namespace service
