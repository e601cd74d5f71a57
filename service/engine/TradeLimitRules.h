// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/RequestContext.h"

#include <nvservice/CAccountGroupRCRule.h>

#include <functional>
#include <string>

namespace service
{

constexpr std::size_t MaxSecurityCodeLength = 32; ///< characters
constexpr int MaxSecurityNameLength = 64;         ///< characters

/// For messages: "期货".
std::string nameOfTraderType(nvservice::EZvTraderType type);
/// The Chinese name, for files.
std::string wordOfTraderType(nvservice::EZvTraderType type);

/// Why the code or the name of a security is invalid; empty if it is valid.
std::string securityCodeProblem(const std::string& code);
std::string securityNameProblem(const std::string& name);

/// An invalid entry of a list.
struct TradeLimitProblem {
    enum class EKind { BadValue, OnBothLists, Repeated };
    EKind kind;
    std::size_t place; ///< in the list, from 0
    std::string why;
};

/// Calls `found` with every problem of a list. Unknown values that the same entry of `stored` has are accepted;
/// `stored` may be null.
void findTradeLimitProblems(const nvservice::CTradeLimitList& list, const nvservice::CTradeLimitList* stored,
                            const std::function<void(const TradeLimitProblem&)>& found);

/// The code in upper case: codes that only differ in case are the same security.
std::string foldedSecurityCode(std::string code);

/// Throws `Refusal` (InvalidValue) for invalid lists. See `requireValidRiskConfig`.
void requireValidTradeLimits(const nvservice::CAccountGroupRCRule& sent, const nvservice::CAccountGroupRCRule& stored);

/// Throws `Refusal` (InvalidValue) for a new code in a list that is no security of the list's trade type or of any
/// type. If the server has no securities of that type, every code is accepted.
void requireKnownSecurities(const RequestContext& context, const nvservice::CAccountGroupRCRule& sent,
                            const nvservice::CAccountGroupRCRule& stored);

} // namespace service
