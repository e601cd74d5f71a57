// SPDX-License-Identifier: Apache-2.0
#include "service/RiskSamples.h"

#include "service/store/Query.h"
#include "support/TestProgram.h"

#include <nvservice/Codec.h>
#include <nvservice/SystemTag.h>

using namespace testservice;
using nvservice::CAccountGroupRCConfig;
using nvservice::EZvTraderType;

class RiskConfigTest : public ServiceTest
{
    Q_OBJECT

    static RiskConfigPtr copyOf(const RiskConfigPtr& config)
    {
        return boost::dynamic_pointer_cast<CAccountGroupRCConfig>(config->copy());
    }

    /// Writes a configuration past the rules, as an older installation may have left it.
    static void writeAsItIs(ServiceFixture& fixture, CAccountGroupRCConfig& config)
    {
        nvservice::setSystemTagOfAll(config, "E");
        config.setRevision(fixture.config(config.groupId)->revision() + 1);
        const service::ServerData data{fixture.store().connection(), fixture.server(0)};
        const service::Change older{"older", 1000};
        const service::RiskChange change{older, older.login, ConfigType};
        QVERIFY(service::updateRiskConfig(data, config, nvservice::encodeRecord(config), change));
    }

private slots:
    void groupThatWasAddedHasTheDefaultConfiguration()
    {
        m_fixture->operate(EZvDataOperation::Add, group("组", First, {future("8001")}));
        const RiskConfigPtr config = m_fixture->loaded(1);
        QVERIFY(config);
        QCOMPARE(config->getKey(), std::string("E|1"));
        QCOMPARE(config->revision(), std::int64_t{1});
        CAccountGroupRCConfig expected;
        expected.groupId = 1;
        QCOMPARE(contentOf(*config), contentOf(expected));
    }

