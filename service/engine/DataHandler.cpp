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
                                                      groupRestoreHandler(),
                                                      {DataType::Account, &queryAccounts},
                                                      {DataType::Audit, &queryAudit},
                                                      {DataType::Category, &queryCategories},
                                                      {DataType::Finding, &queryFindings},
                                                      {DataType::GroupHistory, &queryGroupHistory},
                                                      {DataType::GroupState, &queryGroupState},
                                                      {DataType::Institution, &queryInstitutions},
                                                      {DataType::Product, &queryProducts},
                                                      {DataType::Security, &querySecurities}};
    return handlers;
}

AuditRow auditRowOf(const AuditRow& attempt, const AppliedChange& change)
{
    AuditRow row = attempt;
    if (change.kind) {
        row.dataType = change.kind->dataType;
        row.operation = static_cast<int>(change.kind->operation);
    }
    row.recordKey = change.recordKey;
    row.before = change.before;
    row.after = change.after;
    return row;
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
