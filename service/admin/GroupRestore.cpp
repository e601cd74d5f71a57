// SPDX-License-Identifier: Apache-2.0
#include "service/admin/GroupRestore.h"
#include "service/admin/GroupPast.h"
#include "service/engine/GroupScope.h"
#include "service/engine/Refusal.h"
#include "service/engine/Requests.h"
#include "service/engine/UserRights.h"
#include "service/store/RiskConfigs.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>

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

/// The documents of two states of a record are the same but for the revision.
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

/// Gives a group that was added again the configuration that went with it.
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

RestoredGroup addAgain(Administration& administration, const RequestContext& context, CAccountGroup record,
                       const std::vector<GroupRevision>& revisions)
{
    administration.row.operation = static_cast<int>(EZvDataOperation::Add);
    record.groupId = -1;
    record.setRevision(0);
    const AppliedChange change = applyOperation(context, DataType::AccountGroup, EZvDataOperation::Add, record);
    fill(administration.row, change);
    addConfigOfDeleted(administration, context, revisions.back().riskConfig, change.newId);
    return {change.newId, 1, true};
}

/// Stores a past state over the stored one unless they are the same.
template <typename Record>
RestoredGroup putBack(AuditRow& row, const RequestContext& context, Record past, const Record& stored)
{
    if (isSame(past, stored)) {
        row.before = row.after;
        return {stored.groupId, stored.revision(), false};
    }
    past.setRevision(stored.revision());
    fill(row, applyOperation(context, row.dataType, EZvDataOperation::Modify, past));
    return {stored.groupId, stored.revision() + 1, false};
}

/// Has `work` restore a group, or its risk configuration, as a change of its own.
RestoredGroup restore(Store& store, const SubSystem& server, const std::string& administrator, std::int64_t groupId,
                      std::int32_t dataType,
                      const std::function<RestoredGroup(Administration&, const RequestContext&)>& work)
{
    const StoredUser user = userWithEveryRight(administrator);
    RestoredGroup restored;
    const bool isChanged = carryOut(store, server, administrator, [&](Administration& administration) {
        AuditRow& row = administration.row;
        row.operation = static_cast<int>(EZvDataOperation::Modify);
        row.dataType = dataType;
        row.recordKey = groupKey(server, static_cast<std::int32_t>(groupId));
        const std::string session = QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
        restored = work(administration, {administration, user, row.at, session});
    });
    restored.isChanged = isChanged;
    return restored;
}

} // namespace

RestoredGroup restoreGroup(Store& store, const SubSystem& server, const std::string& administrator,
                           std::int64_t groupId, std::int64_t revision)
{
    const auto work = [&](Administration& administration, const RequestContext& context) {
        const PastGroup past = requireRevision(context, groupId, revision);
        administration.row.after = nvservice::encodeRecord(*past.record);
        if (past.isDeletion()) {
            throw Refusal(EErrorCode::InvalidValue,
                          "修订" + std::to_string(revision) + "是账号组的删除，请选择更早的修订");
        }
        const std::optional<StoredGroup> stored = findGroup(context, groupId);
        return stored ? putBack(administration.row, context, *past.record, *stored->record)
                      : addAgain(administration, context, *past.record, loadGroupRevisions(context, groupId));
    };
    return restore(store, server, administrator, groupId, DataType::AccountGroup, work);
}

RestoredGroup restoreRiskConfig(Store& store, const SubSystem& server, const std::string& administrator,
                                std::int64_t groupId, std::int64_t revision)
{
    const auto work = [&](Administration& administration, const RequestContext& context) {
        requireGroupInScope(context, groupId);
        const PastRiskConfig past = requireRiskRevision(context, groupId, revision);
        const std::optional<StoredRiskConfig> stored = findRiskConfig(context, groupId);
        administration.row.after = nvservice::encodeRecord(*past.record);
        if (!stored) {
            throw Refusal(EErrorCode::NotFound, "账号组没有风控配置");
        }
        return putBack(administration.row, context, *past.record, *stored->record);
    };
    return restore(store, server, administrator, groupId, DataType::GroupRiskConfig, work);
}

} // namespace service
