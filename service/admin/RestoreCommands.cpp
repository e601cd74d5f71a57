// SPDX-License-Identifier: Apache-2.0
#include "service/admin/RestoreCommands.h"
#include "service/admin/Administration.h"
#include "service/admin/GroupArgument.h"
#include "service/admin/Table.h"
#include "service/engine/GroupRestore.h"
#include "service/engine/GroupScope.h"
#include "service/engine/UserRights.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <utils/Translation.h>

#include <QCoreApplication>
#include <QUuid>

#include <functional>

namespace service
{

using nvservice::EZvDataOperation;

namespace
{

namespace DataType = nvservice::DataType;

/// What to restore, over whatever is stored now.
nvservice::CGroupRestore restoreOf(const ServerData& data, std::int64_t groupId)
{
    nvservice::CGroupRestore wanted;
    wanted.groupId = static_cast<std::int32_t>(groupId);
    const std::optional<StoredGroup> stored = findGroup(data, groupId);
    const std::optional<StoredRiskConfig> config = findRiskConfig(data, groupId);
    wanted.seenGroupRevision = stored ? stored->record->revision() : 0;
    wanted.seenConfigRevision = config ? config->record->revision() : 0;
    return wanted;
}

Restored restoreGroup(Administration& administration, const RequestContext& context, std::int64_t groupId,
                      std::int64_t revision)
{
    administration.row.after = nvservice::encodeRecord(*requireRevision(context, groupId, revision).record);
    nvservice::CGroupRestore wanted = restoreOf(context, groupId);
    wanted.groupRevision = revision;
    wanted.configRevision = wanted.seenGroupRevision == 0 ? lastConfigRevision(context, groupId) : 0;
    return restoreGroup(context, wanted);
}

Restored restoreRiskConfig(Administration& administration, const RequestContext& context, std::int64_t groupId,
                           std::int64_t revision)
{
    requireGroupInScope(context, groupId);
    administration.row.after = nvservice::encodeRecord(*requireRiskRevision(context, groupId, revision).record);
    nvservice::CGroupRestore wanted = restoreOf(context, groupId);
    wanted.configRevision = revision;
    return restoreGroup(context, wanted);
}

/// Fills the row of the first change, and stores those of the others.
void audit(Administration& administration, const std::vector<AppliedChange>& changes)
{
    if (changes.empty()) {
        administration.row.before = administration.row.after;
        return;
    }
    const AuditRow row = administration.row;
    for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
        administration.row = auditRowOf(row, *change);
        if (std::next(change) != changes.rend()) {
            insertAudit(administration, administration.row);
        }
    }
}

/// Lets `work` restore a group or its configuration, and reports it.
int restore(Invocation& call, std::int64_t groupId, std::int32_t dataType, const QString& what,
            const std::function<Restored(Administration&, const RequestContext&)>& work)
{
    const Administrator administrator = administratorOf(call);
    const StoredUser user = userWithEveryRight(administrator.name);
    const std::string key = groupKey(administrator.server, static_cast<std::int32_t>(groupId));
    Restored restored;
    const bool isChanged = carryOut(administrator, EZvDataOperation::Modify, key, [&](Administration& administration) {
        administration.row.dataType = dataType;
        const std::string session = QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
        restored = work(administration, {administration, user, administration.row.at, session});
        audit(administration, restored.changes);
    });
    if (!isChanged) {
        return reportSaved(false);
    }
    if (restored.groupId != groupId) {
        printText(QCoreApplication::translate("service", "账号组%1已被删除，已重新添加为账号组%2\n")
                      .arg(QString::number(groupId), QString::number(restored.groupId)));
    } else {
        printText(QCoreApplication::translate("service", "%1已恢复，新的修订为%2\n")
                      .arg(what, QString::number(restored.revision)));
    }
    return Done;
}

void requireMoment(const Invocation& call)
{
    requireOneMoment(call);
    if (!call.isSet("at") && !call.isSet("revision")) {
        throw UsageError(QCoreApplication::translate("service", "请用 --revision 或 --at 指定要恢复的状态"));
    }
}

int runGroupRestore(Invocation& call)
{
    requireMoment(call);
    const std::int64_t id = requireGroupId(call);
    const std::int64_t revision =
        call.isSet("revision") ? call.number("revision", 0) : pastGroup(call, id).revision.revision;
    return restore(call, id, DataType::AccountGroup, QCoreApplication::translate("service", "账号组"),
                   [&](Administration& administration, const RequestContext& context) {
                       return restoreGroup(administration, context, id, revision);
                   });
}

int runRiskRestore(Invocation& call)
{
    requireMoment(call);
    const std::int64_t id = requireGroupId(call);
    const std::int64_t revision =
        call.isSet("revision") ? call.number("revision", 0) : pastConfig(call, id).record->revision();
    return restore(call, id, DataType::GroupRiskConfig, QCoreApplication::translate("service", "风控配置"),
                   [&](Administration& administration, const RequestContext& context) {
                       return restoreRiskConfig(administration, context, id, revision);
                   });
}

} // namespace

Command groupRestoreCommand()
{
    Command command =
        pastGroupCommand("group restore", QCoreApplication::translate("service", "将账号组过去的修订保存为新的修订"),
                         EStoreUse::Write, runGroupRestore);
    command.details =
        QStringList{QCoreApplication::translate(
                        "service", "按现在的规则检查：其间已销户、被排除或变更机构的账号会被拒绝，除非它仍在账号组中；"
                                   "已被其他账号组使用的名称和已不存在的机构也会被拒绝。此时不保存任何内容。"),
                    QCoreApplication::translate("service", "已删除的账号组会以新的编号重新添加，并带有当时的风控配置。"
                                                           "仍存在的账号组的配置保持不变，可用 risk restore 恢复。")};
    command.examples = QStringList{"group restore --server SH01 --id 17 --revision 3"};
    return command;
}

Command riskRestoreCommand()
{
    Command command = pastGroupCommand(
        "risk restore", QCoreApplication::translate("service", "将账号组风控配置过去的修订保存为新的修订"),
        EStoreUse::Write, runRiskRestore);
    command.details = QStringList{QCoreApplication::translate(
        "service", "按现在的规则检查：已不存在或已成为内部分类的分类会被拒绝，除非配置中仍有它。邮件规则是配置的一部分"
                   "。已删除的限额得到新的编号。修订 1 是每个账号组的初始配置。")};
    return command;
}

} // namespace service
