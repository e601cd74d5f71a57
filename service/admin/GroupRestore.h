// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/admin/Administration.h"

#include <cstdint>
#include <string>

namespace service
{

struct RestoredGroup {
    std::int32_t groupId = 0; ///< a new one for a deleted group, because ids are never reused
    std::int64_t revision = 0;
    bool isChanged = false; ///< false: the state was the same already, and nothing was stored
};

/// Stores a past revision of a group as a new one, under the current rules: an account that is no longer in the group
/// must be allowed to join it. A deleted group is added again, together with the configuration that was deleted with
/// it. History and audit are written as for an ordinary change; a refusal is audited. Throws `Refusal` and
/// `StoreError`.
RestoredGroup restoreGroup(Store& store, const SubSystem& server, const std::string& administrator,
                           std::int64_t groupId, std::int64_t revision);

/// The same for the configuration of an existing group. A limit that no longer exists gets a new id.
RestoredGroup restoreRiskConfig(Store& store, const SubSystem& server, const std::string& administrator,
                                std::int64_t groupId, std::int64_t revision);

} // namespace service
