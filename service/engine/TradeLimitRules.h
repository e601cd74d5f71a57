#pragma once

#include <nvservice/CAccountGroupRCRule.h>

#include <functional>
#include <string>

namespace service
{

constexpr std::size_t MaxSecurityCodeLength = 32; ///< characters
constexpr int MaxSecurityNameLength = 64;         ///< characters

/// What is wrong with the code or the name of a security; empty: nothing.
std::string securityCodeProblem(const std::string& code);
std::string securityNameProblem(const std::string& name);

/// Calls `found` with the place (from 0) of every entry of a list that makes no sense, and why. Values that an entry of
/// `stored`, which may be null, has as well are accepted.
void findTradeLimitProblems(const nvservice::CTradeLimitList& list, const nvservice::CTradeLimitList* stored,
                            const std::function<void(std::size_t place, const std::string& why)>& found);

/// Codes that differ in case only are the same security.
std::string foldedSecurityCode(std::string code);

/// Throws `Refusal` (InvalidValue) for lists that make no sense. See `requireValidRiskConfig`.
void requireValidTradeLimits(const nvservice::CAccountGroupRCRule& sent, const nvservice::CAccountGroupRCRule& stored);

} // namespace service
