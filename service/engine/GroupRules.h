// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/RequestContext.h"
#include "service/store/Groups.h"

#include <nvservice/CAccountGroup.h>

#include <string>
#include <vector>

namespace service
{

constexpr int MaxGroupNameLength = 64; ///< characters
constexpr std::size_t MaxGroupAccounts = 10000;

/// Throws `Refusal` (Malformed, ResourceExhausted) for a record that is not worth a look: too long, too many accounts,
/// null accounts. What passes can be encoded and audited.
void requireReasonableSize(const nvservice::CAccountGroup& group);

/// Throws `Refusal` (InvalidValue): nothing to see in it, invisible characters, too long, not UTF-8.
void requireValidName(const std::string& name);

/// Throws `Refusal` (OutOfScope, InvalidValue) unless the institution exists and the user may act for it. Gives the
/// institution's name.
std::string requireValidInstitution(const RequestContext& context, const nvservice::CAccountGroup& group);

/// What stands against an account in a group, whoever asks; the first that applies. One that was closed or excluded
/// since it came into its group may stay there.
enum class EMemberProblem { None, OtherInstitution, Closed, Excluded };
EMemberProblem memberProblem(const StoredAccount& account, std::int32_t institutionOfGroup);

/// The group's accounts as the store has them, in the order of the record. Throws `Refusal`: none, unknown, twice, of
/// another server or institution; and for an account that is not in `present` yet: closed, excluded, of a type that
/// the user may not read.
std::vector<StoredAccount> requireValidAccounts(const RequestContext& context, const nvservice::CAccountGroup& group,
                                                const std::vector<std::int64_t>& present);

} // namespace service
