// SPDX-License-Identifier: Apache-2.0
#include "service/engine/RiskConfigRules.h"
#include "service/engine/AssetsLimitRules.h"
#include "service/engine/CategoryRules.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"
#include "service/engine/TradeLimitRules.h"

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

void requireAtMost(std::size_t count, std::size_t most, const char* what)
{
    if (count > most) {
        throw Refusal(EErrorCode::ResourceExhausted, what + std::string("最多") + std::to_string(most) + "条");
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
        throw Refusal(EErrorCode::InvalidValue, "邮件规则" + quoted(rule.ruleKey) + "：" + why);
    };
    if (rule.ruleKey.empty()) {
        throw Refusal(EErrorCode::InvalidValue, "邮件规则的标识不能为空");
    }
    if (!isShortVisibleText(rule.ruleKey, MaxRuleKeyLength)) {
        refuse("标识过长或含有不可见字符");
    }
    if (!isShortVisibleText(rule.subject, MaxSubjectLength)) {
        refuse("邮件主题不能超过" + std::to_string(MaxSubjectLength) + "个字符，也不能含有控制字符");
    }
    for (const std::string& recipient : rule.recipients) {
        if (!isAddress(recipient)) {
            refuse(quoted(recipient) +
                   "不是邮件地址，每个收件人只能是一个地址，如 name@example.com，由字母、数字和 . _ % + - 组成");
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
    requireAtMost(entries, MaxTradeLimitEntries, "黑白名单");
    requireAtMost(config.assetsRCs.size(), MaxAssetsLimits, "资产组合风控");
    requireAtMost(config.ratProofSetting.reverseOrderExemptCategoryIds.size(), MaxExemptCategories,
                  "反向单交易的豁免分类");
    requireAtMost(config.ratProofSetting.washTradeExemptCategoryIds.size(), MaxExemptCategories, "对敲交易的豁免分类");
    requireReasonableSize(config.emailRCs);
    if (config.unknownFields.objsize() > MaxUnknownBytes) {
        throw Refusal(EErrorCode::ResourceExhausted, "风控配置数据过大，已被拒绝");
    }
}

void requireReasonableSize(const std::vector<CEmailRC>& rules)
{
    requireAtMost(rules.size(), MaxEmailRules, "邮件规则");
    for (const CEmailRC& rule : rules) {
        requireAtMost(rule.recipients.size(), MaxEmailRecipients, "邮件规则的收件人");
    }
}

void requireValidRiskConfig(const RequestContext& context, const CAccountGroupRCConfig& sent,
                            const CAccountGroupRCConfig& stored)
{
    requireValidTradeLimits(sent.rcRule, stored.rcRule);
    requireKnownSecurities(context, sent.rcRule, stored.rcRule);
    CategoryRules categories(context);
    requireValidAssetsLimits(sent.assetsRCs, stored.assetsRCs, categories);
    categories.requireExempt(sent.ratProofSetting.reverseOrderExemptCategoryIds,
                             stored.ratProofSetting.reverseOrderExemptCategoryIds, "反向单交易设置");
    categories.requireExempt(sent.ratProofSetting.washTradeExemptCategoryIds,
                             stored.ratProofSetting.washTradeExemptCategoryIds, "对敲交易设置");
    requireValidEmailRules(sent.emailRCs, sent.groupId);
}

void requireValidEmailRules(const std::vector<CEmailRC>& rules, std::int64_t groupId)
{
    std::set<std::string> keys;
    for (const CEmailRC& rule : rules) {
        if (rule.ruleKind != GroupRuleKind || rule.accountKey != std::to_string(groupId)) {
            throw Refusal(EErrorCode::InvalidValue, "邮件规则" + quoted(rule.ruleKey) + "不属于该账号组");
        }
        requireValidEmailRule(rule);
        if (!keys.insert(rule.ruleKey).second) {
            throw Refusal(EErrorCode::InvalidValue, "邮件规则" + quoted(rule.ruleKey) + "重复");
        }
    }
}

} // namespace service
