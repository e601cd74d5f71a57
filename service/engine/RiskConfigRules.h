// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/RequestContext.h"

#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CEmailRC.h>

#include <string>
#include <vector>

namespace service
{

constexpr std::size_t MaxTradeLimitEntries = 200000; ///< of all lists of a configuration; a document may end earlier
constexpr std::size_t MaxAssetsLimits = 10000;
constexpr std::size_t MaxExemptCategories = 50000; ///< of one control
constexpr std::size_t MaxEmailRules = 1000;
constexpr std::size_t MaxEmailRecipients = 100; ///< of one rule

constexpr char GroupRuleKind[] = "2"; ///< the kind of e-mail rules that belong to account groups

/// Throws `Refusal` (ResourceExhausted) if the record is too large.
void requireReasonableSize(const nvservice::CAccountGroupRCConfig& config);
void requireReasonableSize(const std::vector<nvservice::CEmailRC>& rules);

/// Throws `Refusal` (InvalidValue; PermissionDenied for a category whose system type the user may not use) for invalid
/// values. The text names the list, the place in it and the problem. A record may keep these if `stored` has them:
/// unknown categories in the same list, lists of unknown trade types, unknown values of an entry or a limit.
void requireValidRiskConfig(const RequestContext& context, const nvservice::CAccountGroupRCConfig& sent,
                            const nvservice::CAccountGroupRCConfig& stored);

/// The same for the e-mail rules of a group.
void requireValidEmailRules(const std::vector<nvservice::CEmailRC>& rules, std::int64_t groupId);

} // namespace service
