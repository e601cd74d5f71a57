// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Administration.h"
#include "service/admin/Commands.h"
#include "service/admin/Table.h"
#include "service/engine/MasterDataRules.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"
#include "service/store/MasterData.h"

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
        throw Refusal(EErrorCode::InvalidValue, "机构编号不是有效的编号：" + id);
    }
    return *number;
}

/// Throws unless the name is valid and no other institution has it.
void requireFreeName(const ServerData& data, std::int64_t ownId, const std::string& name)
{
    const std::string problem = textProblem(QString::fromStdString(name), "机构名称");
    if (!problem.empty()) {
        throw Refusal(EErrorCode::InvalidValue, problem);
    }
    for (const auto& [id, taken] : loadInstitutionNames(data)) {
        if (taken == name && id != ownId) {
            throw Refusal(EErrorCode::Duplicate, "机构名称" + quoted(name) + "已被机构" + std::to_string(id) + "使用");
        }
    }
}

int listInstitutions(Invocation& call)
{
    Table table({{"id", "机构编号"}, {"name", "机构名称"}});
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
            throw Refusal(EErrorCode::NotFound, "机构" + id + "不存在");
        }
        if (!isNew) {
            administration.row.before = institutionDocument(administration.server, number, *old);
        }
        administration.row.after = institutionDocument(administration.server, number, name);
        if (isNew && old) {
            throw Refusal(EErrorCode::Duplicate, "机构" + id + "已存在");
        }
        requireFreeName(administration, number, name);
        putInstitution(administration, number, name);
    };
    return reportSaved(carryOut(administratorOf(call), operation, institutionKey(id), put));
}

} // namespace

std::vector<Command> institutionCommands()
{
    const Command list("institution list", "List the institutions of a sub-system.", EStoreUse::Read, listInstitutions);
    Command add("institution add", "Add an institution.", EStoreUse::Write,
                [](Invocation& call) { return saveInstitution(call, EZvDataOperation::Add); });
    Command rename("institution rename", "Give an institution another name.", EStoreUse::Write,
                   [](Invocation& call) { return saveInstitution(call, EZvDataOperation::Modify); });
    add.arguments = rename.arguments = {{"id", "Its number.", false}, {"name", "Its name.", false}};
    return {list, add, rename};
}

} // namespace service
