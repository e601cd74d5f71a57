// SPDX-License-Identifier: Apache-2.0
#include "service/engine/DataHandler.h"
#include "service/engine/Refusal.h"

#include <nvservice/DataType.h>

#include <QString>

namespace service
{

using utils::EErrorCode;

const std::vector<DataHandler>& dataHandlers()
{
    namespace DataType = nvservice::DataType;
    static const std::vector<DataHandler> handlers = {accountGroupHandler(),
                                                      riskConfigHandler(),
                                                      emailRuleHandler(),
                                                      {DataType::Account, &queryAccounts},
                                                      {DataType::Category, &queryCategories},
                                                      {DataType::Institution, &queryInstitutions},
                                                      {DataType::Product, &queryProducts},
                                                      {DataType::Security, &querySecurities}};
    return handlers;
}

void requireRight(const StoredUser& user, int right, const std::string& what)
{
    if (!user.has(right)) {
        throw Refusal(EErrorCode::PermissionDenied, "您没有" + what + "的权限");
    }
}

std::int64_t requireId(const std::string& key, const std::string& what)
{
    bool isNumber = false;
    const qlonglong id = QString::fromStdString(key).toLongLong(&isNumber);
    if (!isNumber || std::to_string(id) != key) {
        throw Refusal(EErrorCode::InvalidValue, what + "查询条件无效");
    }
    return id;
}

} // namespace service
