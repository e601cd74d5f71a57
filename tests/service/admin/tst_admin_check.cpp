#include "service/RiskFixture.h"
#include "service/admin/AdminFixture.h"

#include "service/sampledata/SampleData.h"

#include <QtTest>

using namespace testservice;
using nvservice::EZVRCDirection;
using nvservice::EZVRCListKind;
using nvservice::EZvTraderType;

namespace
{

/// "kind group text" of each finding.
QStringList findingsOf(const Outcome& outcome)
{
    QStringList found;
    for (const QJsonValue& value : outcome.json().object().value("findings").toArray()) {
        const QJsonObject finding = value.toObject();
        found << finding.value("kind").toString() + ' ' + QString::number(finding.value("groupId").toInt()) + ' ' +
                     finding.value("text").toString();
    }
    return found;
}

QStringList kindsOf(const Outcome& outcome)
{
    QStringList kinds;
    for (const QString& finding : findingsOf(outcome))
        kinds << finding.section(' ', 0, 0);
    kinds.sort();
    kinds.removeDuplicates();
    return kinds;
}

/// Groups 1 (甲组) and 2 (乙组, prime broker) of the east server that share the account 8001, and nothing wrong.
class CheckFixture : public AdminFixture
{
public:
    CheckFixture()
    {
        storedGroup("甲组");
        storedGroup("乙组", None);
        exec("UPDATE account_group_member SET account_id = (SELECT id FROM account WHERE server_id = 1"
             " AND account_id = '8001') WHERE group_id = 2");
    }

    /// Stores a configuration that the rules would refuse.
    void plant(int groupId, const std::function<void(nvservice::CAccountGroupRCConfig&)>& edit)
    {
        const RiskConfigPtr planted = config(groupId);
        edit(*planted);
        planted->setRevision(planted->revision() + 1);
        service::Transaction transaction(store().connection(), service::Transaction::EKind::Write);
        service::RiskConfigWriter(store().connection(), server(0)).update(*planted, {{"planter", 1}, "x", 7131});
        transaction.commit();
    }
    void plantList(int groupId, EZvTraderType type, EZVRCListKind kind, const std::string& code,
                   EZVRCDirection direction = EZVRCDirection::Both)
    {
        plant(groupId, [&](nvservice::CAccountGroupRCConfig& planted) {
            auto listed = entry(code, kind);
            listed.direction = direction;
            planted.rcRule.list(type).entries.push_back(listed);
        });
    }
    Outcome check() { return run("check --json --server E"); }
};

} // namespace

class AdminCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsFoundWhereNothingIsWrong()
    {
        CheckFixture fixture;
        std::mt19937 random(7);
        RiskConfigPtr config = richConfig(random, 1);
        config->setRevision(1);
        COMPARE_CODE(save(fixture.east(), fixture.admin(), config), EErrorCode::Success);
        const QStringList before = fixture.content();
        const Outcome outcome = fixture.check();
        QVERIFY2(findingsOf(outcome).isEmpty(), qPrintable(findingsOf(outcome).join('\n')));
        COMPARE_EXIT(outcome, 0);
        QCOMPARE(outcome.json().object().value("integrity"), QJsonValue(""));
        const Outcome text = fixture.run("check");
        COMPARE_EXIT(text, 0);
        QCOMPARE(text.output, QString("没有发现问题\n"));
        QCOMPARE(fixture.content(), before);
    }

    void faultsOfMembersAreFound_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<QString>("finding");
        QTest::newRow("closed account")
            << "UPDATE account SET state_code = 5 WHERE account_id = '8001' AND server_id = 1"
            << "closed-account 1 账号期货账号 8001已销户\n"
               "closed-account 2 账号期货账号 8001已销户";
        QTest::newRow("excluded account")
            << "UPDATE account SET excluded = 1 WHERE account_id = '8001' AND server_id = 1"
            << "excluded-account 1 账号期货账号 8001不允许加入账号组\n"
               "excluded-account 2 账号期货账号 8001不允许加入账号组";
        QTest::newRow("member of another institution")
            << "UPDATE account SET institution_id = 2 WHERE account_id = '8001' AND server_id = 1"
            << "other-institution-member 1 账号期货账号 8001不属于账号组的所属机构";
        QTest::newRow("member of another server")
            << "UPDATE account_group_member SET account_id = (SELECT id FROM account WHERE server_id = 2"
               " AND account_id = '8001') WHERE group_id = 1"
            << "other-server-member 1 账号（9）不属于本分系统";
        QTest::newRow("empty group") << "DELETE FROM account_group_member WHERE group_id = 1"
                                     << "empty-group 1 账号组没有账号";
        QTest::newRow("no configuration") << "DELETE FROM group_risk_config WHERE group_id = 1"
                                          << "broken-config 1 没有风控配置";
    }

    void faultsOfMembersAreFound()
    {
        QFETCH(QString, change);
        QFETCH(QString, finding);
        CheckFixture fixture;
        fixture.exec("PRAGMA foreign_keys = OFF");
        fixture.exec(change);
        const Outcome outcome = fixture.check();
        COMPARE_EXIT(outcome, 4);
        QCOMPARE(findingsOf(outcome).join('\n'), finding);
    }

    void faultsOfConfigurationsAreFound()
    {
        CheckFixture fixture;
        fixture.plant(1, [](nvservice::CAccountGroupRCConfig& config) {
            config.rcRule.list(EZvTraderType::Stock).entries = {entry("000001", EZVRCListKind::White), entry("600000"),
                                                                entry("000001", EZVRCListKind::Black), entry("六百")};
            config.ratProofSetting.reverseOrderExemptCategoryIds = {StocksCategory, 990001};
            config.ratProofSetting.washTradeExemptCategoryIds = {InternalCategory, 990002};
            config.assetsRCs = {stockLimit(30), stockLimit(-1)};
            config.assetsRCs[0].assetClass = nvservice::EZVRCAssetClass::ByCategory;
            config.assetsRCs[0].categoryId = 990003;
            config.emailRCs = {emailRule(2, "x")};
        });
        const Outcome outcome = fixture.check();
        COMPARE_EXIT(outcome, 4);
        QCOMPARE(findingsOf(outcome).join('\n'),
                 QString("security-on-both-lists 1 证券黑白名单第3条：证券000001同时在黑名单和白名单中，请只保留一个\n"
                         "bad-list-entry 1 证券黑白名单第4条：“六百”不是证券代码，代码只能由字母、数字和 . - _ & 组成\n"
                         "missing-category 1 反向单交易设置：证券分类（编号990001）不存在\n"
                         "forbidden-category 1 对敲交易设置：“内部”是内部分类，不能豁免\n"
                         "missing-category 1 对敲交易设置：证券分类（编号990002）不存在\n"
                         "missing-category 1 资产组合风控第1条：证券分类（编号990003）不存在\n"
                         "bad-limit 1 资产组合风控第2条：阈值不能小于0，只有浮动盈亏可以为负\n"
                         "bad-email-rule 1 邮件规则“x”不属于该账号组"));
        const Outcome text = fixture.run("check");
        COMPARE_EXIT(text, 4);
        QVERIFY(text.output.endsWith("发现8个问题\n"));
    }

    void ruleOnAnEmptyGroupIsFound()
    {
        CheckFixture fixture;
        fixture.plantList(1, EZvTraderType::Stock, EZVRCListKind::Black, "000001");
        fixture.exec("DELETE FROM account_group_member WHERE group_id = 1");
        QCOMPARE(findingsOf(fixture.check()), QStringList{"rule-on-empty-group 1 账号组没有账号，却设置了风控"});
    }

    void configurationThatCannotBeReadIsFound()
    {
        CheckFixture fixture;
        fixture.exec("UPDATE group_risk_config SET body = x'0102' WHERE group_id = 1");
        const QStringList found = findingsOf(fixture.check());
        QCOMPARE(found.size(), 1);
        QVERIFY2(found[0].startsWith("broken-config 1 数据库中的风控配置已损坏"), qPrintable(found[0]));
    }

    void groupsThatContradictEachOtherAreFound_data()
    {
        QTest::addColumn<int>("typeOfSecond");
        QTest::addColumn<QString>("codeOfSecond");
        QTest::addColumn<int>("kindOfSecond");
        QTest::addColumn<int>("directionOfFirst");
        QTest::addColumn<int>("directionOfSecond");
        QTest::addColumn<bool>("isFound");
        const int stock = static_cast<int>(EZvTraderType::Stock);
        const int future = static_cast<int>(EZvTraderType::Future);
        const int black = static_cast<int>(EZVRCListKind::Black);
        const int white = static_cast<int>(EZVRCListKind::White);
        QTest::newRow("white here, black there") << stock << "000001" << black << 0 << 0 << true;
        QTest::newRow("white in both") << stock << "000001" << white << 0 << 0 << false;
        QTest::newRow("other trade type") << future << "000001" << black << 0 << 0 << false;
        QTest::newRow("other security") << stock << "000002" << black << 0 << 0 << false;
        QTest::newRow("other direction") << stock << "000001" << black << 1 << 2 << false;
        QTest::newRow("one direction of both") << stock << "000001" << black << 0 << 2 << true;
    }

    void groupsThatContradictEachOtherAreFound()
    {
        QFETCH(int, typeOfSecond);
        QFETCH(QString, codeOfSecond);
        QFETCH(int, kindOfSecond);
        QFETCH(int, directionOfFirst);
        QFETCH(int, directionOfSecond);
        QFETCH(bool, isFound);
        CheckFixture fixture;
        fixture.plantList(1, EZvTraderType::Stock, EZVRCListKind::White, "000001",
                          static_cast<EZVRCDirection>(directionOfFirst));
        fixture.plantList(2, static_cast<EZvTraderType>(typeOfSecond), static_cast<EZVRCListKind>(kindOfSecond),
                          codeOfSecond.toStdString(), static_cast<EZVRCDirection>(directionOfSecond));
        const QString finding =
            "contradicting-groups 1 账号8001也在账号组2“乙组”：证券000001在本组为白名单，在该组为黑名单";
        QCOMPARE(findingsOf(fixture.check()), isFound ? QStringList{finding} : QStringList());
    }

    void groupsWithoutACommonAccountDoNotContradictEachOther()
    {
        CheckFixture fixture;
        fixture.plantList(1, EZvTraderType::Stock, EZVRCListKind::White, "abc");
        fixture.plantList(2, EZvTraderType::Stock, EZVRCListKind::Black, "ABC");
        QCOMPARE(findingsOf(fixture.check()).size(), 1);
        fixture.exec("UPDATE account_group_member SET account_id = (SELECT id FROM account WHERE server_id = 1"
                     " AND account_id = '8002') WHERE group_id = 2");
        QCOMPARE(findingsOf(fixture.check()), QStringList());
    }

    void everyServerIsCheckedUnlessOneIsNamed()
    {
        CheckFixture fixture;
        fixture.storedGroup("西组", First, 1);
        fixture.exec("UPDATE account SET state_code = 5 WHERE account_id = '8001' AND server_id = 2");
        QCOMPARE(findingsOf(fixture.check()), QStringList());
        const Outcome all = fixture.run("check --json");
        COMPARE_EXIT(all, 4);
        QCOMPARE(all.json().object().value("findings").toArray().at(0).toObject().value("server"),
                 QJsonValue("西分系统"));
    }

    void sampleDataHasTheFaultsThatAreInItAndNoOthers()
    {
        const QTemporaryDir directory(directoryTemplate());
        service::StoreOptions options;
        options.location = directory.filePath("sample.db");
        utils::NVError error;
        const service::StorePtr store = service::Store::open(options, error);
        QVERIFY(service::generateSampleData(*store, {}).isSuccess());
        const QStringList check = {"check", "--json", "--store", options.location};
        Outcome outcome = runAdmin(check);
        COMPARE_EXIT(outcome, 4);
        QCOMPARE(kindsOf(outcome), (QStringList{"closed-account", "contradicting-groups", "missing-category"}));
        service::Connection& connection = store->connection();
        const auto number = [&connection](const char* sql) {
            service::Query query(connection, QString::fromLatin1(sql));
            return query.runAndNext() ? static_cast<int>(query.integer(0)) : -1;
        };
        QCOMPARE(findingsOf(outcome).filter(QRegularExpression("^closed-account ")).size(),
                 number("SELECT count(*) FROM account_group_member m JOIN account a ON a.id = m.account_id"
                        " WHERE a.state_code = 5"));
        QVERIFY(findingsOf(outcome).filter("990001").size() > 0);
        QCOMPARE(findingsOf(outcome).filter("990001").size(), findingsOf(outcome).filter("990002").size());
        QCOMPARE(findingsOf(outcome).filter(QRegularExpression("^missing-category ")).size(),
                 2 * findingsOf(outcome).filter("990001").size());

        // Without them it is clean.
        connection.exec("DELETE FROM account_group_member WHERE account_id IN"
                        " (SELECT id FROM account WHERE state_code = 5)");
        for (int server = 1; server <= 3; ++server)
            for (const char* category : {"990001", "990002"})
                connection.exec(QString("INSERT INTO category (server_id, category_id, name, category_type, sys_type)"
                                        " VALUES (%1, %2, 'x', 0, 1)")
                                    .arg(server)
                                    .arg(category));
        outcome = runAdmin(check);
        QCOMPARE(kindsOf(outcome), QStringList{"contradicting-groups"});
        connection.exec("UPDATE group_risk_config SET body = NULL");
        outcome = runAdmin(check);
        QVERIFY2(findingsOf(outcome).isEmpty(), qPrintable(findingsOf(outcome).join('\n')));
        COMPARE_EXIT(outcome, 0);
    }

    void damagedFileIsFound()
    {
        CheckFixture fixture;
        fixture.exec("PRAGMA foreign_keys = OFF");
        fixture.exec("DELETE FROM institution WHERE institution_id = 2 AND server_id = 2");
        const Outcome outcome = fixture.run("check --json");
        COMPARE_EXIT(outcome, 4);
        QVERIFY2(outcome.json().object().value("integrity").toString().contains("数据引用不完整"),
                 qPrintable(outcome.output));
    }
};

QTEST_GUILESS_MAIN(AdminCheckTest)
#include "tst_admin_check.moc"
