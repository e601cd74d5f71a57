// SPDX-License-Identifier: Apache-2.0
#include "service/engine/GroupPast.h"
#include "service/engine/GroupScope.h"
#include "service/engine/Refusal.h"
#include "service/store/Accounts.h"

#include <nvservice/NoInstitutionId.h>
#include <utils/Translation.h>

namespace service
{

using nvservice::EZvDataOperation;
using utils::EErrorCode;

namespace
{

constexpr std::int64_t FirstRevision = 1; ///< of a group, and of its configuration

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

PastRiskConfig firstConfig(const ServerData& data, std::int64_t groupId)
{
    return {riskConfigOf({}, data.server, groupId, FirstRevision), std::nullopt};
}

} // namespace

PastGroup requireRevision(const ServerData& data, std::int64_t groupId, std::int64_t revision)
{
    std::optional<GroupRevision> found = findGroupRevision(data, groupId, revision);
    if (!found) {
        throw Refusal(EErrorCode::NotFound,
                      utils::filled(utils::text("service", "账号组%1没有修订%2"), groupId, revision));
    }
    return pastGroupOf(data, groupId, std::move(*found));
}

PastGroup requireGroupAt(const ServerData& data, std::int64_t groupId, std::int64_t at)
{
    std::optional<GroupRevision> last = findGroupRevisionAt(data, groupId, at);
    if (!last) {
        throw Refusal(EErrorCode::NotFound,
                      utils::filled(utils::text("service", "账号组%1在%2还不存在"), groupId, timeText(at)));
    }
    if (last->operation == EZvDataOperation::Delete) {
        throw Refusal(EErrorCode::NotFound, utils::filled(utils::text("service", "账号组%1已被%2删除"), groupId,
                                                          whoAndWhen(data, last->change)));
    }
    return pastGroupOf(data, groupId, std::move(*last));
}

PastRiskConfig riskConfigAt(const ServerData& data, std::int64_t groupId, std::int64_t at)
{
    const std::optional<RiskRevision> last = findRiskChangeAt(data, groupId, at);
    return last ? PastRiskConfig{findRiskRevision(data, groupId, last->revision), last->change}
                : firstConfig(data, groupId);
}

PastRiskConfig requireRiskRevision(const ServerData& data, std::int64_t groupId, std::int64_t revision)
{
    if (revision == FirstRevision) {
        return firstConfig(data, groupId);
    }
    const std::optional<RiskRevision> found = findRiskChange(data, groupId, revision);
    if (!found) {
        throw Refusal(EErrorCode::NotFound,
                      utils::filled(utils::text("service", "账号组%1的风控配置没有修订%2"), groupId, revision));
    }
    return {findRiskRevision(data, groupId, revision), found->change};
}

InstitutionId institutionOf(const ServerData& data, const PastRiskConfig& config)
{
    const std::int32_t groupId = config.record->groupId;
    const std::optional<GroupRevision> group = config.lastChange
                                                   ? findGroupRevisionAt(data, groupId, config.lastChange->at)
                                                   : findGroupRevision(data, groupId, FirstRevision);
    if (!group) {
        throw Refusal(EErrorCode::NotFound, utils::text("service", "账号组不存在或已被删除"));
    }
    return group->institution;
}

} // namespace service
