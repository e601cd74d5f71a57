// SPDX-License-Identifier: Apache-2.0
#include "RiskFixture.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"

#include <nvservice/SystemTag.h>

#include <boost/make_shared.hpp>

#include <QRandomGenerator>

#include <algorithm>

using namespace nvservice;
using namespace risk_test;

namespace
{

using ConfigPtr = boost::shared_ptr<CAccountGroupRCConfig>;

template <typename Value>
Value anyOf(QRandomGenerator& random, std::initializer_list<Value> values)
{
    return values.begin()[random.bounded(int(values.size()))];
}

bool isOffered(std::int32_t categoryId)
{
    return categoryId >= 10 && categoryId <= 13;
}

CTradeLimitList randomList(QRandomGenerator& random, int type)
{
    CTradeLimitList list;
    list.traderType = EZvTraderType(type);
    list.unknownFields = BSON("laterList" << type);
    for (int i = random.bounded(6); i > 0; --i) {
        CTradeLimitEntry entry;
        // Some twice, on the same list or on both: an older version may have left them.
        entry.securityCode = "00" + std::to_string(type) + std::to_string(random.bounded(8));
        entry.securityName = anyOf(random, {"平安银行", "", "  "});
        entry.listKind = EZVRCListKind(anyOf(random, {0, 1, 7}));
        entry.direction = EZVRCDirection(anyOf(random, {0, 1, 2, 9}));
        if (random.bounded(2) == 0) {
            entry.unknownFields = BSON("laterEntry" << i);
        }
        list.entries.push_back(entry);
    }
    return list;
}

CAssetsRC randomLimit(QRandomGenerator& random, int ruleId)
{
    CAssetsRC limit;
    limit.ruleId = ruleId;
    limit.scope = EZVRCScopeType(anyOf(random, {0, 1, 2, 8}));
    limit.assetClass = anyOf(random, {EZVRCAssetClass::Stock, EZVRCAssetClass::ByCategory, EZVRCAssetClass(99)});
    limit.categoryId = limit.assetClass == EZVRCAssetClass::ByCategory ? anyOf(random, {10, 990001}) : -1;
    limit.measured = anyOf(random, {EZVRCQuantity::Margin, EZVRCQuantity::FloatingProfit, EZVRCQuantity(77)});
    const bool isAmount = random.bounded(2) == 0;
    limit.base = isAmount ? EZVRCQuantity::None : EZVRCQuantity::NetAssets;
    limit.unit = isAmount ? EZVRCUnit::TenThousandYuan : EZVRCUnit::Percent;
    limit.comparison = EZVRCComparison(anyOf(random, {0, 1, 2, 3, 6}));
    limit.threshold = random.bounded(10000) / 101.0;
    limit.action = EZVRCAction(anyOf(random, {0, 1, 5}));
    limit.enabled = random.bounded(2) == 0;
    limit.remark = "备注 " + std::to_string(ruleId);
    limit.serverName = anyOf(random, {Shanghai, "", "另一分系统"});
    limit.unknownFields = BSON("laterLimit" << ruleId);
    return limit;
}

std::vector<std::int32_t> randomCategories(QRandomGenerator& random)
{
    std::vector<std::int32_t> ids;
    for (int i = random.bounded(8); i > 0; --i) {
        ids.push_back(anyOf(random, {10, 11, 12, 13, 99, -3}));
    }
    return ids;
}

/// Any configuration that a service may hold: values of later versions, trade types without a tab, and what the dialog
/// loses, e-mail rules and exempt categories that are not offered.
ConfigPtr randomConfig(QRandomGenerator& random)
{
    const auto config = boost::make_shared<CAccountGroupRCConfig>();
    config->groupId = 7;
    config->setRevision(random.bounded(1000));
    config->unknownFields = BSON("laterField" << int(random.bounded(1000)));
    config->rcRule.unknownFields = BSON("laterRule" << 1);
    for (const int type : {64, 1, 2, 32, 128, 256, 1024, 16384, 32768}) {
        if (random.bounded(3) != 0) {
            config->rcRule.lists.push_back(randomList(random, type));
        }
    }
    for (int i = random.bounded(5); i > 0; --i) {
        config->assetsRCs.push_back(randomLimit(random, i));
    }
    CRatProofSetting& setting = config->ratProofSetting;
    setting.washTradeForbidden = random.bounded(2) == 0;
    setting.reverseOrderCheck = random.bounded(2) == 0;
    setting.reverseOrderWarnOnly = random.bounded(2) == 0;
    setting.notCountCancelledOrders = random.bounded(2) == 0;
    setting.unknownFields = BSON("laterSetting" << true);
    setting.washTradeExemptCategoryIds = randomCategories(random);
    setting.reverseOrderExemptCategoryIds = randomCategories(random);
    for (int i = random.bounded(3); i > 0; --i) {
        CEmailRC email;
        email.ruleKind = "2";
        email.accountKey = "7";
        email.ruleKey = "rule" + std::to_string(i);
        config->emailRCs.push_back(email);
    }
    return config;
}

/// What is left of a configuration after a save that changes nothing.
std::string expectedDocument(const CAccountGroupRCConfig& config)
{
    const auto expected = boost::dynamic_pointer_cast<CAccountGroupRCConfig>(config.copy());
    nvservice::setSystemTagOfAll(*expected, ShanghaiTag);
    expected->emailRCs.clear();
    CRatProofSetting& setting = expected->ratProofSetting;
    for (auto* const ids : {&setting.washTradeExemptCategoryIds, &setting.reverseOrderExemptCategoryIds}) {
        ids->erase(std::remove_if(ids->begin(), ids->end(), [](std::int32_t id) { return !isOffered(id); }),
                   ids->end());
    }
    return encodeRecord(*expected).toString();
}

} // namespace

/// Configurations that are loaded and saved without a change.
class RiskRoundTripTest : public QObject
{
    Q_OBJECT

private slots:
    void anyConfigurationSavedUntouchedLosesOnlyEmailRulesAndCategoriesThatAreNotOffered()
    {
        RiskFixture client;
        QRandomGenerator random(7131);
        for (int round = 0; round < 60; ++round) {
            const ConfigPtr config = randomConfig(random);
            const std::string expected = expectedDocument(*config);
            client.load(makeGroup(7, "一"), config);
            client.boxes->expectMessage(QMessageBox::Information, "提示", "保存成功");
            client.clickSave();
            const auto operation = client.shanghai->takeOperationOf(DataType::GroupRiskConfig);
            QCOMPARE(encodeRecord(*operation.request.data).toString(), expected);
            operation.handler(support::replyWith({}));
            client.shanghai->takeOperationOf(DataType::EmailRule).handler(support::replyWith({}));
            support::settleCallbacks();
        }
    }
};

TEST_WITH_WIDGETS(RiskRoundTripTest)
#include "tst_risk_round_trip.moc"
