// SPDX-License-Identifier: Apache-2.0
#include "service/engine/DataHandler.h"
#include "service/engine/Refusal.h"

namespace service
{

Records queryInstitutions(const RequestContext& context, const std::string& key)
{
    if (!key.empty()) {
        throw Refusal(utils::EErrorCode::InvalidValue, "机构查询条件无效");
    }
    const auto institutions = loadInstitutions(context.connection, context.server, context.user.institution);
    return {institutions.begin(), institutions.end()};
}

} // namespace service
