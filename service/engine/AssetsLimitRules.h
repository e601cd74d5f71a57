// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/CategoryRules.h"

#include <nvservice/CAssetsRC.h>

#include <vector>

namespace service
{

constexpr int MaxRemarkLength = 200;          ///< characters
constexpr double MaxThresholdPercent = 10000; ///< larger thresholds are typing errors
constexpr double MaxThresholdAmount = 1e13;

/// Throws `Refusal` (InvalidValue, PermissionDenied) for invalid limits. See `requireValidRiskConfig`.
void requireValidAssetsLimits(const std::vector<nvservice::CAssetsRC>& sent,
                              const std::vector<nvservice::CAssetsRC>& stored, CategoryRules& categories);

} // namespace service
