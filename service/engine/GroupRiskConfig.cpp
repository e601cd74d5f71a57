// SPDX-License-Identifier: Apache-2.0
#include "service/engine/GroupRiskConfig.h"
#include "service/engine/RecordDocument.h"
#include "service/engine/Refusal.h"

#include <nvservice/Codec.h>
#include <nvservice/SystemTag.h>
#include <utils/Translation.h>

namespace service
{

namespace
{

using utils::EErrorCode;

StoredRiskConfig requireStored(const RequestContext& context, std::int64_t groupId)
{
    std::optional<StoredRiskConfig> stored = findRiskConfig(context, groupId);
    if (!stored) {
        throw Refusal(EErrorCode::NotFound, utils::text("service", "账号组没有风控配置"));
    }
    return std::move(*stored);
}

} // namespace

GroupRiskConfig::GroupRiskConfig(const RequestContext& context, std::int64_t groupId)
    : m_context(context), m_group(requireGroupInScope(context, groupId)), m_stored(requireStored(context, groupId))
{
}

void GroupRiskConfig::requireCurrent(std::int64_t revision) const
{
    const std::int64_t current = record()->revision();
    if (revision == current) {
        return;
    }
    const std::optional<Change> foreign =
        findForeignRiskChange(m_context, record()->groupId, revision, m_context.session);
    if (!foreign && revision > 0 && revision < current) {
        return;
    }
    refuseOutdated(foreign ? *foreign : m_stored.lastChange);
}

void GroupRiskConfig::refuseOutdated(const Change& change) const
{
    throw Refusal(EErrorCode::Conflict,
                  utils::filled(utils::text("service", "账号组“%1”的风控设置已被%2修改，请重新打开后再设置"),
                                m_group.name, whoAndWhen(m_context, change)));
}

AppliedChange GroupRiskConfig::replace(nvservice::CAccountGroupRCConfig config, std::int32_t dataType) const
{
    nvservice::setSystemTagOfAll(config, m_context.server.systemTag);
    config.setRevision(record()->revision() + 1);
    bson::BSONObj after = readableDocument(config, RiskConfigName);
    const RiskChange change{{m_context.user.login, m_context.now}, m_context.session, dataType};
    if (!m_context.isTrial() && !updateRiskConfig(m_context, config, after, change)) {
        throw Refusal(EErrorCode::Conflict, utils::text("service", "风控设置已被他人修改，请重新打开后再设置"));
    }
    return {config.getKey(), nvservice::encodeRecord(*record()), std::move(after)};
}

} // namespace service
