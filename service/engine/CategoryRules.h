// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/RequestContext.h"
#include "service/store/Securities.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace service
{

/// Judges the category ids of one configuration; looks each category up once. Every operation throws `Refusal`
/// (InvalidValue, PermissionDenied).
class CategoryRules
{
public:
    explicit CategoryRules(const RequestContext& context);

    /// A category that enters a configuration at `place`.
    const nvservice::CCategoryInfo& require(std::int32_t categoryId, const std::string& place);
    /// The exempt categories of a control; those in `stored` may stay.
    void requireExempt(const std::vector<std::int32_t>& sent, const std::vector<std::int32_t>& stored,
                       const std::string& place);

private:
    CategoryFinder m_finder;
    const StoredUser& m_user;
    std::unordered_map<std::int32_t, nvservice::CCategoryInfo> m_known;
};

} // namespace service
