#pragma once

#include "service/admin/Administration.h"

#include <string>

namespace service
{

/// Each is one transaction with one audit row. They throw `Refusal` (InvalidValue, Duplicate, NotFound) and
/// `StoreError`. `rename` gives false when the institution has that name already.
void addInstitution(Store& store, const SubSystem& server, const std::string& administrator, const std::string& id,
                    const std::string& name);
bool renameInstitution(Store& store, const SubSystem& server, const std::string& administrator, const std::string& id,
                       const std::string& name);

} // namespace service
