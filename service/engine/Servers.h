// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/MasterData.h"

#include <string>

namespace service
{

/// Stores a new server and its audit row in the caller's transaction. Throws `Refusal` (InvalidValue, Duplicate) or
/// `StoreError`.
SubSystem createServer(Connection& connection, const std::string& name, const std::string& systemTag,
                       const std::string& login, std::int64_t now);

} // namespace service
