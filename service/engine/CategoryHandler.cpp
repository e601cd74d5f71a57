// SPDX-License-Identifier: Apache-2.0
#include "service/engine/DataHandler.h"
#include "service/engine/Refusal.h"
#include "service/store/Securities.h"

namespace service
{

constexpr char EveryCategory[] = "-1_-1";

Records queryCategories(const RequestContext& context, const std::string& key)
{
    if (!key.empty() && key != EveryCategory) {
        throw Refusal(utils::EErrorCode::InvalidValue, "证券分类查询条件无效");
    }
    const auto categories = loadCategories(context.connection, context.server);
    return {categories.begin(), categories.end()};
}

} // namespace service
