// SPDX-License-Identifier: Apache-2.0
#include "service/engine/DataHandler.h"
#include "service/engine/Refusal.h"

#include <nvservice/DataType.h>
#include <utils/Translation.h>

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

void requireRight(const StoredUser& user, int right, const char* what)
{
    if (!user.has(right)) {
        throw Refusal(EErrorCode::PermissionDenied,
                      utils::filled(utils::text("service", "您没有%1的权限"), utils::text("service", what)));
    }
}

std::int64_t requireId(const std::string& key, const char* what)
{
    bool isNumber = false;
    const qlonglong id = QString::fromStdString(key).toLongLong(&isNumber);
    if (!isNumber || std::to_string(id) != key) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "%1查询条件无效"), utils::text("service", what)));
    }
    return id;
}

} // namespace service
