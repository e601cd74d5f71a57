// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/RequestContext.h"
#include "service/store/Securities.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace service
{

/// Checks the category ids of one configuration. Reads each category once. All functions throw `Refusal` (InvalidValue,
/// PermissionDenied).
class CategoryRules
{
public:
    explicit CategoryRules(const RequestContext& context) : m_context(context) {}

    const RequestContext& context() const { return m_context; }

    /// A category that is new in a configuration. `place` begins the text of an error.
    const nvservice::CCategoryInfo& require(std::int32_t categoryId, const std::string& place);
    /// Checks the exempt categories of a control; those in `stored` may stay.
    void requireExempt(const std::vector<std::int32_t>& sent, const std::vector<std::int32_t>& stored,
                       const std::string& place);

private:
    const RequestContext& m_context;
    std::unordered_map<std::int32_t, nvservice::CCategoryInfo> m_known;
};

} // namespace service
