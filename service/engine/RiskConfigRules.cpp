// SPDX-License-Identifier: Apache-2.0
#include "service/engine/RiskConfigRules.h"
#include "service/engine/AssetsLimitRules.h"
#include "service/engine/CategoryRules.h"
#include "service/engine/Objections.h"
#include "service/engine/TextRules.h"
#include "service/engine/TradeLimitRules.h"

#include <utils/Translation.h>

#include <QRegularExpression>
#include <QString>

#include <algorithm>
#include <set>

namespace service
{

namespace
{

using nvservice::CAccountGroupRCConfig;
using nvservice::CEmailRC;
using utils::EErrorCode;

constexpr int MaxUnknownBytes = 64 * 1024;
constexpr int MaxRuleKeyLength = 128;
constexpr int MaxSubjectLength = 200;
constexpr std::size_t MaxAddressBytes = 254;

void requireAtMost(std::size_t count, std::size_t most, const std::string& what)
{
    if (count > most) {
        throw Refusal(EErrorCode::ResourceExhausted, utils::filled(utils::text("service", "%1最多%2条"), what, most));
    }
}

/// A single address without quotation marks.
bool isAddress(const std::string& text)
{
    static const QRegularExpression form(QStringLiteral("\\A[A-Za-z0-9_%+-]+(\\.[A-Za-z0-9_%+-]+)*"
                                                        "@[A-Za-z0-9]+(-+[A-Za-z0-9]+)*"
                                                        "(\\.[A-Za-z0-9]+(-+[A-Za-z0-9]+)*)*\\z"));
    return text.size() <= MaxAddressBytes && form.match(QString::fromStdString(text)).hasMatch();
}

bool isShortVisibleText(const std::string& text, int longest)
{
    const QString valid = QString::fromStdString(text);
    return valid.size() <= longest && valid.toStdString() == text && !hasInvisibleCharacters(valid);
}

void requireValidEmailRule(const CEmailRC& rule)
{
    const auto refuse = [&rule](const std::string& why) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "邮件规则%1：%2"), quoted(rule.ruleKey), why));
    };
    if (rule.ruleKey.empty()) {
        throw Refusal(EErrorCode::InvalidValue, utils::text("service", "邮件规则的标识不能为空"));
    }
    if (!isShortVisibleText(rule.ruleKey, MaxRuleKeyLength)) {
        refuse(utils::text("service", "标识过长或含有不可见字符"));
    }
    if (!isShortVisibleText(rule.subject, MaxSubjectLength)) {
        refuse(utils::filled(utils::text("service", "邮件主题不能超过%1个字符，也不能含有控制字符"), MaxSubjectLength));
    }
    for (const std::string& recipient : rule.recipients) {
        if (!isAddress(recipient)) {
            refuse(utils::filled(
                utils::text(
                    "service",
                    "%1不是邮件地址，每个收件人只能是一个地址，如 name@example.com，由字母、数字和 . _ % + - 组成"),
                quoted(recipient)));
        }
    }
}

} // namespace

void requireReasonableSize(const CAccountGroupRCConfig& config)
{
    std::size_t entries = 0;
    for (const nvservice::CTradeLimitList& list : config.rcRule.lists) {
        entries += list.entries.size();
    }
    requireAtMost(entries, MaxTradeLimitEntries, utils::text("service", "黑白名单"));
    requireAtMost(config.assetsRCs.size(), MaxAssetsLimits, utils::text("service", "资产组合风控"));
    requireAtMost(config.ratProofSetting.reverseOrderExemptCategoryIds.size(), MaxExemptCategories,
                  utils::text("service", "反向单交易的豁免分类"));
    requireAtMost(config.ratProofSetting.washTradeExemptCategoryIds.size(), MaxExemptCategories,
                  utils::text("service", "对敲交易的豁免分类"));
    requireReasonableSize(config.emailRCs);
    if (config.unknownFields.objsize() > MaxUnknownBytes) {
        throw Refusal(EErrorCode::ResourceExhausted, utils::text("service", "风控配置数据过大，已被拒绝"));
    }
}

void requireReasonableSize(const std::vector<CEmailRC>& rules)
{
    requireAtMost(rules.size(), MaxEmailRules, utils::text("service", "邮件规则"));
    for (const CEmailRC& rule : rules) {
        requireAtMost(rule.recipients.size(), MaxEmailRecipients, utils::text("service", "邮件规则的收件人"));
    }
}

void requireValidRiskConfig(const RequestContext& context, const CAccountGroupRCConfig& sent,
                            const CAccountGroupRCConfig& stored)
{
    require(context, [&] { requireValidTradeLimits(sent.rcRule, stored.rcRule); });
    requireKnownSecurities(context, sent.rcRule, stored.rcRule);
    CategoryRules categories(context);
    requireValidAssetsLimits(sent.assetsRCs, stored.assetsRCs, categories);
    categories.requireExempt(sent.ratProofSetting.reverseOrderExemptCategoryIds,
                             stored.ratProofSetting.reverseOrderExemptCategoryIds,
                             utils::text("service", "反向单交易设置"));
    categories.requireExempt(sent.ratProofSetting.washTradeExemptCategoryIds,
                             stored.ratProofSetting.washTradeExemptCategoryIds, utils::text("service", "对敲交易设置"));
    require(context, [&] { requireValidEmailRules(sent.emailRCs, sent.groupId); });
}

void requireValidEmailRules(const std::vector<CEmailRC>& rules, std::int64_t groupId)
{
    std::set<std::string> keys;
    for (const CEmailRC& rule : rules) {
        if (rule.ruleKind != GroupRuleKind || rule.accountKey != std::to_string(groupId)) {
            throw Refusal(EErrorCode::InvalidValue,
                          utils::filled(utils::text("service", "邮件规则%1不属于该账号组"), quoted(rule.ruleKey)));
        }
        requireValidEmailRule(rule);
        if (!keys.insert(rule.ruleKey).second) {
            throw Refusal(EErrorCode::InvalidValue,
                          utils::filled(utils::text("service", "邮件规则%1重复"), quoted(rule.ruleKey)));
        }
    }
}

} // namespace service
