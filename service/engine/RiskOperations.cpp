#include "service/engine/RiskOperations.h"
#include "service/engine/GroupScope.h"
#include "service/engine/RecordSize.h"
#include "service/engine/Refusal.h"
#include "service/engine/RiskConfigRules.h"
#include "service/store/Journal.h"
#include "service/store/RiskConfigs.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <nvservice/SystemTag.h>
#include <nvservice/UserRight.h>

#include <QString>

#include <algorithm>
#include <set>

namespace service
{

namespace
{

using nvservice::CAccountGroupRCConfig;
using nvservice::CEmailRC;
using nvservice::CustomEmailRC;
using nvservice::EZvDataOperation;
using utils::EErrorCode;

void requireOwnSystem(const OperationContext& context, const nvservice::IData& record)
{
    if (!record.getSystemTag().empty() && record.getSystemTag() != context.server.systemTag)
        throw Refusal(EErrorCode::OutOfScope, "账号组不属于分系统“" + context.server.name + "”");
}

StoredRiskConfig requireStored(const OperationContext& context, std::int64_t groupId)
{
    std::optional<StoredRiskConfig> stored = findRiskConfig(context.connection, context.server, groupId);
    if (!stored)
        throw Refusal(EErrorCode::NotFound, "账号组没有风控配置");
    return std::move(*stored);
}

[[noreturn]] void refuseOutdated(const OperationContext& context, const GroupHead& group, const Change& change)
{
    throw Refusal(EErrorCode::Conflict, "账号组“" + group.name + "”的风控设置已被" +
                                            whoAndWhen(context.connection, context.server, change) +
                                            "修改，请重新打开后再设置");
}

/// Throws unless `revision` is the stored one, or an older one after which nobody but this session changed anything.
void requireCurrent(const OperationContext& context, const GroupHead& group, const StoredRiskConfig& stored,
                    std::int64_t revision)
{
    const std::int64_t current = stored.record->revision();
    if (revision == current)
        return;
    const std::optional<Change> foreign =
        findForeignRiskChange(context.connection, context.server, stored.record->groupId, revision, context.session);
    if (!foreign && revision > 0 && revision < current)
        return;
    refuseOutdated(context, group, foreign ? *foreign : stored.lastChange);
}

/// Ids for the limits that are new, and for those whose id is taken twice or isn't the configuration's.
void giveRuleIds(const OperationContext& context, CAccountGroupRCConfig& config, const CAccountGroupRCConfig& stored)
{
    std::set<std::int64_t> free;
    for (const nvservice::CAssetsRC& limit : stored.assetsRCs)
        free.insert(limit.ruleId);
    std::vector<nvservice::CAssetsRC*> unnumbered;
    for (nvservice::CAssetsRC& limit : config.assetsRCs) {
        if (free.erase(limit.ruleId) == 0)
            unnumbered.push_back(&limit);
    }
    if (unnumbered.empty())
        return;
    std::int64_t next = takeRuleIds(context.connection, context.server, static_cast<std::int64_t>(unnumbered.size()));
    for (nvservice::CAssetsRC* limit : unnumbered)
        limit->ruleId = next++;
}

/// The document of a record that can be read again later.
bson::BSONObj readableDocument(const CAccountGroupRCConfig& config)
{
    const bson::BSONObj document = documentToStore(config, "风控配置");
    nvservice::IDataPtr decoded;
    const utils::NVError error = nvservice::decodeRecord(document, decoded);
    if (!error.isSuccess())
        throw Refusal(error.code(), "风控配置数据无效：" + error.errorMsg());
    return document;
}

/// Stores the new state over the one that was read.
AppliedChange store(const OperationContext& context, CAccountGroupRCConfig& config, std::int64_t oldRevision,
                    bson::BSONObj before, std::int32_t dataType)
{
    config.setRevision(oldRevision + 1);
    bson::BSONObj after = readableDocument(config);
    const RiskChange change{{context.user.login, context.now}, context.session, dataType};
    if (!RiskConfigWriter(context.connection, context.server).update(config, change))
        throw Refusal(EErrorCode::Conflict, "风控设置已被他人修改，请重新打开后再设置");
    return {config.getKey(), std::move(before), std::move(after)};
}

std::vector<CEmailRC> withoutDeleted(const std::vector<CEmailRC>& stored, const std::vector<CEmailRC>& deleted)
{
    std::set<std::string> keys;
    for (const CEmailRC& rule : deleted)
        keys.insert(rule.ruleKey);
    std::vector<CEmailRC> left;
    if (keys.count(std::string()) == 0)
        std::copy_if(stored.begin(), stored.end(), std::back_inserter(left),
                     [&keys](const CEmailRC& rule) { return keys.count(rule.ruleKey) == 0; });
    return left;
}

std::vector<CEmailRC> rulesAfter(EZvDataOperation operation, const std::vector<CEmailRC>& stored,
                                 const std::vector<CEmailRC>& sent)
{
    return operation == EZvDataOperation::Delete ? withoutDeleted(stored, sent) : sent;
}

bool isSame(const std::vector<CEmailRC>& a, const std::vector<CEmailRC>& b)
{
    CustomEmailRC x;
    CustomEmailRC y;
    x.emailRCs = a;
    y.emailRCs = b;
    return nvservice::encodeRecord(x).binaryEqual(nvservice::encodeRecord(y));
}

/// Without a revision a request is known to be outdated only by what was answered to the save that it belongs to.
void requireSaved(const OperationContext& context, std::int32_t groupId)
{
    const std::optional<utils::NVError> last =
        findLastOutcome(context.connection, context.server, riskConfigKey(context.server, groupId),
                        nvservice::DataType::GroupRiskConfig, context.user.login);
    if (last && !last->isSuccess())
        throw Refusal(last->code(), "风控设置没有保存，邮件规则保持不变：" + last->errorMsg());
}

/// Whether a request without a revision may replace the rules: nobody else has changed the configuration since this
/// session did. False when there is nothing left to do, because the save that the request belongs to has left the rules
/// so; what others have stored since stays.
bool mayReplace(const OperationContext& context, const GroupHead& group, const StoredRiskConfig& stored,
                EZvDataOperation operation, const CustomEmailRC& sent)
{
    const std::int32_t groupId = stored.record->groupId;
    requireSaved(context, groupId);
    const std::optional<Change> foreign = findForeignRiskChange(context.connection, context.server, groupId,
                                                                stored.record->revision() - 1, context.session);
    if (!foreign)
        return true;
    const RiskConfigPtr saved =
        findLastSave(context.connection, context.server, groupId, context.session, context.user.login);
    if (saved && isSame(saved->emailRCs, rulesAfter(operation, saved->emailRCs, sent.emailRCs)))
        return false;
    refuseOutdated(context, group, *foreign);
}

} // namespace

void requireRiskRight(const StoredUser& user)
{
    if (!user.has(nvservice::UserRight::SetAccountGroupRisk))
        throw Refusal(EErrorCode::PermissionDenied, "您没有设置账号组风控的权限");
}

std::string riskConfigKey(const SubSystem& server, std::int32_t groupId)
{
    CAccountGroupRCConfig config;
    config.groupId = groupId;
    config.setSystemTag(server.systemTag);
    return config.getKey();
}

std::optional<std::int32_t> groupOfEmailRules(const CustomEmailRC& rules)
{
    if (rules.emailRCs.empty())
        return std::nullopt;
    const std::string& key = rules.emailRCs.front().accountKey;
    const bool isSame = std::all_of(rules.emailRCs.begin(), rules.emailRCs.end(), [&key](const CEmailRC& rule) {
        return rule.ruleKind == GroupRuleKind && rule.accountKey == key;
    });
    bool isNumber = false;
    const int id = QString::fromStdString(key).toInt(&isNumber);
    if (!isSame || !isNumber || std::to_string(id) != key)
        return std::nullopt;
    return id;
}

AppliedChange modifyRiskConfig(const OperationContext& context, const CAccountGroupRCConfig& sent)
{
    requireOwnSystem(context, sent);
    requireRiskRight(context.user);
    const GroupHead group = requireGroupInScope(context.connection, context.server, context.user, sent.groupId);
    const StoredRiskConfig stored = requireStored(context, sent.groupId);
    requireCurrent(context, group, stored, sent.revision());
    requireValidRiskConfig(context.connection, context.server, context.user, sent, *stored.record);

    const auto record = boost::dynamic_pointer_cast<CAccountGroupRCConfig>(sent.copy());
    nvservice::setSystemTagOfAll(*record, context.server.systemTag);
    giveRuleIds(context, *record, *stored.record);
    return store(context, *record, stored.record->revision(), nvservice::encodeRecord(*stored.record),
                 nvservice::DataType::GroupRiskConfig);
}

AppliedChange applyEmailOperation(const OperationContext& context, EZvDataOperation operation,
                                  const CustomEmailRC& sent)
{
    requireOwnSystem(context, sent);
    requireRiskRight(context.user);
    const std::optional<std::int32_t> groupId = groupOfEmailRules(sent);
    if (!groupId)
        throw Refusal(EErrorCode::InvalidValue, "邮件规则没有指明账号组");
    const GroupHead group = requireGroupInScope(context.connection, context.server, context.user, *groupId);
    StoredRiskConfig stored = requireStored(context, *groupId);
    if (sent.revision() != 0)
        requireCurrent(context, group, stored, sent.revision());
    if (operation == EZvDataOperation::Modify)
        requireValidEmailRules(sent.emailRCs, *groupId);
    const bool isDone = operation == EZvDataOperation::Delete && stored.record->emailRCs.empty();
    if (isDone || (sent.revision() == 0 && !mayReplace(context, group, stored, operation, sent)))
        return {riskConfigKey(context.server, *groupId), {}, {}};

    const bson::BSONObj before = nvservice::encodeRecord(*stored.record);
    const std::int64_t revision = stored.record->revision();
    stored.record->emailRCs = rulesAfter(operation, stored.record->emailRCs, sent.emailRCs);
    nvservice::setSystemTagOfAll(*stored.record, context.server.systemTag);
    return store(context, *stored.record, revision, before, nvservice::DataType::EmailRule);
}

} // namespace service
