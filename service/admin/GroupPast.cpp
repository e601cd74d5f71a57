// SPDX-License-Identifier: Apache-2.0
#include "service/admin/GroupPast.h"
#include "service/admin/Times.h"
#include "service/engine/GroupScope.h"
#include "service/engine/Refusal.h"
#include "service/store/Accounts.h"

#include <nvservice/NoInstitutionId.h>
#include <utils/Translation.h>

#include <algorithm>

namespace service
{

using nvservice::EZvDataOperation;
using utils::EErrorCode;

namespace
{

PastGroup pastGroupOf(const ServerData& data, std::int64_t groupId, GroupRevision revision)
{
    PastGroup past;
    past.record = boost::make_shared<nvservice::CAccountGroup>();
    past.record->groupId = static_cast<std::int32_t>(groupId);
    past.record->groupName = revision.name;
    if (revision.institution) {
        past.record->institutionId = static_cast<std::int32_t>(*revision.institution);
        past.record->institutionName = findInstitutionName(data, *revision.institution).value_or("");
    }
    past.record->unknownFields = revision.unknownFields;
    past.record->setRevision(revision.revision);
    for (const std::int64_t row : revision.accountRows) {
        const std::optional<StoredAccount> account = findAccount(data, row);
        if (!account) {
            throw Refusal(EErrorCode::NotFound,
                          utils::filled(utils::text("service", "历史记录中的账号（%1）已不存在"), row));
        }
        past.record->accounts.push_back(account->info);
    }
    past.record->setSystemTag(data.server.systemTag);
    past.revision = std::move(revision);
    return past;
}

} // namespace

PastGroup requireRevision(const ServerData& data, std::int64_t groupId, std::int64_t revision)
{
    for (GroupRevision& each : loadGroupRevisions(data, groupId)) {
        if (each.revision == revision) {
            return pastGroupOf(data, groupId, std::move(each));
        }
    }
    throw Refusal(EErrorCode::NotFound, utils::filled(utils::text("service", "账号组%1没有修订%2"), groupId, revision));
}

PastGroup requireGroupAt(const ServerData& data, std::int64_t groupId, std::int64_t at)
{
    std::vector<GroupRevision> revisions = loadGroupRevisions(data, groupId);
    const auto after = std::find_if(revisions.begin(), revisions.end(),
                                    [at](const GroupRevision& revision) { return revision.change.at > at; });
    if (after == revisions.begin()) {
        throw Refusal(EErrorCode::NotFound, utils::filled(utils::text("service", "账号组%1在%2还不存在"), groupId,
                                                          textOfTime(at).toStdString()));
    }
    GroupRevision& last = *std::prev(after);
    if (last.operation == EZvDataOperation::Delete) {
        throw Refusal(EErrorCode::NotFound, utils::filled(utils::text("service", "账号组%1已被%2删除"), groupId,
                                                          whoAndWhen(data, last.change)));
    }
    return pastGroupOf(data, groupId, std::move(last));
}

PastRiskConfig riskConfigAt(const ServerData& data, std::int64_t groupId, std::int64_t at)
{
    PastRiskConfig past;
    std::int64_t revision = 1;
    for (const RiskRevision& each : loadRiskRevisions(data, groupId)) {
        if (each.change.at > at) {
            break;
        }
        revision = each.revision;
        past.lastChange = each.change;
    }
    past.record = revision == 1 ? riskConfigOf({}, data.server, groupId, 1) : findRiskRevision(data, groupId, revision);
    return past;
}

PastRiskConfig requireRiskRevision(const ServerData& data, std::int64_t groupId, std::int64_t revision)
{
    if (revision == 1) {
        return {riskConfigOf({}, data.server, groupId, 1), std::nullopt};
    }
    for (const RiskRevision& each : loadRiskRevisions(data, groupId)) {
        if (each.revision == revision) {
            return {findRiskRevision(data, groupId, revision), each.change};
        }
    }
    throw Refusal(EErrorCode::NotFound,
                  utils::filled(utils::text("service", "账号组%1的风控配置没有修订%2"), groupId, revision));
}

} // namespace service
