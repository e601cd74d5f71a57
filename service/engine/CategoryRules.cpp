// SPDX-License-Identifier: Apache-2.0
#include "service/engine/CategoryRules.h"
#include "service/engine/CategoryRights.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"

#include <unordered_set>

namespace service
{

using nvservice::CCategoryInfo;
using utils::EErrorCode;

const CCategoryInfo& CategoryRules::require(std::int32_t categoryId, const std::string& place)
{
    auto known = m_known.find(categoryId);
    if (known == m_known.end()) {
        const std::optional<CCategoryInfo> found = findCategory(m_context, categoryId);
        if (!found) {
            throw Refusal(EErrorCode::InvalidValue,
                          place + "：证券分类（编号" + std::to_string(categoryId) + "）不存在");
        }
        known = m_known.emplace(categoryId, *found).first;
    }
    const int right = rightOfCategorySysType(known->second.sysType);
    if (right == 0 || !m_context.user.has(right)) {
        throw Refusal(EErrorCode::PermissionDenied,
                      place + "：您没有使用证券分类" + quoted(known->second.categoryName) + "的权限");
    }
    return known->second;
}

void CategoryRules::requireExempt(const std::vector<std::int32_t>& sent, const std::vector<std::int32_t>& stored,
                                  const std::string& place)
{
    const std::unordered_set<std::int32_t> already(stored.begin(), stored.end());
    for (const std::int32_t id : sent) {
        if (already.count(id) != 0) {
            continue;
        }
        const CCategoryInfo& category = require(id, place);
        if (category.categoryType == CCategoryInfo::InternalCategoryType) {
            throw Refusal(EErrorCode::InvalidValue,
                          place + "：" + quoted(category.categoryName) + "是内部分类，不能豁免");
        }
    }
}

} // namespace service
