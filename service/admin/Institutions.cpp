// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Institutions.h"
#include "service/engine/MasterDataRules.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"
#include "service/store/MasterData.h"

#include <nvservice/EZvDataOperation.h>

namespace service
{

using utils::EErrorCode;

namespace
{

/// Throws unless the name makes sense and no other institution has it.
void requireFreeName(Administration& administration, std::int64_t ownId, const std::string& name)
{
    const std::string problem = textProblem(QString::fromStdString(name), "机构名称");
    if (!problem.empty()) {
        throw Refusal(EErrorCode::InvalidValue, problem);
    }
    for (const auto& [id, taken] : loadInstitutionNames(administration)) {
        if (taken == name && id != ownId) {
            throw Refusal(EErrorCode::Duplicate, "机构名称" + quoted(name) + "已被机构" + std::to_string(id) + "使用");
        }
    }
}

std::int32_t requireNumber(const std::string& id)
{
    const std::optional<std::int32_t> number = masterDataNumber(QString::fromStdString(id));
    if (!number) {
        throw Refusal(EErrorCode::InvalidValue, "机构编号不是有效的编号：" + id);
    }
    return *number;
}

} // namespace

void addInstitution(Store& store, const SubSystem& server, const std::string& administrator, const std::string& id,
                    const std::string& name)
{
    carryOut(store, server, administrator, [&](Administration& administration) {
        AuditRow& row = administration.row;
        row.operation = static_cast<int>(nvservice::EZvDataOperation::Add);
        row.recordKey = institutionKey(id);
        const std::int32_t number = requireNumber(id);
        row.after = institutionDocument(server, number, name);
        if (findInstitutionName(administration, number)) {
            throw Refusal(EErrorCode::Duplicate, "机构" + id + "已存在");
        }
        requireFreeName(administration, number, name);
        putInstitution(administration, number, name);
    });
}

bool renameInstitution(Store& store, const SubSystem& server, const std::string& administrator, const std::string& id,
                       const std::string& name)
{
    return carryOut(store, server, administrator, [&](Administration& administration) {
        AuditRow& row = administration.row;
        row.operation = static_cast<int>(nvservice::EZvDataOperation::Modify);
        row.recordKey = institutionKey(id);
        const std::int32_t number = requireNumber(id);
        const std::optional<std::string> old = findInstitutionName(administration, number);
        if (!old) {
            throw Refusal(EErrorCode::NotFound, "机构" + id + "不存在");
        }
        row.before = institutionDocument(server, number, *old);
        row.after = institutionDocument(server, number, name);
        requireFreeName(administration, number, name);
        putInstitution(administration, number, name);
    });
}

} // namespace service
