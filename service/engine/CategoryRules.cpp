// SPDX-License-Identifier: Apache-2.0
#include "service/engine/CategoryRules.h"
#include "service/engine/CategoryRights.h"
#include "service/engine/Objections.h"
#include "service/engine/TextRules.h"

#include <utils/Translation.h>

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
                          utils::filled(utils::text("service", "%1：证券分类（编号%2）不存在"), place, categoryId));
        }
        known = m_known.emplace(categoryId, *found).first;
    }
    const int right = rightOfCategorySysType(known->second.sysType);
    if (right == 0 || !m_context.user.has(right)) {
        throw Refusal(EErrorCode::PermissionDenied,
                      utils::filled(utils::text("service", "%1：您没有使用证券分类%2的权限"), place,
                                    quoted(known->second.categoryName)));
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
        service::require(m_context, [&] {
            const CCategoryInfo& category = require(id, place);
            if (category.categoryType == CCategoryInfo::InternalCategoryType) {
                throw Refusal(EErrorCode::InvalidValue,
                              utils::filled(utils::text("service", "%1：%2是内部分类，不能豁免"), place,
                                            quoted(category.categoryName)));
            }
        });
    }
}

} // namespace service
