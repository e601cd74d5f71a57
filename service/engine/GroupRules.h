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

/// Throws `Refusal` (Malformed, ResourceExhausted) for a record with too long texts, too many accounts or null
/// accounts. Other records can be encoded and audited.
void requireReasonableSize(const nvservice::CAccountGroup& group);

/// Throws `Refusal` (InvalidValue) for a name that is blank, too long, not UTF-8 or has invisible characters.
void requireValidName(const std::string& name);

/// Throws `Refusal` (OutOfScope, InvalidValue) unless the institution exists and the user may act for it. Returns its
/// name.
std::string requireValidInstitution(const RequestContext& context, const nvservice::CAccountGroup& group);

/// The first reason why an account may not be a member of a group, for any user. An account that was closed or excluded
/// after it joined may stay.
enum class EMemberProblem { None, OtherInstitution, Closed, Excluded };
EMemberProblem memberProblem(const StoredAccount& account, std::int32_t institutionOfGroup);

/// The stored accounts of the group, in the order of the record. Throws `Refusal` if there are none, or for an account
/// that is unknown, repeated, or of another server or institution. An account that is not in `present` must also be
/// open, not excluded, and of a type that the user may read. A trial returns the valid ones.
std::vector<StoredAccount> requireValidAccounts(const RequestContext& context, const nvservice::CAccountGroup& group,
                                                const std::vector<std::int64_t>& present);

} // namespace service
