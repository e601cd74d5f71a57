// SPDX-License-Identifier: Apache-2.0
#include "history/Changes.h"

#include <WQ/StringConversion.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CAuditEntry.h>
#include <nvservice/CChangeInfo.h>
#include <nvservice/DataType.h>
#include <nvservice/QueryCondition.h>

namespace QAV
{

namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;

namespace
{

constexpr int ChangesPerPage = 200;
/// Entries with their states may be large, and those of one millisecond are few.
constexpr int DetailsPerPage = 10;

} // namespace

bool HistoryChange::isGroup() const
{
    return dataType == DataType::AccountGroup;
}

bool HistoryChange::isConfig() const
{
    return dataType == DataType::GroupRiskConfig || dataType == DataType::EmailRule;
}

std::optional<HistoryChange> changeOf(const nvservice::IData& record)
{
    HistoryChange change;
    const auto take = [&change](const auto& of, std::int64_t at) {
        change.at = at;
        change.userId = of.userId;
        change.userName = of.userName;
        change.dataType = of.dataType;
        change.groupId = of.groupId;
        change.groupName = of.groupName;
        change.operation = of.operation;
    };
    if (const auto* const entry = dynamic_cast<const nvservice::CAuditEntry*>(&record)) {
        take(*entry, entry->at);
        change.entryId = entry->entryId;
        change.isDone = entry->outcome == 0;
        change.outcome = change.isDone ? QStringLiteral("成功") : QStringLiteral("被拒绝");
        change.remark = WQ::sToQs(entry->outcomeText);
        if (entry->attempts > 1) {
            change.remark = QStringLiteral("共%1次：%2").arg(QString::number(entry->attempts), change.remark);
        }
        return change;
    }
    if (const auto* const info = dynamic_cast<const nvservice::CChangeInfo*>(&record)) {
        take(*info, info->changedAt);
        change.revision = info->revision();
        change.outcome = QStringLiteral("成功");
        change.remark = QStringLiteral("修订%1").arg(info->revision());
        return change;
    }
    return std::nullopt;
}

QStringList headersOfChanges()
{
    return {QStringLiteral("时间"), QStringLiteral("用户"), QStringLiteral("账号组"), QStringLiteral("类型"),
            QStringLiteral("操作"), QStringLiteral("结果"), QStringLiteral("说明")};
}

QStringList textsOf(const HistoryChange& change)
{
    return {timeText(change.at),
            userText(change.userId, change.userName),
            WQ::sToQs(change.groupName),
            dataTypeText(change.dataType),
            operationText(change.operation),
            change.outcome,
            change.remark};
}

QString titleOf(const HistoryChange& change)
{
    const QString subject = change.groupName.empty() ? dataTypeText(change.dataType)
                                                     : QStringLiteral("%1“%2”").arg(dataTypeText(change.dataType),
                                                                                    WQ::sToQs(change.groupName));
    const QString refused = change.isDone ? QString() : QStringLiteral("，被拒绝");
    return QStringLiteral("%1 %2 %3 %4%5")
        .arg(timeText(change.at), userText(change.userId, change.userName), operationText(change.operation), subject,
             refused);
}

QueryPart queryOf(const HistorySearch& search, bool isAudit)
{
    QueryPart part;
    part.dataType = isAudit ? DataType::Audit : DataType::GroupHistory;
    part.key.set(QueryCondition::PageSize, ChangesPerPage);
    if (search.groupId >= 0) {
        part.key.set(QueryCondition::Group, search.groupId);
    }
    if (!search.user.isEmpty()) {
        part.key.set(QueryCondition::User, WQ::qsToS(search.user));
    }
    if (search.since) {
        part.key.set(QueryCondition::Since, *search.since);
    }
    if (search.until) {
        part.key.set(QueryCondition::Until, *search.until);
    }
    if (isAudit && search.dataType != 0) {
        part.key.set(QueryCondition::RecordType, search.dataType);
    }
    if (isAudit && search.outcome != EOutcome::Any) {
        part.key.set(QueryCondition::Outcome, search.outcome == EOutcome::Done ? "ok" : "refused");
    }
    return part;
}

bool fits(const HistorySearch& search, const HistoryChange& change)
{
    return search.dataType == 0 || search.dataType == change.dataType;
}

QueryPart stateQuery(const HistoryChange& change, std::int64_t revision)
{
    QueryPart part;
    part.dataType = DataType::GroupState;
    part.key.set(QueryCondition::Group, change.groupId)
        .set(change.isGroup() ? QueryCondition::GroupRevision : QueryCondition::ConfigRevision, revision);
    return part;
}

QueryPart stateQueryAt(std::int32_t groupId, std::optional<std::int64_t> at)
{
    QueryPart part;
    part.dataType = DataType::GroupState;
    part.key.set(QueryCondition::Group, groupId);
    if (at) {
        part.key.set(QueryCondition::At, *at);
    }
    return part;
}

QueryPart detailQuery(const HistoryChange& change)
{
    QueryPart part;
    part.dataType = DataType::Audit;
    part.entryId = change.entryId;
    part.key.set(QueryCondition::Since, change.at)
        .set(QueryCondition::Until, change.at)
        .set(QueryCondition::Details, 1)
        .set(QueryCondition::PageSize, DetailsPerPage);
    return part;
}

nvservice::IDataPtr recordOfKind(const HistoryChange& change, const std::vector<nvservice::IDataPtr>& records)
{
    for (const nvservice::IDataPtr& record : records) {
        const bool isGroup = dynamic_cast<const nvservice::CAccountGroup*>(record.get());
        const bool isConfig = dynamic_cast<const nvservice::CAccountGroupRCConfig*>(record.get());
        if ((isGroup && change.isGroup()) || (isConfig && change.isConfig())) {
            return record;
        }
    }
    return nullptr;
}

void RestoreTarget::add(const nvservice::IDataPtr& record)
{
    if (const auto* const group = dynamic_cast<const nvservice::CAccountGroup*>(record.get())) {
        groupId = group->groupId;
        groupRevision = group->revision();
    } else if (const auto* const config = dynamic_cast<const nvservice::CAccountGroupRCConfig*>(record.get())) {
        groupId = config->groupId;
        configRevision = config->revision();
    }
}

QueryPart previewQuery(const RestoreTarget& target)
{
    QueryPart part;
    part.dataType = DataType::GroupRestore;
    part.key.set(QueryCondition::Group, target.groupId);
    if (target.groupRevision != 0) {
        part.key.set(QueryCondition::GroupRevision, target.groupRevision);
    }
    if (target.configRevision != 0) {
        part.key.set(QueryCondition::ConfigRevision, target.configRevision);
    }
    return part;
}

} // namespace QAV
