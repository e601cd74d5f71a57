// SPDX-License-Identifier: Apache-2.0
#include "service/admin/BsonJson.h"
#include "service/admin/Commands.h"
#include "service/admin/GroupArgument.h"
#include "service/admin/RestoreCommands.h"
#include "service/admin/RiskText.h"
#include "service/admin/Table.h"
#include "service/admin/Times.h"
#include "service/engine/AccountRights.h"
#include "service/store/Query.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <nvservice/TypeManager.h>
#include <utils/Translation.h>

#include <QCoreApplication>
#include <QDateTime>

namespace service
{

namespace
{

QJsonObject jsonOf(const Change& change)
{
    return {{"by", Cell(change.login)}, {"at", isoTime(change.at)}};
}

QString textOfChange(const Change& change)
{
    return QCoreApplication::translate("service", "%1 于 %2").arg(shown(change.login), textOfTime(change.at));
}

/// A time for a result.
QString timeFor(const Invocation& call, std::int64_t at)
{
    return call.wantsJson() ? isoTime(at) : textOfTime(at);
}

std::string nameOf(nvservice::EZvDataOperation operation)
{
    return nvservice::TypeManager::getEnumItemName("nvservice::EZvDataOperation", static_cast<int>(operation), 0);
}

int listGroups(Invocation& call)
{
    const ServerData data = call.data();
    const auto institutions = loadInstitutionNames(data);
    Table table({{"id", QCoreApplication::translate("service", "编号")},
                 {"name", QCoreApplication::translate("service", "账号组名称")},
                 {"institution", QCoreApplication::translate("service", "所属机构")},
                 {"accounts", QCoreApplication::translate("service", "账号数")},
                 {"revision", QCoreApplication::translate("service", "修订")},
                 {"modifiedBy", QCoreApplication::translate("service", "修改人")},
                 {"modifiedAt", QCoreApplication::translate("service", "修改时间")}});
    Query query(data.connection,
                QStringLiteral("SELECT g.group_id, g.name, g.institution_id, g.revision, g.modified_by, g.modified_at,"
                               " (SELECT count(*) FROM account_group_member m WHERE m.server_id = g.server_id"
                               " AND m.group_id = g.group_id) FROM account_group g WHERE g.server_id = ?"
                               " ORDER BY g.group_id"));
    query.bind(data.server.id);
    for (query.run(); query.next();) {
        const auto institution = query.isNull(2) ? institutions.end() : institutions.find(query.integer(2));
        table.add({query.integer(0), query.text(1),
                   institution == institutions.end() ? Cell() : Cell(institution->second), query.integer(6),
                   query.integer(3), query.text(4), timeFor(call, query.integer(5))});
    }
    return report(call, table);
}

int showGroupHistory(Invocation& call)
{
    const std::int64_t id = requireGroupId(call);
    Table table({{"revision", QCoreApplication::translate("service", "修订")},
                 {"at", QCoreApplication::translate("service", "时间")},
                 {"by", QCoreApplication::translate("service", "用户")},
                 {"operation", QCoreApplication::translate("service", "操作")},
                 {"name", QCoreApplication::translate("service", "账号组名称")},
                 {"institutionId", QCoreApplication::translate("service", "机构编号")},
                 {"accounts", QCoreApplication::translate("service", "账号数")}});
    for (const GroupRevision& each : loadGroupRevisions(call.data(), id)) {
        table.add({each.revision, timeFor(call, each.change.at), each.change.login, nameOf(each.operation), each.name,
                   each.institution, each.accountRows.size()});
    }
    return report(call, table);
}

int showRiskHistory(Invocation& call)
{
    const std::int64_t id = requireGroupId(call);
    Table table({{"revision", QCoreApplication::translate("service", "修订")},
                 {"at", QCoreApplication::translate("service", "时间")},
                 {"by", QCoreApplication::translate("service", "用户")},
                 {"saved", QCoreApplication::translate("service", "保存内容")}});
    for (const RiskRevision& each : loadRiskRevisions(call.data(), id)) {
        const bool isEmail = each.dataType == nvservice::DataType::EmailRule;
        table.add({each.revision, timeFor(call, each.change.at), each.change.login,
                   isEmail ? utils::text("service", "邮件规则") : utils::text("service", "风控配置")});
    }
    return report(call, table);
}

QString textOf(const PastRiskConfig& config)
{
    const QString change = config.lastChange
                               ? QCoreApplication::translate("service", "%1 保存").arg(textOfChange(*config.lastChange))
                               : QCoreApplication::translate("service", "初始配置");
    return QCoreApplication::translate("service", "风控配置 修订%1（%2）\n%3")
        .arg(QString::number(config.record->revision()), change, configText(*config.record));
}

QJsonObject jsonOf(const PastRiskConfig& config)
{
    return {{"revision", Cell(config.record->revision())},
            {"change", config.lastChange ? QJsonValue(jsonOf(*config.lastChange)) : QJsonValue()},
            {"config", documentJson(nvservice::encodeRecord(*config.record))}};
}

QString textOf(const PastGroup& past)
{
    const nvservice::CAccountGroup& record = *past.record;
    QString result =
        QCoreApplication::translate("service", "账号组 %1“%2” 修订%3（%4 %5）\n所属机构：%6\n账号（%7个）\n")
            .arg(QString::number(record.groupId), shown(record.groupName), QString::number(record.revision()),
                 textOfChange(past.revision.change), shown(nameOf(past.revision.operation)),
                 record.institutionName.empty() ? QCoreApplication::translate("service", "无")
                                                : shown(record.institutionName),
                 QString::number(record.accounts.size()));
    for (const auto& account : record.accounts) {
        result += QStringLiteral("  %1 %2 %3\n")
                      .arg(shown(nameOfAccountType(account->brokerType)), shown(nvservice::accountDisplayID(account)),
                           shown(account->accountName));
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
    const QJsonObject json{{"revision", Cell(past.revision.revision)},
                           {"change", jsonOf(past.revision.change)},
                           {"deleted", past.isDeletion()},
                           {"group", documentJson(nvservice::encodeRecord(*past.record))},
                           {"risk", jsonOf(config)}};
    return report(call, json, textOf(past) + '\n' + textOf(config));
}

int showRisk(Invocation& call)
{
    const Transaction snapshot(call.data().connection, Transaction::EKind::Read);
    const PastRiskConfig config = pastConfig(call, requireGroupId(call));
    return report(call, jsonOf(config), textOf(config));
}

} // namespace

std::vector<Command> groupCommands()
{
    const Command list("group list", QCoreApplication::translate("service", "列出分系统的账号组"), EStoreUse::Read,
                       listGroups);
    const Command history =
        groupCommand("group history", QCoreApplication::translate("service", "列出账号组的修改，也包括已删除的账号组"),
                     EStoreUse::Read, showGroupHistory);
    Command show =
        pastGroupCommand("group show", QCoreApplication::translate("service", "显示账号组及其风控配置现在或过去的状态"),
                         EStoreUse::Read, showGroup);
    show.details = QStringList{
        QCoreApplication::translate("service", "账号和机构显示现在的名称；历史中保存的是当时的账号和机构。"),
        QCoreApplication::translate("service", "使用 --revision 时显示该次修改当时的配置。")};
    show.examples = QStringList{"group show --server SH01 --id 17 --at '2026-01-05 09:30'"};
    const Command riskHistory =
        groupCommand("risk history", QCoreApplication::translate("service", "列出账号组风控配置的修改"),
                     EStoreUse::Read, showRiskHistory);
    const Command riskShow =
        pastGroupCommand("risk show", QCoreApplication::translate("service", "显示账号组的风控配置现在或过去的状态"),
                         EStoreUse::Read, showRisk);
    return {list, history, show, groupRestoreCommand(), riskHistory, riskShow, riskRestoreCommand()};
}

} // namespace service
