// SPDX-License-Identifier: Apache-2.0
#include "service/engine/Servers.h"
#include "service/engine/MasterDataRules.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"
#include "service/store/Journal.h"
#include "service/store/Query.h"

#include <nvservice/EZvDataOperation.h>
#include <utils/Translation.h>

namespace service
{

using utils::EErrorCode;

SubSystem createServer(Connection& connection, const std::string& name, const std::string& systemTag,
                       const std::string& login, std::int64_t now)
{
    for (const std::string& problem :
         {textProblem(QString::fromStdString(name), utils::text("service", "分系统名称")),
          textProblem(QString::fromStdString(systemTag), utils::text("service", "系统标识"))}) {
        if (!problem.empty()) {
            throw Refusal(EErrorCode::InvalidValue, problem);
        }
    }
    {
        Query taken(connection, QStringLiteral("SELECT name FROM sub_system WHERE name = ? OR system_tag = ?"));
        if (taken.bind(name, systemTag).runAndNext()) {
            throw Refusal(EErrorCode::Duplicate,
                          taken.text(0) == name
                              ? utils::filled(utils::text("service", "分系统%1已存在"), quoted(name))
                              : utils::filled(utils::text("service", "系统标识%1已被使用"), quoted(systemTag)));
        }
    }
    const SubSystem server = insertSubSystem(connection, name, systemTag);
    bson::BSONObjBuilder document;
    document.append("name", name).append("systemTag", systemTag);
    AuditRow row;
    row.at = now;
    row.login = login;
    row.operation = static_cast<int>(nvservice::EZvDataOperation::Add);
    row.recordKey = "server|" + systemTag;
    row.after = document.obj();
    insertAudit({connection, server}, row);
    return server;
}

} // namespace service
