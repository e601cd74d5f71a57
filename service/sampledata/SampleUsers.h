// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Users.h"

#include <vector>

namespace service
{

/// The sample users in the form in which they are stored.
std::vector<StoredUser> sampleUserRows();

} // namespace service
