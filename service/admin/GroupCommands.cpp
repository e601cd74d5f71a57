// SPDX-License-Identifier: Apache-2.0
#include "service/admin/BsonJson.h"
#include "service/admin/Commands.h"
#include "service/admin/GroupArgument.h"
#include "service/admin/GroupPast.h"
#include "service/admin/GroupRestore.h"
#include "service/admin/RiskText.h"
#include "service/admin/Table.h"
#include "service/admin/Times.h"
#include "service/engine/AccountRights.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <nvservice/TypeManager.h>

#include <QDateTime>

namespace service
{

using utils::EErrorCode;

namespace
{

QString text(const std::string& value)
{
    return QString::fromStdString(value);
}

QJsonObject jsonOf(const Change& change)
{
    return {{"by", text(change.login)}, {"at", isoTime(change.at)}};
}

QString textOfChange(const Change& change)
{
    return QStringLiteral("%1 于 %2").arg(shown(text(change.login)), textOfTime(change.at));
}

int listGroups(Invocation& call)
{
    const ServerData data = call.data();
    const auto institutions = loadInstitutionNames(data);
    Table table({{"id", "编号"},
                 {"name", "账号组名称"},
                 {"institution", "所属机构"},
                 {"accounts", "账号数"},
                 {"revision", "修订"},
                 {"modifiedBy", "修改人"},
                 {"modifiedAt", "修改时间"}});
    Query query(data.connection,
                QStringLiteral("SELECT g.group_id, g.name, g.institution_id, g.revision, g.modified_by, g.modified_at,"
                               " (SELECT count(*) FROM account_group_member m WHERE m.server_id = g.server_id"
                               " AND m.group_id = g.group_id) FROM account_group g WHERE g.server_id = ?"
                               " ORDER BY g.group_id"));
    query.bind(data.server.id);
    for (query.run(); query.next();) {
        const auto institution = query.isNull(2) ? institutions.end() : institutions.find(query.integer(2));
        const std::int64_t at = query.integer(5);
        table.add({static_cast<qint64>(query.integer(0)), text(query.text(1)),
                   institution == institutions.end() ? QJsonValue() : QJsonValue(text(institution->second)),
                   static_cast<qint64>(query.integer(6)), static_cast<qint64>(query.integer(3)), text(query.text(4)),
                   call.wantsJson() ? isoTime(at) : textOfTime(at)});
    }
    print(table, call.wantsJson());
    return Done;
}

int showGroupHistory(Invocation& call)
{
    const std::int64_t id = requireGroupId(call);
    Table table({{"revision", "修订"},
                 {"at", "时间"},
                 {"by", "用户"},
                 {"operation", "操作"},
                 {"name", "账号组名称"},
                 {"institutionId", "机构编号"},
                 {"accounts", "账号数"}});
    for (const GroupRevision& each : loadGroupRevisions(call.data(), id)) {
        table.add({static_cast<qint64>(each.revision),
                   call.wantsJson() ? isoTime(each.change.at) : textOfTime(each.change.at), text(each.change.login),
                   text(nvservice::TypeManager::getEnumItemName("nvservice::EZvDataOperation",
                                                                static_cast<int>(each.operation), 0)),
                   text(each.name),
                   each.institution ? QJsonValue(static_cast<qint64>(*each.institution)) : QJsonValue(),
                   static_cast<int>(each.accountRows.size())});
    }
    print(table, call.wantsJson());
    return Done;
}

int showRiskHistory(Invocation& call)
{
    const std::int64_t id = requireGroupId(call);
    Table table({{"revision", "修订"}, {"at", "时间"}, {"by", "用户"}, {"saved", "保存内容"}});
    for (const RiskRevision& each : loadRiskRevisions(call.data(), id)) {
        const bool isEmail = each.dataType == nvservice::DataType::EmailRule;
        table.add({static_cast<qint64>(each.revision),
                   call.wantsJson() ? isoTime(each.change.at) : textOfTime(each.change.at), text(each.change.login),
                   isEmail ? QStringLiteral("邮件规则") : QStringLiteral("风控配置")});
    }
    print(table, call.wantsJson());
    return Done;
}

void requireOneMoment(const Invocation& call)
{
    if (call.isSet("at") && call.isSet("revision")) {
        throw UsageError(QStringLiteral("--at 和 --revision 只能选一个"));
    }
}

/// The group that --at or --revision names; without both as it is now.
PastGroup pastGroup(Invocation& call, std::int64_t id)
{
    requireOneMoment(call);
    if (call.isSet("revision")) {
        return requireRevision(call.data(), id, call.number("revision", 0));
    }
    const std::int64_t at = call.isSet("at") ? requireTime(call, "at", true) : QDateTime::currentMSecsSinceEpoch();
    return requireGroupAt(call.data(), id, at);
}

/// The configuration that --at or --revision names; without both as it is now.
PastRiskConfig pastConfig(Invocation& call, std::int64_t id)
{
    requireOneMoment(call);
    if (call.isSet("revision")) {
        return requireRiskRevision(call.data(), id, call.number("revision", 0));
    }
    const std::int64_t at = call.isSet("at") ? requireTime(call, "at", true) : QDateTime::currentMSecsSinceEpoch();
    requireGroupAt(call.data(), id, at);
    return riskConfigAt(call.data(), id, at);
}

QString textOf(const PastRiskConfig& config)
{
    const QString change =
        config.lastChange ? textOfChange(*config.lastChange) + QStringLiteral(" 保存") : QStringLiteral("初始配置");
    return QStringLiteral("风控配置 修订%1（%2）\n%3")
        .arg(QString::number(config.record->revision()), change, configText(*config.record));
}

QJsonObject jsonOf(const PastRiskConfig& config)
{
    return {{"revision", static_cast<qint64>(config.record->revision())},
            {"change", config.lastChange ? QJsonValue(jsonOf(*config.lastChange)) : QJsonValue()},
            {"config", documentJson(nvservice::encodeRecord(*config.record))}};
}

QString textOf(const PastGroup& past)
{
    const nvservice::CAccountGroup& record = *past.record;
    QString result =
        QStringLiteral("账号组 %1“%2” 修订%3（%4 %5）\n所属机构：%6\n账号（%7个）\n")
            .arg(QString::number(record.groupId), shown(text(record.groupName)), QString::number(record.revision()),
                 textOfChange(past.revision.change),
                 text(nvservice::TypeManager::getEnumItemName("nvservice::EZvDataOperation",
                                                              static_cast<int>(past.revision.operation), 0)),
                 record.institutionName.empty() ? QStringLiteral("无") : shown(text(record.institutionName)),
                 QString::number(record.accounts.size()));
    for (const auto& account : record.accounts) {
        result += QStringLiteral("  %1 %2 %3\n")
                      .arg(text(nameOfAccountType(account->brokerType)),
                           shown(text(nvservice::accountDisplayID(account))), shown(text(account->accountName)));
    }
    return result;
}

int showGroup(Invocation& call)
{
    const Transaction snapshot(call.data().connection, Transaction::EKind::Read);
    const std::int64_t id = requireGroupId(call);
    const PastGroup past = pastGroup(call, id);
    const std::int64_t at = call.isSet("at")         ? requireTime(call, "at", true)
                            : call.isSet("revision") ? past.revision.change.at
                                                     : QDateTime::currentMSecsSinceEpoch();
    const PastRiskConfig config = riskConfigAt(call.data(), id, at);
    if (call.wantsJson()) {
        printJson(QJsonObject{{"revision", static_cast<qint64>(past.revision.revision)},
                              {"change", jsonOf(past.revision.change)},
                              {"deleted", past.isDeletion()},
                              {"group", documentJson(nvservice::encodeRecord(*past.record))},
                              {"risk", jsonOf(config)}});
    } else {
        printText(textOf(past) + '\n' + textOf(config));
    }
    return Done;
}

int showRisk(Invocation& call)
{
    const Transaction snapshot(call.data().connection, Transaction::EKind::Read);
    const PastRiskConfig config = pastConfig(call, requireGroupId(call));
    if (call.wantsJson()) {
        printJson(jsonOf(config));
    } else {
        printText(textOf(config));
    }
    return Done;
}

void requireMoment(const Invocation& call)
{
    requireOneMoment(call);
    if (!call.isSet("at") && !call.isSet("revision")) {
        throw UsageError(QStringLiteral("请用 --revision 或 --at 指定要恢复的状态"));
    }
}

int report(const RestoredGroup& restored, std::int64_t id, const char* what)
{
    if (!restored.isChanged) {
        printText(QStringLiteral("内容没有变化\n"));
    } else if (restored.groupId != id) {
        printText(QStringLiteral("账号组%1已被删除，已重新添加为账号组%2\n")
                      .arg(QString::number(id), QString::number(restored.groupId)));
    } else {
        printText(QStringLiteral("%1已恢复，新的修订为%2\n")
                      .arg(QString::fromUtf8(what), QString::number(restored.revision)));
    }
    return Done;
}

int runGroupRestore(Invocation& call)
{
    requireMoment(call);
    const SubSystem server = call.server();
    const std::int64_t id = requireGroupId(call);
    const std::int64_t revision =
        call.isSet("revision") ? call.number("revision", 0) : pastGroup(call, id).revision.revision;
    return report(restoreGroup(call.store(), server, call.administrator(), id, revision), id, "账号组");
}

int runRiskRestore(Invocation& call)
{
    requireMoment(call);
    const SubSystem server = call.server();
    const std::int64_t id = requireGroupId(call);
    const std::int64_t revision =
        call.isSet("revision") ? call.number("revision", 0) : pastConfig(call, id).record->revision();
    return report(restoreRiskConfig(call.store(), server, call.administrator(), id, revision), id, "风控配置");
}

Command makeCommand(const char* name, const char* summary, int (*run)(Invocation&))
{
    Command command;
    command.name = QLatin1String(name);
    command.summary = QLatin1String(summary);
    command.storeUse = EStoreUse::Read;
    command.hasServer = command.hasJson = true;
    command.run = run;
    return command;
}

Command aboutOneGroup(const char* name, const char* summary, int (*run)(Invocation&))
{
    Command command = makeCommand(name, summary, run);
    command.options = groupOptions();
    return command;
}

Command atOneMoment(const char* name, const char* summary, int (*run)(Invocation&))
{
    Command command = aboutOneGroup(name, summary, run);
    command.options.push_back(
        {"at", "As it was at this time: 2026-01-05 (its end), '2026-01-05 09:30', '2026-01-05 09:30:15'.", "time"});
    command.options.push_back({"revision", "As this revision left it.", "number"});
    return command;
}

Command restoring(const char* name, const char* summary, int (*run)(Invocation&))
{
    Command command = atOneMoment(name, summary, run);
    command.storeUse = EStoreUse::Write;
    command.hasJson = false;
    return command;
}

} // namespace

std::vector<Command> groupCommands()
{
    Command show =
        atOneMoment("group show", "Show a group and its risk configuration, now or as they were.", showGroup);
    show.details = QStringList{"Accounts and institutions are named as they are today; history keeps which they were.",
                               "With --revision the configuration is the one of the time of that change."};
    show.examples = QStringList{"group show --server SH01 --id 17 --at '2026-01-05 09:30'"};
    Command restore = restoring("group restore", "Store a past revision of a group as a new one.", runGroupRestore);
    restore.details = QStringList{
        "Today's rules apply: an account that was closed, excluded or moved meanwhile is refused unless it is still in "
        "the group, as are a name that another group has taken and an institution that is gone. Nothing is stored "
        "then.",
        "A group that was deleted is added again, with a new number and with the risk configuration that went with it. "
        "The configuration of a group that is there stays as it is; 'risk restore' restores that."};
    restore.examples = QStringList{"group restore --server SH01 --id 17 --revision 3"};
    Command riskRestore = restoring(
        "risk restore", "Store a past revision of a group's risk configuration as a new one.", runRiskRestore);
    riskRestore.details = QStringList{
        "Today's rules apply: a category that is gone or has become internal is refused unless the configuration still "
        "has it. E-mail rules are part of the configuration. Limits that are gone get a new number. Revision 1 is the "
        "configuration that every group begins with."};
    return {
        makeCommand("group list", "List the groups of a sub-system.", listGroups),
        aboutOneGroup("group history", "List the changes of a group, of one that is gone as well.", showGroupHistory),
        show,
        restore,
        aboutOneGroup("risk history", "List the changes of a group's risk configuration.", showRiskHistory),
        atOneMoment("risk show", "Show the risk configuration of a group, now or as it was.", showRisk),
        riskRestore};
}

} // namespace service
