#include "service/admin/GroupRestore.h"
#include "service/admin/GroupPast.h"
#include "service/engine/GroupScope.h"
#include "service/engine/Refusal.h"
#include "service/engine/RiskConfigRules.h"
#include "service/engine/RiskOperations.h"
#include "service/engine/UserRights.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>

#include <QUuid>

namespace service
{

using nvservice::CAccountGroup;
using nvservice::CAccountGroupRCConfig;
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

std::string newSession()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
}

void fill(AuditRow& row, const AppliedChange& change)
{
    row.recordKey = change.recordKey;
    row.before = change.before;
    row.after = change.after;
}

/// Gives a group that was added again the configuration that went with it.
void addConfigOfDeleted(Administration& administration, const StoredUser& user, const QByteArray& body,
                        std::int32_t groupId)
{
    if (body.isEmpty())
        return;
    const RiskConfigPtr config = riskConfigOf(body, administration.server, groupId, 1);
    for (nvservice::CEmailRC& rule : config->emailRCs)
        rule.accountKey = std::to_string(groupId);
    const std::string session = newSession();
    AuditRow row = administration.row;
    row.operation = static_cast<int>(EZvDataOperation::Modify);
    row.dataType = DataType::GroupRiskConfig;
    fill(row, modifyRiskConfig({administration.connection, administration.server, user, session, row.at}, *config));
    AuditWriter(administration.connection, administration.server).insert(row);
}

RestoredGroup addAgain(Administration& administration, const StoredUser& user, CAccountGroup& record,
                       const std::vector<GroupRevision>& revisions)
{
    Connection& connection = administration.connection;
    administration.row.operation = static_cast<int>(EZvDataOperation::Add);
    record.groupId = -1;
    record.setRevision(0);
    fill(administration.row, applyGroupOperation(connection, administration.server, user, EZvDataOperation::Add, record,
                                                 administration.row.at));
    const std::optional<std::int64_t> id = findGroupByName(connection, administration.server, record.groupName);
    const auto groupId = static_cast<std::int32_t>(id.value());
    addConfigOfDeleted(administration, user, revisions.back().riskConfig, groupId);
    return {groupId, 1, true};
}

} // namespace

RestoredGroup restoreGroup(Store& store, const SubSystem& server, const std::string& administrator,
                           std::int64_t groupId, std::int64_t revision)
{
    const StoredUser user = userWithEveryRight(administrator);
    RestoredGroup restored;
    restored.isChanged = carryOut(store, server, administrator, [&](Administration& administration) {
        AuditRow& row = administration.row;
        row.operation = static_cast<int>(EZvDataOperation::Modify);
        row.dataType = DataType::AccountGroup;
        row.recordKey = riskConfigKey(server, static_cast<std::int32_t>(groupId));
        const PastGroup past = requireRevision(administration.connection, server, groupId, revision);
        row.after = nvservice::encodeRecord(*past.record);
        if (past.isDeletion())
            throw Refusal(EErrorCode::InvalidValue,
                          "修订" + std::to_string(revision) + "是账号组的删除，请选择更早的修订");
        const std::optional<StoredGroup> stored = findGroup(administration.connection, server, groupId);
        CAccountGroup record = *past.record;
        if (!stored) {
            restored =
                addAgain(administration, user, record, loadGroupRevisions(administration.connection, server, groupId));
            return;
        }
        restored = {stored->record->groupId, stored->record->revision(), false};
        if (isSame(record, *stored->record)) {
            row.before = row.after;
            return;
        }
        record.setRevision(stored->record->revision());
        fill(row,
             applyGroupOperation(administration.connection, server, user, EZvDataOperation::Modify, record, row.at));
        ++restored.revision;
    });
    return restored;
}

RestoredGroup restoreRiskConfig(Store& store, const SubSystem& server, const std::string& administrator,
                                std::int64_t groupId, std::int64_t revision)
{
    const StoredUser user = userWithEveryRight(administrator);
    const std::string session = newSession();
    RestoredGroup restored;
    restored.isChanged = carryOut(store, server, administrator, [&](Administration& administration) {
        AuditRow& row = administration.row;
        row.operation = static_cast<int>(EZvDataOperation::Modify);
        row.dataType = DataType::GroupRiskConfig;
        row.recordKey = riskConfigKey(server, static_cast<std::int32_t>(groupId));
        requireGroupInScope(administration.connection, server, user, groupId);
        const PastRiskConfig past = requireRiskRevision(administration.connection, server, groupId, revision);
        const std::optional<StoredRiskConfig> stored = findRiskConfig(administration.connection, server, groupId);
        row.after = nvservice::encodeRecord(*past.record);
        if (!stored)
            throw Refusal(EErrorCode::NotFound, "账号组没有风控配置");
        restored = {stored->record->groupId, stored->record->revision(), false};
        if (isSame(*past.record, *stored->record)) {
            row.before = row.after;
            return;
        }
        past.record->setRevision(stored->record->revision());
        fill(row, modifyRiskConfig({administration.connection, server, user, session, row.at}, *past.record));
        ++restored.revision;
    });
    return restored;
}

} // namespace service
