// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/admin/Administration.h"

#include <string>

namespace service
{

/// Each change is one transaction with one audit row. Both throw `Refusal` (InvalidValue, Duplicate, NotFound) and
/// `StoreError`. `rename` returns false if the institution has that name already.
void addInstitution(Store& store, const SubSystem& server, const std::string& administrator, const std::string& id,
                    const std::string& name);
bool renameInstitution(Store& store, const SubSystem& server, const std::string& administrator, const std::string& id,
                       const std::string& name);

} // namespace service
