// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/admin/CommandLine.h"
#include "service/engine/GroupPast.h"

namespace service
{

/// The time given by an option. `toEnd` as in `readTime`. Throws `UsageError`.
std::int64_t requireTime(const Invocation& call, const char* option, bool toEnd);

/// Throws `UsageError` if both --at and --revision are given.
void requireOneMoment(const Invocation& call);

/// The existing or deleted group given by --id or --name. Throws `UsageError`, or `Refusal` if there is none or more
/// than one.
std::int64_t requireGroupId(Invocation& call);

/// A command for one group: with --id and --name.
Command groupCommand(const char* name, const QString& summary, EStoreUse use, std::function<int(Invocation&)> run);
/// The same with --at and --revision.
Command pastGroupCommand(const char* name, const QString& summary, EStoreUse use, std::function<int(Invocation&)> run);

/// The group or its configuration as --at or --revision says; without both the current one. Throws `UsageError`,
/// `Refusal`.
PastGroup pastGroup(Invocation& call, std::int64_t id);
PastRiskConfig pastConfig(Invocation& call, std::int64_t id);

} // namespace service
