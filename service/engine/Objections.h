// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/Refusal.h"
#include "service/engine/RequestContext.h"

namespace service
{

constexpr std::size_t MaxObjections = 100; ///< of one trial; further ones are not collected

/// Runs a rule that may refuse an operation. In a trial the refusal is collected, and the next rule has its turn.
template <typename Rule>
void require(const RequestContext& context, Rule rule)
{
    try {
        rule();
    } catch (const Refusal& refusal) {
        if (!context.isTrial()) {
            throw;
        }
        if (context.objections->size() < MaxObjections) {
            context.objections->push_back(refusal.error().errorMsg());
        }
    }
}

} // namespace service
