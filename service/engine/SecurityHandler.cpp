// SPDX-License-Identifier: Apache-2.0
#include "service/engine/DataHandler.h"
#include "service/store/Securities.h"

namespace service
{

Records querySecurities(const RequestContext& context, const std::string& key)
{
    std::optional<std::int64_t> traderType;
    if (!key.empty()) {
        traderType = requireId(key, "证券");
    }
    const auto securities = loadSecurities(context.connection, context.server, traderType);
    return {securities.begin(), securities.end()};
}

} // namespace service
