// SPDX-License-Identifier: Apache-2.0
#include "service/RiskSamples.h"

#include "support/BsonMacros.h"

#include <nvservice/Codec.h>
#include <nvservice/SystemTag.h>

namespace testservice
{

using namespace nvservice;

namespace
{

int below(std::mt19937& random, int limit)
{
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

bson::BSONObj later(std::mt19937& random)
{
    return BSON("laterField" << below(random, 1000) << "laterText"
                             << "以后的版本");
}

CTradeLimitList richList(std::mt19937& random, EZvTraderType type)
{
    CTradeLimitList list;
    list.traderType = type;
    list.unknownFields = later(random);
    const int count = below(random, 30);
    for (int i = 0; i < count; ++i) {
        CTradeLimitEntry made = entry("0" + std::to_string(1000 + i), static_cast<EZVRCListKind>(below(random, 2)));
        made.direction = static_cast<EZVRCDirection>(below(random, 3));
        if (i % 3 == 0) {
            made.unknownFields = later(random);
        }
        list.entries.push_back(made);
    }
    return list;
}

} // namespace

CTradeLimitEntry entry(const std::string& code, EZVRCListKind kind)
{
    CTradeLimitEntry made;
    made.securityCode = code;
    made.securityName = "证券" + code;
    made.listKind = kind;
    return made;
}

CAssetsRC stockLimit(double threshold)
{
    CAssetsRC limit;
    limit.assetClass = EZVRCAssetClass::Stock;
    limit.base = EZVRCQuantity::NetAssets;
    limit.threshold = threshold;
    return limit;
}

RiskConfigPtr loaded(service::DataEngine& engine, const service::SessionPtr& session, int groupId)
{
    const service::Reply reply = query(engine, session, ConfigType, std::to_string(groupId));
    return reply.records.size() == 1 ? boost::dynamic_pointer_cast<CAccountGroupRCConfig>(reply.records[0])
                                     : RiskConfigPtr();
}

service::Reply save(service::DataEngine& engine, const service::SessionPtr& session, const RiskConfigPtr& config,
                    const std::string& operationId)
{
    return operateOn(ConfigType, engine, session, EZvDataOperation::Modify, config, operationId);
}

RiskConfigPtr richConfig(std::mt19937& random, int groupId)
{
    auto config = boost::make_shared<CAccountGroupRCConfig>();
    config->groupId = groupId;
    config->unknownFields = later(random);
    config->rcRule.unknownFields = later(random);
    for (const EZvTraderType type : {EZvTraderType::Interbank, EZvTraderType::Future, EZvTraderType::Stock}) {
        config->rcRule.lists.push_back(richList(random, type));
    }
    const int limits = below(random, 6);
    for (int i = 0; i < limits; ++i) {
        CAssetsRC limit = stockLimit(below(random, 1000000) / 100.0);
        limit.scope = static_cast<EZVRCScopeType>(below(random, 3));
        limit.comparison = static_cast<EZVRCComparison>(below(random, 4));
        limit.action = static_cast<EZVRCAction>(below(random, 2));
        limit.enabled = below(random, 2) == 0;
        limit.remark = i % 2 == 0 ? "备注" : "";
        limit.serverName = "东分系统";
        if (i == 2) {
            limit.assetClass = EZVRCAssetClass::ByCategory;
            limit.categoryId = StocksCategory;
        }
        limit.unknownFields = later(random);
        config->assetsRCs.push_back(limit);
    }
    CRatProofSetting& setting = config->ratProofSetting;
    setting.washTradeForbidden = below(random, 2) == 0;
    setting.reverseOrderCheck = below(random, 2) == 0;
    setting.notCountCancelledOrders = below(random, 2) == 0;
    setting.reverseOrderWarnOnly = below(random, 2) == 0;
    setting.unknownFields = later(random);
    if (below(random, 2) == 0) {
        setting.washTradeExemptCategoryIds = {StocksCategory};
    }
    if (below(random, 2) == 0) {
        setting.reverseOrderExemptCategoryIds = {StocksCategory, StocksCategory};
    }
    for (int i = below(random, 3); i > 0; --i) {
        config->emailRCs.push_back(emailRule(groupId, "rule" + std::to_string(i)));
        config->emailRCs.back().subject = "主题";
        config->emailRCs.back().unknownFields = later(random);
    }
    return config;
}

std::string contentOf(const CAccountGroupRCConfig& config)
{
    const auto copy = boost::dynamic_pointer_cast<CAccountGroupRCConfig>(config.copy());
    copy->setRevision(0);
    nvservice::setSystemTagOfAll(*copy, {});
    for (CAssetsRC& limit : copy->assetsRCs) {
        limit.ruleId = -1;
    }
    return encodeRecord(*copy).toString();
}

} // namespace testservice
