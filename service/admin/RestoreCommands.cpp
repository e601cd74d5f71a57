// SPDX-License-Identifier: Apache-2.0
#include "service/admin/RestoreCommands.h"
#include "service/admin/Administration.h"
#include "service/admin/GroupArgument.h"
#include "service/admin/Table.h"
#include "service/engine/GroupScope.h"
#include "service/engine/Refusal.h"
#include "service/engine/Requests.h"
#include "service/engine/UserRights.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <utils/Translation.h>

#include <QCoreApplication>
#include <QUuid>

#include <functional>

namespace service
{

using nvservice::CAccountGroup;
using nvservice::EZvDataOperation;
using utils::EErrorCode;

namespace
{

namespace DataType = nvservice::DataType;

/// The group that a restored state belongs to now.
struct Restored {
    std::int32_t groupId = 0; ///< a new one for a deleted group, because ids are never reused
    std::int64_t revision = 0;
};

/// True if two states of a record differ in their revisions only.
template <typename Record>
bool isSame(const Record& a, const Record& b)
{
    Record x = a;
    Record y = b;
    x.setRevision(0);
    y.setRevision(0);
    return nvservice::encodeRecord(x).binaryEqual(nvservice::encodeRecord(y));
}

void fill(AuditRow& row, const AppliedChange& change)
{
    row.recordKey = change.recordKey;
    row.before = change.before;
    row.after = change.after;
}

/// Restores the configuration that was deleted with the group.
void addConfigOfDeleted(const Administration& administration, const RequestContext& context, const QByteArray& body,
                        std::int32_t groupId)
{
    if (body.isEmpty()) {
        return;
    }
    const RiskConfigPtr config = riskConfigOf(body, context.server, groupId, 1);
    for (nvservice::CEmailRC& rule : config->emailRCs) {
        rule.accountKey = std::to_string(groupId);
    }
    AuditRow row = administration.row;
    row.operation = static_cast<int>(EZvDataOperation::Modify);
    row.dataType = DataType::GroupRiskConfig;
    fill(row, applyOperation(context, row.dataType, EZvDataOperation::Modify, *config));
    insertAudit(context, row);
}

Restored addAgain(Administration& administration, const RequestContext& context, CAccountGroup record,
                  const std::vector<GroupRevision>& revisions)
{
    administration.row.operation = static_cast<int>(EZvDataOperation::Add);
    record.groupId = -1;
    record.setRevision(0);
    const AppliedChange change = applyOperation(context, DataType::AccountGroup, EZvDataOperation::Add, record);
    fill(administration.row, change);
    addConfigOfDeleted(administration, context, revisions.back().riskConfig, change.newId);
    return {change.newId, 1};
}

/// Stores a past state over the stored one unless they are the same.
template <typename Record>
Restored putBack(AuditRow& row, const RequestContext& context, Record past, const Record& stored)
{
    if (isSame(past, stored)) {
        row.before = row.after;
        return {stored.groupId, stored.revision()};
    }
    past.setRevision(stored.revision());
    fill(row, applyOperation(context, row.dataType, EZvDataOperation::Modify, past));
    return {stored.groupId, stored.revision() + 1};
}

Restored restoreGroup(Administration& administration, const RequestContext& context, std::int64_t groupId,
                      std::int64_t revision)
{
    const PastGroup past = requireRevision(context, groupId, revision);
    administration.row.after = nvservice::encodeRecord(*past.record);
    if (past.isDeletion()) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "修订%1是账号组的删除，请选择更早的修订"), revision));
    }
    const std::optional<StoredGroup> stored = findGroup(context, groupId);
    return stored ? putBack(administration.row, context, *past.record, *stored->record)
                  : addAgain(administration, context, *past.record, loadGroupRevisions(context, groupId));
}

Restored restoreRiskConfig(Administration& administration, const RequestContext& context, std::int64_t groupId,
                           std::int64_t revision)
{
    requireGroupInScope(context, groupId);
    const PastRiskConfig past = requireRiskRevision(context, groupId, revision);
    const std::optional<StoredRiskConfig> stored = findRiskConfig(context, groupId);
    administration.row.after = nvservice::encodeRecord(*past.record);
    if (!stored) {
        throw Refusal(EErrorCode::NotFound, utils::text("service", "账号组没有风控配置"));
    }
    return putBack(administration.row, context, *past.record, *stored->record);
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
