// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Administration.h"
#include "service/admin/Commands.h"
#include "service/admin/Table.h"
#include "service/engine/MasterDataRules.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"
#include "service/store/MasterData.h"

#include <utils/Translation.h>

#include <QCoreApplication>

namespace service
{

using nvservice::EZvDataOperation;
using utils::EErrorCode;

namespace
{

std::int32_t requireNumber(const std::string& id)
{
    const std::optional<std::int32_t> number = masterDataNumber(QString::fromStdString(id));
    if (!number) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "机构编号不是有效的编号：%1"), id));
    }
    return *number;
}

/// Throws unless the name is valid and no other institution has it.
void requireFreeName(const ServerData& data, std::int64_t ownId, const std::string& name)
{
    const std::string problem = textProblem(QString::fromStdString(name), utils::text("service", "机构名称"));
    if (!problem.empty()) {
        throw Refusal(EErrorCode::InvalidValue, problem);
    }
    for (const auto& [id, taken] : loadInstitutionNames(data)) {
        if (taken == name && id != ownId) {
            throw Refusal(EErrorCode::Duplicate,
                          utils::filled(utils::text("service", "机构名称%1已被机构%2使用"), quoted(name), id));
        }
    }
}

int listInstitutions(Invocation& call)
{
    Table table({{"id", QCoreApplication::translate("service", "机构编号")},
                 {"name", QCoreApplication::translate("service", "机构名称")}});
    for (const auto& institution : loadInstitutions(call.data(), std::nullopt)) {
        table.add({institution->institutionId, institution->name});
    }
    return report(call, table);
}

/// Adds an institution, or gives an existing one another name.
int saveInstitution(Invocation& call, EZvDataOperation operation)
{
    const std::string id = call.arguments()[0].toStdString();
    const std::string name = call.arguments()[1].toStdString();
    const bool isNew = operation == EZvDataOperation::Add;
    const auto put = [&](Administration& administration) {
        const std::int32_t number = requireNumber(id);
        const std::optional<std::string> old = findInstitutionName(administration, number);
        if (!isNew && !old) {
            throw Refusal(EErrorCode::NotFound, utils::filled(utils::text("service", "机构%1不存在"), id));
        }
        if (!isNew) {
            administration.row.before = institutionDocument(administration.server, number, *old);
        }
        administration.row.after = institutionDocument(administration.server, number, name);
        if (isNew && old) {
            throw Refusal(EErrorCode::Duplicate, utils::filled(utils::text("service", "机构%1已存在"), id));
        }
        requireFreeName(administration, number, name);
        putInstitution(administration, number, name);
    };
    return reportSaved(carryOut(administratorOf(call), operation, institutionKey(id), put));
}

} // namespace

std::vector<Command> institutionCommands()
{
    const Command list("institution list", QCoreApplication::translate("service", "列出分系统的机构"), EStoreUse::Read,
                       listInstitutions);
    Command add("institution add", QCoreApplication::translate("service", "添加机构"), EStoreUse::Write,
                [](Invocation& call) { return saveInstitution(call, EZvDataOperation::Add); });
    Command rename("institution rename", QCoreApplication::translate("service", "修改机构的名称"), EStoreUse::Write,
                   [](Invocation& call) { return saveInstitution(call, EZvDataOperation::Modify); });
    add.arguments = rename.arguments = {{"id", QCoreApplication::translate("service", "机构编号"), false},
                                        {"name", QCoreApplication::translate("service", "机构名称"), false}};
    return {list, add, rename};
}

} // namespace service
