// SPDX-License-Identifier: Apache-2.0
#include "service/engine/GroupRestore.h"
#include "service/engine/GroupRiskConfig.h"
#include "service/engine/Objections.h"
#include "service/engine/QueryConditions.h"
#include "service/engine/RecordView.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <utils/Translation.h>

namespace service
{

namespace
{

namespace QueryCondition = nvservice::QueryCondition;
using nvservice::CGroupRestore;
using nvservice::EZvDataOperation;
using utils::EErrorCode;

void requireReasonable(const CGroupRestore& sent)
{
    if (sent.obstacles.size() > MaxObjections) {
        throw Refusal(EErrorCode::ResourceExhausted, utils::text("service", "账号组恢复的数据过大，已被拒绝"));
    }
}

std::optional<std::int32_t> groupOfRestore(const CGroupRestore& sent, EZvDataOperation)
{
    return sent.groupId;
}

/// The revisions that the user sees with the answer, which must still be the present ones when it is sent back.
void addPresentRevisions(const RequestContext& context, CGroupRestore& restore)
{
    const std::optional<StoredGroup> stored = findGroup(context, restore.groupId);
    if (stored) {
        const std::optional<StoredRiskConfig> config = findRiskConfig(context, restore.groupId);
        restore.seenGroupRevision = stored->record->revision();
        restore.seenConfigRevision = config ? config->record->revision() : 0;
    } else if (restore.groupRevision != 0 && restore.configRevision == 0 && context.user.has(RiskRight)) {
        restore.configRevision = lastConfigRevision(context, restore.groupId);
    }
}

Records tryRestore(const RequestContext& context, const std::string& key)
{
    const QueryConditions conditions(
        key, {QueryCondition::Group, QueryCondition::GroupRevision, QueryCondition::ConfigRevision});
    const auto restore = boost::make_shared<CGroupRestore>();
    restore->groupId = conditions.requiredGroup();
    restore->groupRevision = conditions.revision(QueryCondition::GroupRevision).value_or(0);
    restore->configRevision = conditions.revision(QueryCondition::ConfigRevision).value_or(0);
    restore->setSystemTag(context.server.systemTag);
    addPresentRevisions(context, *restore);
    RequestContext trial = context;
    trial.objections = &restore->obstacles;
    Records records{restore};
    for (const AppliedChange& change : restoreGroup(trial, *restore).changes) {
        nvservice::IDataPtr record;
        if (nvservice::decodeRecord(change.after, record).isSuccess()) {
            records.push_back(viewOf(context, record).record);
        }
    }
    return records;
}

AppliedChange restore(const RequestContext& context, const CGroupRestore& sent)
{
    Restored restored = restoreGroup(context, sent);
    if (restored.changes.empty()) {
        return {groupKey(context.server, sent.groupId), {}, {}};
    }
    AppliedChange first = std::move(restored.changes.front());
    first.more.assign(std::next(restored.changes.begin()), restored.changes.end());
    first.newId = restored.groupId == sent.groupId ? 0 : restored.groupId;
    return first;
}

} // namespace

DataHandler groupRestoreHandler()
{
    const char* const name = QT_TRANSLATE_NOOP("service", "账号组恢复");
    return {nvservice::DataType::GroupRestore,
            &tryRestore,
            name,
            &requireReasonable,
            &groupOfRestore,
            {{EZvDataOperation::Modify, 0, name, &restore}}};
}

} // namespace service
