// SPDX-License-Identifier: Apache-2.0
#include "service/admin/GroupArgument.h"
#include "service/admin/Times.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"

#include <utils/Translation.h>

#include <QCoreApplication>
#include <QDateTime>

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
        throw Refusal(EErrorCode::NotFound, utils::filled(utils::text("service", "没有名为%1的账号组"), quoted(name)));
    }
    if (past.size() == 1) {
        return past.front();
    }
    std::string ids;
    for (const std::int64_t id : past) {
        ids += (ids.empty() ? std::string() : utils::text("service", "、")) + std::to_string(id);
    }
    throw Refusal(EErrorCode::Duplicate,
                  utils::filled(utils::text("service", "曾有多个账号组名为%1，请用 --id 指定：%2"), quoted(name), ids));
}

/// The time that --at names; without it the current time.
std::int64_t momentOf(const Invocation& call)
{
    return call.isSet("at") ? requireTime(call, "at", true) : QDateTime::currentMSecsSinceEpoch();
}

} // namespace

std::int64_t requireTime(const Invocation& call, const char* option, bool toEnd)
{
    const std::optional<std::int64_t> time = readTime(call.value(option), toEnd);
    if (!time) {
        throw UsageError(QCoreApplication::translate("service", "--%1 不是有效的时间：%2（例如 2026-01-05 09:30）")
                             .arg(QLatin1String(option), call.value(option)));
    }
    return *time;
}

void requireOneMoment(const Invocation& call)
{
    if (call.isSet("at") && call.isSet("revision")) {
        throw UsageError(QCoreApplication::translate("service", "--at 和 --revision 只能选一个"));
    }
}

std::int64_t requireGroupId(Invocation& call)
{
    const ServerData data = call.data();
    if (call.isSet("id") == call.isSet("name")) {
        throw UsageError(QCoreApplication::translate("service", "请用 --id 或 --name 指定账号组"));
    }
    if (call.isSet("name")) {
        return groupOfName(data, call.requiredValue("name").toStdString());
    }
    const std::int64_t id = call.number("id", 0);
    if (!findGroupHead(data, id) && loadGroupRevisions(data, id).empty()) {
        throw Refusal(EErrorCode::NotFound, utils::filled(utils::text("service", "没有编号为%1的账号组"), id));
    }
    return id;
}

Command groupCommand(const char* name, const QString& summary, EStoreUse use, std::function<int(Invocation&)> run)
{
    Command command(name, summary, use, std::move(run));
    command.options = {
        {"id", QCoreApplication::translate("service", "账号组的编号"), "id"},
        {"name", QCoreApplication::translate("service", "账号组的名称，也可以是只有一个账号组用过的旧名称"), "name"}};
    return command;
}

Command pastGroupCommand(const char* name, const QString& summary, EStoreUse use, std::function<int(Invocation&)> run)
{
    Command command = groupCommand(name, summary, use, std::move(run));
    command.options.push_back(
        {"at",
         QCoreApplication::translate(
             "service", "该时间的状态：2026-01-05（当天结束时）、'2026-01-05 09:30'、'2026-01-05 09:30:15'"),
         "time"});
    command.options.push_back({"revision", QCoreApplication::translate("service", "该修订的状态"), "number"});
    return command;
}

PastGroup pastGroup(Invocation& call, std::int64_t id)
{
    requireOneMoment(call);
    return call.isSet("revision") ? requireRevision(call.data(), id, call.number("revision", 0))
                                  : requireGroupAt(call.data(), id, momentOf(call));
}

PastRiskConfig pastConfig(Invocation& call, std::int64_t id)
{
    requireOneMoment(call);
    if (call.isSet("revision")) {
        return requireRiskRevision(call.data(), id, call.number("revision", 0));
    }
    const std::int64_t at = momentOf(call);
    requireGroupAt(call.data(), id, at);
    return riskConfigAt(call.data(), id, at);
}

} // namespace service
