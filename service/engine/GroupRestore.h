// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/DataHandler.h"

#include <nvservice/CGroupRestore.h>

namespace service
{

/// What a restore did. In a trial: what it would do.
struct Restored {
    std::int32_t groupId = 0;           ///< a new one for a deleted group, because ids are never reused
    std::vector<AppliedChange> changes; ///< of the group and of its configuration; empty if they are that way already
    std::int64_t revision = 0;          ///< after the last change
};

/// Stores a past state of a group, of its configuration or of both as new revisions, by the operations that a user who
/// had read that state would send. A deleted group is added again; without a revision of the configuration it gets the
/// default one. Throws `Refusal` or `StoreError`.
Restored restoreGroup(const RequestContext& context, const nvservice::CGroupRestore& wanted);

/// The revision of the configuration that a group had last. 0 if that was the default configuration.
std::int64_t lastConfigRevision(const ServerData& data, std::int64_t groupId);

} // namespace service