    void savedConfigurationComesBackAsItWas()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        std::mt19937 random(20260105);
        for (int round = 1; round <= 60; ++round) {
            const RiskConfigPtr sent = richConfig(random, id);
            sent->setRevision(round);
            const service::Reply reply = m_fixture->save(sent);
            COMPARE_CODE(reply, EErrorCode::Success);
            QVERIFY(reply.error.errorMsg().empty());
            const RiskConfigPtr config = m_fixture->loaded(id);
            QCOMPARE(contentOf(*config), contentOf(*sent));
            QCOMPARE(config->revision(), std::int64_t{round + 1});
            QCOMPARE(config->getSystemTag(), std::string("E"));
        }
        // Loaded and saved untouched, not even an id changes.
        const RiskConfigPtr untouched = m_fixture->loaded(id);
        COMPARE_CODE(m_fixture->save(untouched), EErrorCode::Success);
        const RiskConfigPtr again = m_fixture->loaded(id);
        untouched->setRevision(again->revision());
        QCOMPARE(nvservice::encodeRecord(*again).toString(), nvservice::encodeRecord(*untouched).toString());
    }

    void whatIsStoredAndUnknownMayStayOrGo()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        CAccountGroupRCConfig old;
        old.groupId = id;
        old.rcRule.list(static_cast<EZvTraderType>(65536)).entries = {entry("NEW1")};
        old.rcRule.list(EZvTraderType::Stock).entries = {entry("600001"), entry("600002")};
        old.rcRule.list(EZvTraderType::Stock).entries[1].direction = static_cast<nvservice::EZVRCDirection>(9);
        old.assetsRCs = {stockLimit(), stockLimit()};
        old.assetsRCs[0].ruleId = 1;
        old.assetsRCs[0].unit = static_cast<nvservice::EZVRCUnit>(77);
        old.assetsRCs[1].ruleId = 2;
        old.assetsRCs[1].assetClass = nvservice::EZVRCAssetClass::ByCategory;
        old.assetsRCs[1].categoryId = 4711;
        old.ratProofSetting.washTradeExemptCategoryIds = {4712, StocksCategory, FuturesCategory};
        old.ratProofSetting.reverseOrderExemptCategoryIds = {4713, InternalCategory};
        writeAsItIs(*m_fixture, old);

        const RiskConfigPtr untouched = m_fixture->loaded(id);
        QCOMPARE(contentOf(*untouched), contentOf(old));
        COMPARE_CODE(m_fixture->save(untouched), EErrorCode::Success);
        RiskConfigPtr config = m_fixture->loaded(id);
        QCOMPARE(contentOf(*config), contentOf(old));

        // What is unknown in one list is not known in the other.
        config->ratProofSetting.washTradeExemptCategoryIds = {4713};
        COMPARE_CODE(m_fixture->save(config), EErrorCode::InvalidValue);
        config->ratProofSetting.washTradeExemptCategoryIds.clear();
        config->rcRule.lists.clear();
        config->assetsRCs.clear();
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        config = m_fixture->loaded(id);
        config->ratProofSetting.washTradeExemptCategoryIds = {4712};
        COMPARE_CODE(m_fixture->save(config), EErrorCode::InvalidValue);
    }

    void secondOfTwoUsersIsToldWhoSavedAndWhenAndNothingIsLost()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const auto zhang = m_fixture->session("zhang", everyRight());
        const auto li = m_fixture->session("li", everyRight());
        const RiskConfigPtr ofZhang = loaded(m_fixture->east(), zhang, id);
        const RiskConfigPtr ofLi = loaded(m_fixture->east(), li, id);
        ofZhang->assetsRCs = {stockLimit()};
        ofZhang->emailRCs = {emailRule(id, "zhang")};
        COMPARE_CODE(save(m_fixture->east(), zhang, ofZhang), EErrorCode::Success);

        ofLi->ratProofSetting.washTradeForbidden = true;
        const service::Reply reply = save(m_fixture->east(), li, ofLi);
        COMPARE_CODE(reply, EErrorCode::Conflict);
        const QString text = QString::fromStdString(reply.error.errorMsg());
        const qint64 at = m_fixture->number("SELECT modified_at FROM group_risk_config");
        QVERIFY2(text.contains("姓名zhang（zhang）"), qPrintable(text));
        QVERIFY2(text.contains(QDateTime::fromMSecsSinceEpoch(at).toString("yyyy-MM-dd HH:mm:ss")), qPrintable(text));
        QVERIFY2(text.contains("组"), qPrintable(text));
        // The request that empties the e-mail rules goes out with every save, so with the refused one too.
        const service::Reply rules =
            operateOn(EmailType, m_fixture->east(), li, EZvDataOperation::Delete, everyEmailRule(id));
        COMPARE_CODE(rules, EErrorCode::Conflict);
        QVERIFY(QString::fromStdString(rules.error.errorMsg()).contains("zhang"));
        ofZhang->emailRCs = {emailRule(id, "zhang")};
        QCOMPARE(contentOf(*m_fixture->config(id)), contentOf(*ofZhang));

        const RiskConfigPtr fresh = loaded(m_fixture->east(), li, id);
        fresh->ratProofSetting.washTradeForbidden = true;
        COMPARE_CODE(save(m_fixture->east(), li, fresh), EErrorCode::Success);
        QCOMPARE(m_fixture->config(id)->assetsRCs.size(), std::size_t{1});
        COMPARE_CODE(operateOn(EmailType, m_fixture->east(), li, EZvDataOperation::Delete, everyEmailRule(id)),
                     EErrorCode::Success);
        QVERIFY(m_fixture->config(id)->emailRCs.empty());
    }

    void openDialogMaySaveAgainUntilSomebodyElseHasSaved()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const auto desk = m_fixture->session("zhang", everyRight());
        const auto zhang = service::findUser({m_fixture->store().connection(), m_fixture->server(0)}, "zhang");
        const auto otherDesk = boost::make_shared<service::Session>(*zhang, m_fixture->server(0).id);
        const RiskConfigPtr held = loaded(m_fixture->east(), desk, id);
        for (int i = 1; i <= 3; ++i) {
            held->assetsRCs.assign(static_cast<std::size_t>(i), stockLimit());
            COMPARE_CODE(save(m_fixture->east(), desk, held), EErrorCode::Success);
            QCOMPARE(held->revision(), std::int64_t{1});
        }
        QCOMPARE(m_fixture->config(id)->revision(), std::int64_t{4});
        QCOMPARE(m_fixture->config(id)->assetsRCs.size(), std::size_t{3});

        const RiskConfigPtr elsewhere = loaded(m_fixture->east(), otherDesk, id);
        COMPARE_CODE(save(m_fixture->east(), desk, held), EErrorCode::Success);
        COMPARE_CODE(save(m_fixture->east(), otherDesk, elsewhere), EErrorCode::Conflict);
        COMPARE_CODE(save(m_fixture->east(), otherDesk, loaded(m_fixture->east(), otherDesk, id)), EErrorCode::Success);
        COMPARE_CODE(save(m_fixture->east(), desk, held), EErrorCode::Conflict);
    }

    void revisionThatNeverWasIsRefusedAlsoWhenNobodyElseHasSaved()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const RiskConfigPtr held = m_fixture->loaded(id);
        COMPARE_CODE(m_fixture->save(held), EErrorCode::Success);
        for (const std::int64_t revision : {0, -1, 99}) {
            held->setRevision(revision);
            COMPARE_CODE(m_fixture->save(held), EErrorCode::Conflict);
        }
    }

    void serverIsNamedWhereTheClientDoesNot()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const RiskConfigPtr config = m_fixture->loaded(id);
        nvservice::setSystemTagOfAll(*config, "");
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        QCOMPARE(m_fixture->text("SELECT record_key FROM audit"), "E|" + std::to_string(id));
    }

    void groupThatIsGoneSaysWhoDeletedItAndOtherServersGroupsAreOutOfScope()
    {
        const GroupPtr record = m_fixture->storedGroup("组");
        const RiskConfigPtr config = m_fixture->loaded(record->groupId);
        config->setSystemTag("W");
        COMPARE_CODE(m_fixture->save(config), EErrorCode::OutOfScope);
        config->setSystemTag("E");
        const auto zhang = m_fixture->session("zhang", everyRight());
        operate(m_fixture->east(), zhang, EZvDataOperation::Delete, record);
        const auto gone = m_fixture->query(ConfigType, std::to_string(record->groupId));
        for (const service::Reply& reply : {m_fixture->save(config), gone}) {
            COMPARE_CODE(reply, EErrorCode::NotFound);
            QVERIFY(reply.error.errorMsg().find("zhang") != std::string::npos);
            QVERIFY(reply.records.empty());
        }
        config->groupId = 4711;
        COMPARE_CODE(m_fixture->save(config), EErrorCode::NotFound);
    }

    void deletedGroupTakesItsConfigurationAlongAndHistoryKeepsIt()
    {
        const GroupPtr record = m_fixture->storedGroup("组");
        const RiskConfigPtr config = m_fixture->loaded(record->groupId);
        config->assetsRCs = {stockLimit()};
        config->emailRCs = {emailRule(record->groupId, "rule")};
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Delete, record), EErrorCode::Success);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM group_risk_config"), 0);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM group_risk_config_history"), 1);
        QVERIFY(m_fixture->store().checkIntegrity().isSuccess());
        for (const char* sql : {"SELECT risk_config FROM account_group_history WHERE operation = 3",
                                "SELECT body FROM group_risk_config_history"}) {
            service::Query history(m_fixture->store().connection(), QString(sql));
            QVERIFY(history.runAndNext());
            nvservice::IDataPtr kept;
            QVERIFY(nvservice::decodeRecord(history.blob(0).constData(),
                                            static_cast<std::size_t>(history.blob(0).size()), kept)
                        .isSuccess());
            QCOMPARE(contentOf(dynamic_cast<const CAccountGroupRCConfig&>(*kept)), contentOf(*config));
        }
    }

    void saveSentTwiceIsAppliedOnce()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const RiskConfigPtr config = m_fixture->loaded(id);
        config->assetsRCs = {stockLimit()};
        for (int i = 0; i < 3; ++i) {
            COMPARE_CODE(m_fixture->save(config, "a"), EErrorCode::Success);
        }
        QCOMPARE(m_fixture->config(id)->revision(), std::int64_t{2});
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit"), 1);

        const RiskConfigPtr wrong = copyOf(config);
        wrong->assetsRCs[0].threshold = -1;
        const service::Reply first = m_fixture->save(wrong, "b");
        COMPARE_CODE(first, EErrorCode::InvalidValue);
        QCOMPARE(m_fixture->save(wrong, "b").error.errorMsg(), first.error.errorMsg());
        COMPARE_CODE(m_fixture->save(config, "b"), EErrorCode::InvalidValue);
        QCOMPARE(m_fixture->config(id)->revision(), std::int64_t{2});
    }

    void newLimitsGetIdsThatAreNeverUsedAgain()
    {
        const int one = m_fixture->storedGroup("一")->groupId;
        const int two = m_fixture->storedGroup("二")->groupId;
        std::set<std::int64_t> seen;
        for (const int id : {one, two, one}) {
            RiskConfigPtr config = m_fixture->loaded(id);
            config->assetsRCs = {stockLimit(), stockLimit()};
            COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
            config = m_fixture->loaded(id);
            for (const auto& limit : config->assetsRCs) {
                QVERIFY(limit.ruleId > 0 && seen.insert(limit.ruleId).second);
            }
            // Known ids stay; one that is there twice, or was never given, is replaced.
            const std::int64_t kept = config->assetsRCs[1].ruleId;
            config->assetsRCs = {config->assetsRCs[1], config->assetsRCs[1], stockLimit()};
            config->assetsRCs[2].ruleId = 123456;
            COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
            config = m_fixture->loaded(id);
            QCOMPARE(config->assetsRCs[0].ruleId, kept);
            QVERIFY(seen.insert(config->assetsRCs[1].ruleId).second);
            QVERIFY(config->assetsRCs[2].ruleId != 123456 && seen.insert(config->assetsRCs[2].ruleId).second);
        }
    }

    void auditAndHistoryKeepEveryState()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const RiskConfigPtr config = m_fixture->loaded(id);
        config->assetsRCs = {stockLimit(10)};
        m_fixture->save(config, "op-1");
        config->assetsRCs = {stockLimit(20)};
        m_fixture->save(config, "op-2");
        config->assetsRCs = {stockLimit(-1)};
        m_fixture->save(config, "op-3");
        const auto thresholds = [&](const char* sql) {
            std::vector<double> found;
            service::Query query(m_fixture->store().connection(), QString(sql));
            for (query.run(); query.next();) {
                nvservice::IDataPtr record;
                const QByteArray body = query.blob(0);
                nvservice::decodeRecord(body.constData(), static_cast<std::size_t>(body.size()), record);
                const auto state = boost::dynamic_pointer_cast<CAccountGroupRCConfig>(record);
                found.push_back(state && !state->assetsRCs.empty() ? state->assetsRCs[0].threshold : 0.0);
            }
            return found;
        };
        using Values = std::vector<double>;
        QCOMPARE(thresholds("SELECT before_body FROM audit ORDER BY id"), (Values{0, 10, 0}));
        QCOMPARE(thresholds("SELECT after_body FROM audit ORDER BY id"), (Values{10, 20, -1}));
        QCOMPARE(thresholds("SELECT body FROM group_risk_config_history ORDER BY revision"), (Values{10, 20}));
        QCOMPARE(m_fixture->column("SELECT outcome FROM audit ORDER BY id"),
                 "0,0," + std::to_string(static_cast<int>(EErrorCode::InvalidValue)));
        QCOMPARE(m_fixture->column("SELECT record_key || operation_id FROM audit ORDER BY id"),
                 std::string("E|1op-1,E|1op-2,E|1op-3"));
    }

    void failureOfAnyStatementLeavesNothingHalfDone_data()
    {
        const support::DataRows<int> row("dataType");
        row("configuration", ConfigType);
        row("e-mail rules", EmailType);
    }
    void failureOfAnyStatementLeavesNothingHalfDone()
    {
        QFETCH(int, dataType);
        int remaining = -1;
        service::StoreOptions options;
        options.faultHook = failureAfter(remaining);
        ServiceFixture fixture(options);
        const int id = fixture.storedGroup("组")->groupId;
        const auto session = fixture.admin();
        const RiskConfigPtr config = loaded(fixture.east(), session, id);
        config->emailRCs = {emailRule(id, "rule")};
        COMPARE_CODE(save(fixture.east(), session, config), EErrorCode::Success);
        config->assetsRCs = {stockLimit()};
        config->ratProofSetting.washTradeExemptCategoryIds = {StocksCategory};
        const bool isConfig = dataType == ConfigType;
        const nvservice::IDataPtr record = isConfig ? nvservice::IDataPtr(config) : everyEmailRule(id);
        const auto kind = isConfig ? EZvDataOperation::Modify : EZvDataOperation::Delete;
        const QStringList before = fixture.content();
        int failures = 0;
        for (int statement = 0;; ++statement) {
            remaining = statement;
            const auto reply = operateOn(dataType, fixture.east(), session, kind, record, "once");
            remaining = -1;
            if (reply.error.isSuccess()) {
                break;
            }
            ++failures;
            COMPARE_CODE(reply, EErrorCode::StorageFailure);
            QVERIFY(!reply.error.errorMsg().empty());
            QCOMPARE(fixture.content(), before);
            QVERIFY(statement < 200);
        }
        QVERIFY(failures > 8);
        QCOMPARE(fixture.config(id)->revision(), std::int64_t{3});
        QVERIFY(fixture.store().checkIntegrity().isSuccess());
    }
};

TEST_WITHOUT_WIDGETS(RiskConfigTest)
#include "tst_risk_config.moc"
