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

/// "期货", as messages call a trade type.
std::string nameOfTraderType(nvservice::EZvTraderType type);

/// What is wrong with the code or the name of a security; empty: nothing.
std::string securityCodeProblem(const std::string& code);
std::string securityNameProblem(const std::string& name);

/// An entry of a list that makes no sense.
struct TradeLimitProblem {
    enum class EKind { BadValue, OnBothLists, Repeated };
    EKind kind;
    std::size_t place; ///< in the list, from 0
    std::string why;
};

/// Gives every problem of a list to `found`. Values that an entry of `stored`, which may be null, has as well are
/// accepted.
void findTradeLimitProblems(const nvservice::CTradeLimitList& list, const nvservice::CTradeLimitList* stored,
                            const std::function<void(const TradeLimitProblem&)>& found);

/// Codes that differ in case only are the same security.
std::string foldedSecurityCode(std::string code);

/// Throws `Refusal` (InvalidValue) for lists that make no sense. See `requireValidRiskConfig`.
void requireValidTradeLimits(const nvservice::CAccountGroupRCRule& sent, const nvservice::CAccountGroupRCRule& stored);

/// Throws `Refusal` (InvalidValue) for a code that enters a list and that the server's securities of the list's trade
/// type, or of any, don't have. Where there are no securities of that type every code is accepted.
void requireKnownSecurities(const RequestContext& context, const nvservice::CAccountGroupRCRule& sent,
                            const nvservice::CAccountGroupRCRule& stored);

} // namespace service
