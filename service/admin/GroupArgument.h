// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/admin/CommandLine.h"
#include "service/store/GroupHistory.h"

namespace service
{

/// The time given by an option. `toEnd` as in `readTime`. Throws `UsageError`.
std::int64_t requireTime(const Invocation& call, const char* option, bool toEnd);

/// The existing or deleted group given by --id or --name. Throws `UsageError`, or `Refusal` if there is none or more
/// than one.
std::int64_t requireGroupId(Invocation& call);

/// The options of commands for one group.
std::vector<QCommandLineOption> groupOptions();

} // namespace service
