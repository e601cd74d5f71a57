#pragma once

#include "service/admin/Administration.h"

#include <cstdint>
#include <string>

namespace service
{

struct RestoredGroup {
    std::int32_t groupId = 0; ///< another one for a group that had been deleted: ids are never used again
    std::int64_t revision = 0;
    bool isChanged = false; ///< false: it is as it was, and nothing was stored
};

/// Stores a past revision of a group as a new one, by the rules of today: an account that isn't in the group any more
/// has to be one that may enter it. A group that was deleted is added again, together with the configuration that went
/// with it. History and audit get what an ordinary change would give them; a refusal is audited. Throws `Refusal` and
/// `StoreError`.
RestoredGroup restoreGroup(Store& store, const SubSystem& server, const std::string& administrator,
                           std::int64_t groupId, std::int64_t revision);

/// The same for the configuration of a group that is there. A limit that isn't there any more gets a new id.
RestoredGroup restoreRiskConfig(Store& store, const SubSystem& server, const std::string& administrator,
                                std::int64_t groupId, std::int64_t revision);

} // namespace service
