#pragma once

#include <nvservice/CAccountGroupRCRule.h>

namespace service
{

constexpr std::size_t MaxSecurityCodeLength = 32; ///< characters
constexpr int MaxSecurityNameLength = 64;         ///< characters

/// Throws `Refusal` (InvalidValue) for lists that make no sense. See `requireValidRiskConfig`.
void requireValidTradeLimits(const nvservice::CAccountGroupRCRule& sent, const nvservice::CAccountGroupRCRule& stored);

} // namespace service
