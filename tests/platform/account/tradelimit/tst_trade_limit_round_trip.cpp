// SPDX-License-Identifier: Apache-2.0
#include "RuleEditorWindow.h"
#include "platform/records/RecordSamples.h"
#include "support/TestProgram.h"

#include <QAV/CAccountStockTradeLimit.h>
#include <QAV/CAssetsProportionWidget.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/Codec.h>
#include <nvservice/NoInstitutionId.h>

#include <rapidcheck.h>

#include <boost/pointer_cast.hpp>

using namespace rule_editor_test;
using nvservice::CAccountGroupRCConfig;
using nvservice::CAccountGroupRCRule;
using nvservice::EZvTraderType;

/// What is loaded and not touched is read back as it came.
class TradeLimitRoundTripTest : public QObject
{
    Q_OBJECT

    static CAccountGroupRCConfig randomConfig()
    {
        for (const samples::RecordKind& kind : samples::recordKinds()) {
            if (std::string(kind.typeName) == "nvservice::CAccountGroupRCConfig") {
                return *boost::dynamic_pointer_cast<CAccountGroupRCConfig>(kind.makeRandom());
            }
        }
        throw std::logic_error("there is no such kind of record");
    }

    /// A part of each trade type shown, with whatever a later version may put into it.
    static CAccountGroupRCRule randomRule(const std::vector<EZvTraderType>& traderTypes)
    {
        CAccountGroupRCRule rule = randomConfig().rcRule;
        for (const EZvTraderType type : traderTypes) {
            const CAccountGroupRCRule other = randomConfig().rcRule;
            if (!other.lists.empty()) {
                rule.list(type).entries = other.lists.front().entries;
            }
        }
        return rule;
    }

    static std::string bytes(const nvservice::IData& record)
    {
        const bson::BSONObj document = nvservice::encodeRecord(record);
        return {document.objdata(), std::size_t(document.objsize())};
    }

private slots:
    void anUntouchedRuleComesBackAsItWas()
    {
        const std::vector<EZvTraderType> types{EZvTraderType::Stock, EZvTraderType::Future, EZvTraderType::StockOption};
        RuleEditorWindow window;
        std::vector<QAV::CAccountStockTradeLimit*> editors;
        for (const EZvTraderType type : types) {
            editors.push_back(new QAV::CAccountStockTradeLimit(QAV::EStockLimitTableType::AccountGroup, type, &window));
        }
        QVERIFY(rc::check("load and read back", [&] {
            CAccountGroupRCRule rule = randomRule(types);
            const std::string before = bytes(rule);
            for (auto* const editor : editors) {
                editor->setAccountGroupRCRule(rule);
            }
            for (auto* const editor : editors) {
                editor->updateAccountGroupRCRule(rule);
            }
            RC_ASSERT(bytes(rule) == before);
        }));
    }

    void oneEditorLeavesTheOtherTradeTypesAlone()
    {
        RuleEditorWindow window;
        QAV::CAccountStockTradeLimit stock(QAV::EStockLimitTableType::AccountGroup, EZvTraderType::Stock, &window);
        QVERIFY(rc::check("only the own part is written", [&] {
            const CAccountGroupRCRule shown = randomRule({EZvTraderType::Stock});
            CAccountGroupRCRule target = randomRule({EZvTraderType::Future, EZvTraderType::Neeq});
            CAccountGroupRCRule expected = target;
            if (shown.findList(EZvTraderType::Stock) && !shown.findList(EZvTraderType::Stock)->entries.empty()) {
                expected.list(EZvTraderType::Stock).entries = shown.findList(EZvTraderType::Stock)->entries;
            } else if (expected.findList(EZvTraderType::Stock)) {
                expected.list(EZvTraderType::Stock).entries.clear();
            }
            stock.setAccountGroupRCRule(shown);
            stock.updateAccountGroupRCRule(target);
            RC_ASSERT(bytes(target) == bytes(expected));
        }));
    }

    void untouchedAssetLimitsComeBackAsTheyWere()
    {
        RuleEditorWindow window;
        auto* const editor =
            new QAV::CAssetsProportionWidget(1276, false, nvservice::EZVRCScopeType::AccountGroup, -1, &window);
        window.showWith(editor);
        QVERIFY(rc::check("load and read back", [&] {
            CAccountGroupRCConfig config = randomConfig();
            const std::string before = bytes(config);
            editor->setAssetsRCs(nvservice::NoInstitutionId, config.assetsRCs, QString());
            // The cells' editors exist once they have been painted.
            window.grab();
            QString message;
            editor->isDataValid(message);
            config.assetsRCs.clear();
            editor->getAssetsRCs(config.assetsRCs);
            RC_ASSERT(bytes(config) == before);
        }));
    }
};

TEST_WITH_WIDGETS(TradeLimitRoundTripTest)
#include "tst_trade_limit_round_trip.moc"
