// SPDX-License-Identifier: Apache-2.0
#include "service/admin/GroupArgument.h"
#include "service/admin/Times.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"

namespace service
{

using utils::EErrorCode;

namespace
{

std::int64_t groupOfName(const ServerData& data, const std::string& name)
{
    const std::optional<std::int64_t> present = findGroupByName(data, name);
    if (present) {
        return *present;
    }
    const std::vector<std::int64_t> past = findGroupsEverNamed(data, name);
    if (past.empty()) {
        throw Refusal(EErrorCode::NotFound, "没有名为" + quoted(name) + "的账号组");
    }
    if (past.size() == 1) {
        return past.front();
    }
    std::string ids;
    for (const std::int64_t id : past) {
        ids += (ids.empty() ? "" : "、") + std::to_string(id);
    }
    throw Refusal(EErrorCode::Duplicate, "曾有多个账号组名为" + quoted(name) + "，请用 --id 指定：" + ids);
}

} // namespace

std::int64_t requireTime(const Invocation& call, const char* option, bool toEnd)
{
    const std::optional<std::int64_t> time = readTime(call.value(option), toEnd);
    if (!time) {
        throw UsageError(QStringLiteral("--%1 不是有效的时间：%2（例如 2026-01-05 09:30）")
                             .arg(QLatin1String(option), call.value(option)));
    }
    return *time;
}

std::int64_t requireGroupId(Invocation& call)
{
    if (call.isSet("id") == call.isSet("name")) {
        throw UsageError(QStringLiteral("请用 --id 或 --name 指定账号组"));
    }
    const ServerData data = call.data();
    if (call.isSet("name")) {
        return groupOfName(data, call.requiredValue("name").toStdString());
    }
    const std::int64_t id = call.number("id", 0);
    if (!findGroupHead(data, id) && loadGroupRevisions(data, id).empty()) {
        throw Refusal(EErrorCode::NotFound, "没有编号为" + std::to_string(id) + "的账号组");
    }
    return id;
}

std::vector<QCommandLineOption> groupOptions()
{
    return {{"id", "The group, by its number.", "id"},
            {"name", "The group, by its name; a former name will do as long as only one group had it.", "name"}};
}

} // namespace service
