// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/admin/CommandLine.h"

namespace service
{

// Both store a past revision as a new one, under the current rules, with history and audit as for an ordinary change.

/// An account that is no longer in the group must be allowed to join it. A deleted group is added again, together with
/// the configuration that was deleted with it.
Command groupRestoreCommand();
/// For the configuration of an existing group. A limit that no longer exists gets a new id.
Command riskRestoreCommand();

} // namespace service
