// SPDX-License-Identifier: Apache-2.0
#include "service/engine/GroupRiskConfig.h"
#include "service/engine/Refusal.h"
#include "service/engine/RiskConfigRules.h"
#include "service/store/Journal.h"

#include <nvservice/Codec.h>
#include <nvservice/CustomEmailRC.h>
#include <nvservice/DataType.h>
#include <utils/Translation.h>

#include <QCoreApplication>
#include <QString>

#include <algorithm>
#include <set>

namespace service
{

namespace
{

using nvservice::CEmailRC;
using nvservice::CustomEmailRC;
using nvservice::EZvDataOperation;
using utils::EErrorCode;
using EmailRules = std::vector<CEmailRC>;

void requireReasonable(const CustomEmailRC& sent)
{
    requireReasonableSize(sent.emailRCs);
}

/// Empty unless all rules name the same group.
std::optional<std::int32_t> groupOfRules(const CustomEmailRC& sent, EZvDataOperation)
{
    if (sent.emailRCs.empty()) {
        return std::nullopt;
    }
    const std::string& key = sent.emailRCs.front().accountKey;
    const bool isSame = std::all_of(sent.emailRCs.begin(), sent.emailRCs.end(), [&key](const CEmailRC& rule) {
        return rule.ruleKind == GroupRuleKind && rule.accountKey == key;
    });
    bool isNumber = false;
    const int id = QString::fromStdString(key).toInt(&isNumber);
    if (!isSame || !isNumber || std::to_string(id) != key) {
        return std::nullopt;
    }
    return id;
}

EmailRules withoutDeleted(const EmailRules& stored, const EmailRules& deleted)
{
    std::set<std::string> keys;
    for (const CEmailRC& rule : deleted) {
        keys.insert(rule.ruleKey);
    }
    EmailRules left;
    if (keys.count(std::string()) == 0) {
        std::copy_if(stored.begin(), stored.end(), std::back_inserter(left),
                     [&keys](const CEmailRC& rule) { return keys.count(rule.ruleKey) == 0; });
    }
    return left;
}

EmailRules rulesAfter(EZvDataOperation operation, const EmailRules& stored, const EmailRules& sent)
{
    return operation == EZvDataOperation::Delete ? withoutDeleted(stored, sent) : sent;
}

bool isSame(const EmailRules& a, const EmailRules& b)
{
    CustomEmailRC x;
    CustomEmailRC y;
    x.emailRCs = a;
    y.emailRCs = b;
    return nvservice::encodeRecord(x).binaryEqual(nvservice::encodeRecord(y));
}

/// A request without a revision is outdated if the save that it belongs to was refused.
void requireSaved(const RequestContext& context, std::int32_t groupId)
{
    const std::optional<utils::NVError> last = findLastOutcome(
        context, groupKey(context.server, groupId), nvservice::DataType::GroupRiskConfig, context.user.login);
    if (last && !last->isSuccess()) {
        throw Refusal(last->code(), utils::filled(utils::text("service", "风控设置没有保存，邮件规则保持不变：%1"),
                                                  last->errorMsg()));
    }
}

/// True if a request without a revision may replace the rules, because only this session has changed the configuration
/// since its save. False if the save has already stored these rules; then later changes by others stay. Throws
/// `Refusal` (Conflict) otherwise.
bool mayReplace(const RequestContext& context, const GroupRiskConfig& stored, EZvDataOperation operation,
                const CustomEmailRC& sent)
{
    const std::int32_t groupId = stored.record()->groupId;
    requireSaved(context, groupId);
    const std::optional<Change> foreign =
        findForeignRiskChange(context, groupId, stored.record()->revision() - 1, context.session);
    if (!foreign) {
        return true;
    }
    const RiskConfigPtr saved = findLastSave(context, groupId, context.session, context.user.login);
    if (saved && isSame(saved->emailRCs, rulesAfter(operation, saved->emailRCs, sent.emailRCs))) {
        return false;
    }
    stored.refuseOutdated(*foreign);
}

/// Modify replaces all rules of the group. Delete removes the rules with the given keys, or all rules if one of the
/// keys is empty. The record's revision is that of the configuration that it is based on. If it is 0, the request
/// belongs to the user's last save of the configuration; see `mayReplace`.
template <EZvDataOperation Operation>
AppliedChange changeRules(const RequestContext& context, const CustomEmailRC& sent)
{
    const std::optional<std::int32_t> groupId = groupOfRules(sent, Operation);
    if (!groupId) {
        throw Refusal(EErrorCode::InvalidValue, utils::text("service", "邮件规则没有指明账号组"));
    }
    const GroupRiskConfig stored(context, *groupId);
    if (sent.revision() != 0) {
        stored.requireCurrent(sent.revision());
    }
    if (Operation == EZvDataOperation::Modify) {
        requireValidEmailRules(sent.emailRCs, *groupId);
    }
    const bool isDone = Operation == EZvDataOperation::Delete && stored.record()->emailRCs.empty();
    if (isDone || (sent.revision() == 0 && !mayReplace(context, stored, Operation, sent))) {
        return {stored.record()->getKey(), {}, {}};
    }
    nvservice::CAccountGroupRCConfig config = *stored.record();
    config.emailRCs = rulesAfter(Operation, config.emailRCs, sent.emailRCs);
    return stored.replace(std::move(config), nvservice::DataType::EmailRule);
}

} // namespace

DataHandler emailRuleHandler()
{
    return {nvservice::DataType::EmailRule,
            nullptr,
            QT_TRANSLATE_NOOP("service", "邮件规则"),
            &requireReasonable,
            &groupOfRules,
            {{EZvDataOperation::Modify, RiskRight, RiskRightName, &changeRules<EZvDataOperation::Modify>},
             {EZvDataOperation::Delete, RiskRight, RiskRightName, &changeRules<EZvDataOperation::Delete>}}};
}

} // namespace service
