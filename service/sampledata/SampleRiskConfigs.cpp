// SPDX-License-Identifier: Apache-2.0
#include "service/sampledata/SampleRiskConfigs.h"
#include "service/sampledata/SampleSecurities.h"

#include <algorithm>
#include <array>

namespace service
{

using namespace nvservice;

namespace
{

constexpr std::array<EZvTraderType, 8> Types = {EZvTraderType::Future,
                                                EZvTraderType::Stock,
                                                EZvTraderType::Neeq,
                                                EZvTraderType::ShanghaiHongKong,
                                                EZvTraderType::ShenzhenHongKong,
                                                EZvTraderType::FutureOption,
                                                EZvTraderType::StockOption,
                                                EZvTraderType::Interbank};

CAssetsRC limit(EZVRCAssetClass assetClass, EZVRCQuantity measured, EZVRCQuantity base, double threshold,
                EZVRCUnit unit, EZVRCAction action, const char* remark)
{
    CAssetsRC made;
    made.assetClass = assetClass;
    made.measured = measured;
    made.base = base;
    made.threshold = threshold;
    made.unit = unit;
    made.action = action;
    made.remark = remark;
    return made;
}

const std::vector<CAssetsRC>& limitPatterns()
{
    static const std::vector<CAssetsRC> patterns = {
        limit(EZVRCAssetClass::Stock, EZVRCQuantity::MarketValue, EZVRCQuantity::NetAssets, 80, EZVRCUnit::Percent,
              EZVRCAction::Warn, "股票仓位上限"),
        limit(EZVRCAssetClass::Future, EZVRCQuantity::Margin, EZVRCQuantity::NetAssets, 30, EZVRCUnit::Percent,
              EZVRCAction::Forbid, "期货保证金占比"),
        limit(EZVRCAssetClass::Bond, EZVRCQuantity::MarketValue, EZVRCQuantity::None, 5000, EZVRCUnit::TenThousandYuan,
              EZVRCAction::Warn, ""),
        limit(EZVRCAssetClass::Stock, EZVRCQuantity::Volume, EZVRCQuantity::ShareCapital, 4.99, EZVRCUnit::Percent,
              EZVRCAction::Forbid, "举牌线以下"),
        limit(EZVRCAssetClass::All, EZVRCQuantity::FloatingProfit, EZVRCQuantity::NetAssets, -5.5, EZVRCUnit::Percent,
              EZVRCAction::Warn, "回撤预警")};
    return patterns;
}

} // namespace

SampleRiskConfigs::SampleRiskConfigs(const std::vector<CCategoryInfo>& categories,
                                     const std::vector<CSecurityInfo>& securities, std::uint64_t seed)
    : m_securities(Types.size()), m_random(seed)
{
    for (const CCategoryInfo& category : categories) {
        if (category.categoryType != CCategoryInfo::InternalCategoryType &&
            category.sysType != ForbiddenSampleSysType) {
            m_categories.push_back(&category);
        }
    }
    for (const CSecurityInfo& security : securities) {
        const auto type = std::find(Types.begin(), Types.end(), security.traderType);
        if (type != Types.end()) {
            m_securities[static_cast<std::size_t>(type - Types.begin())].push_back(&security);
        }
    }
}

CAccountGroupRCConfig SampleRiskConfigs::make(int number, std::int32_t groupId, std::int64_t& nextRuleId)
{
    CAccountGroupRCConfig config;
    config.groupId = groupId;
    for (const EZvTraderType type : Types) {
        if (type == EZvTraderType::Stock || below(3) == 0) {
            addList(config, type);
        }
    }
    addLimits(config, nextRuleId);
    CRatProofSetting& setting = config.ratProofSetting;
    setting.reverseOrderCheck = below(2) == 0;
    setting.reverseOrderWarnOnly = below(3) == 0;
    setting.notCountCancelledOrders = below(2) == 0;
    setting.washTradeForbidden = below(3) != 0;
    setting.reverseOrderExemptCategoryIds = exemptCategories(below(8));
    setting.washTradeExemptCategoryIds = exemptCategories(below(5));
    if (number % 15 == 1) {
        setting.reverseOrderExemptCategoryIds.insert(setting.reverseOrderExemptCategoryIds.begin(), 990001);
        setting.washTradeExemptCategoryIds.push_back(990002);
    }
    if (number % 9 == 1) {
        CEmailRC rule;
        rule.ruleKind = "2";
        rule.accountKey = std::to_string(groupId);
        rule.ruleKey = "washTrade";
        rule.recipients = {"risk@example.com", "desk" + std::to_string(groupId) + "@example.com"};
        rule.subject = "对敲交易提醒";
        config.emailRCs.push_back(rule);
    }
    return config;
}

void SampleRiskConfigs::addList(CAccountGroupRCConfig& config, EZvTraderType type)
{
    const auto& securities =
        m_securities[static_cast<std::size_t>(std::find(Types.begin(), Types.end(), type) - Types.begin())];
    if (securities.empty()) {
        return;
    }
    CTradeLimitList& list = config.rcRule.list(type);
    const auto count = std::min(static_cast<std::size_t>(1 + below(40)), securities.size());
    const auto start = static_cast<std::size_t>(below(static_cast<int>(securities.size())));
    const bool hasDirection = type == EZvTraderType::Stock || type == EZvTraderType::StockOption;
    for (std::size_t i = 0; i < count; ++i) {
        const CSecurityInfo& security = *securities[(start + i) % securities.size()];
        CTradeLimitEntry entry;
        entry.securityCode = security.securityCode;
        entry.securityName = security.securityName;
        entry.listKind = below(4) == 0 ? EZVRCListKind::White : EZVRCListKind::Black;
        if (hasDirection) {
            entry.direction = static_cast<EZVRCDirection>(below(3));
        }
        list.entries.push_back(entry);
    }
}

void SampleRiskConfigs::addLimits(CAccountGroupRCConfig& config, std::int64_t& nextRuleId)
{
    for (const CAssetsRC& pattern : limitPatterns()) {
        if (below(2) == 0) {
            continue;
        }
        config.assetsRCs.push_back(pattern);
        config.assetsRCs.back().enabled = below(5) != 0;
    }
    if (!m_categories.empty() && below(2) == 0) {
        CAssetsRC ofCategory = limitPatterns().front();
        ofCategory.assetClass = EZVRCAssetClass::ByCategory;
        ofCategory.categoryId =
            m_categories[static_cast<std::size_t>(below(static_cast<int>(m_categories.size())))]->categoryId;
        ofCategory.threshold = 10;
        ofCategory.remark = "单一分类集中度";
        config.assetsRCs.push_back(ofCategory);
    }
    for (CAssetsRC& made : config.assetsRCs) {
        made.ruleId = nextRuleId++;
    }
}

std::vector<std::int32_t> SampleRiskConfigs::exemptCategories(int count)
{
    std::vector<std::int32_t> ids;
    for (int i = 0; i < count && !m_categories.empty(); ++i) {
        const std::int32_t id =
            m_categories[static_cast<std::size_t>(below(static_cast<int>(m_categories.size())))]->categoryId;
        if (std::find(ids.begin(), ids.end(), id) == ids.end()) {
            ids.push_back(id);
        }
    }
    return ids;
}

} // namespace service
