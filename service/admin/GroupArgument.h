#pragma once

#include "service/admin/CommandLine.h"
#include "service/store/GroupHistory.h"

namespace service
{

/// The time that an option names; throws `UsageError`. `toEnd` as in `readTime`.
std::int64_t requireTime(const Invocation& call, const char* option, bool toEnd);

/// The group that --id or --name names, one that is there or once was. Throws `UsageError`, or `Refusal` when there was
/// never one, or more than one.
std::int64_t requireGroupId(Invocation& call);

/// The options of commands that are about one group.
std::vector<QCommandLineOption> groupOptions();

} // namespace service
