// SPDX-License-Identifier: Apache-2.0
#include "service/RiskSamples.h"
#include "service/admin/AdminFixture.h"

#include "service/store/Query.h"
#include "support/TestProgram.h"

#include <nvservice/Codec.h>

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
    for (const QString& finding : findingsOf(outcome)) {
        kinds << finding.section(' ', 0, 0);
    }
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
        execWithHistory("UPDATE account_group_member SET account_id = (SELECT id FROM account WHERE server_id = 1"
                        " AND account_id = '8001') WHERE group_id = 2");
    }

    /// Stores a configuration that the rules would refuse.
    void plant(int groupId, const std::function<void(nvservice::CAccountGroupRCConfig&)>& edit)
    {
        const RiskConfigPtr planted = config(groupId);
        edit(*planted);
        planted->setRevision(planted->revision() + 1);
        service::Transaction transaction(store().connection(), service::Transaction::EKind::Write);
        service::updateRiskConfig({store().connection(), server(0)}, *planted, nvservice::encodeRecord(*planted),
                                  {{"planter", 1}, "x", 7131});
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
    /// Changes something as if a change of the service had left it so.
    void execWithHistory(const QString& sql)
    {
        exec(sql);
        for (int group : {1, 2}) {
            exec(QString("UPDATE account_group_history SET members = coalesce((SELECT group_concat(account_id)"
                         " FROM account_group_member WHERE server_id = 1 AND group_id = %1), '')"
                         " WHERE server_id = 1 AND group_id = %1")
                     .arg(group));
        }
    }
    Outcome check() { return run("check --json --server E"); }
};

} // namespace

class AdminCheckTest : public support::FixtureTest<CheckFixture>
{
    Q_OBJECT

private slots:
    void nothingIsFoundWhereNothingIsWrong()
    {
        std::mt19937 random(7);
        RiskConfigPtr config = richConfig(random, 1);
        config->setRevision(1);
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        const QStringList before = m_fixture->content();
        const Outcome outcome = m_fixture->check();
        QVERIFY2(findingsOf(outcome).isEmpty(), qPrintable(findingsOf(outcome).join('\n')));
        COMPARE_EXIT(outcome, 0);
        QCOMPARE(outcome.json().object().value("integrity"), QJsonValue(""));
        const Outcome text = m_fixture->run("check");
        COMPARE_EXIT(text, 0);
        QCOMPARE(text.output, QString("没有发现问题\n"));
        QCOMPARE(m_fixture->content(), before);
    }

    void faultsOfMembersAreFound_data()
    {
        const support::DataRows<QString, QString> row("change", "finding");
        row("closed account", "UPDATE account SET state_code = 5 WHERE account_id = '8001' AND server_id = 1",
            "closed-account 1 账号期货账号 8001已销户\n"
            "closed-account 2 账号期货账号 8001已销户");
        row("excluded account", "UPDATE account SET excluded = 1 WHERE account_id = '8001' AND server_id = 1",
            "excluded-account 1 账号期货账号 8001不允许加入账号组\n"
            "excluded-account 2 账号期货账号 8001不允许加入账号组");
        row("member of another institution",
            "UPDATE account SET institution_id = 2 WHERE account_id = '8001' AND server_id = 1",
            "other-institution-member 1 账号期货账号 8001不属于账号组的所属机构");
        row("member of another server",
            "UPDATE account_group_member SET account_id = (SELECT id FROM account WHERE server_id = 2"
            " AND account_id = '8001') WHERE group_id = 1",
            "other-server-member 1 账号（9）不属于本分系统");
        row("empty group", "DELETE FROM account_group_member WHERE group_id = 1", "empty-group 1 账号组没有账号");
        row("no configuration", "DELETE FROM group_risk_config WHERE group_id = 1", "broken-config 1 没有风控配置");
    }
    void faultsOfMembersAreFound()
    {
        QFETCH(QString, change);
        QFETCH(QString, finding);
        m_fixture->exec("PRAGMA foreign_keys = OFF");
        m_fixture->execWithHistory(change);
        const Outcome outcome = m_fixture->check();
        COMPARE_EXIT(outcome, 4);
        QCOMPARE(findingsOf(outcome).join('\n'), finding);
    }

    /// Group 1 has the revisions 1 (甲组) and 2 (甲组二) and a configuration of the revisions 1 to 3 with a limit of
    /// the id 2; group 3 was deleted at revision 2.
    void damagedHistoriesAndCountersAreFound_data()
    {
        const support::DataRows<QString, QString> row("damage", "findings");
        row("nothing", "UPDATE account_group SET revision = 2 WHERE group_id = 1", "");
        row("first revision gone", "DELETE FROM account_group_history WHERE group_id = 1 AND revision = 1",
            "history-gap 1 账号组历史中缺少修订1");
        row("several revisions gone",
            "UPDATE account_group_history SET revision = 5 WHERE group_id = 3 AND revision = 2",
            "history-gap 3 账号组历史中缺少修订2至修订4");
        row("no history", "DELETE FROM account_group_history WHERE group_id = 1", "history-gap 1 账号组没有历史");
        row("last revision gone", "DELETE FROM account_group_history WHERE group_id = 1 AND revision = 2",
            "history-mismatch 1 账号组为修订2，历史中最后为修订1");
        row("other revision", "UPDATE account_group SET revision = 7 WHERE group_id = 1",
            "history-mismatch 1 账号组为修订7，历史中最后为修订2");
        row("other name", "UPDATE account_group SET name = 'x' WHERE group_id = 1",
            "history-mismatch 1 账号组的内容与历史中的修订2不同");
        row("other institution", "UPDATE account_group SET institution_id = NULL WHERE group_id = 1",
            "history-mismatch 1 账号组的内容与历史中的修订2不同");
        row("other members",
            "UPDATE account_group_member SET account_id = (SELECT id FROM account WHERE server_id = 1"
            " AND account_id = '8002') WHERE group_id = 1",
            "history-mismatch 1 账号组的内容与历史中的修订2不同");
        row("other unknown fields", "UPDATE account_group SET extra = x'0500000000' WHERE group_id = 1",
            "history-mismatch 1 账号组的内容与历史中的修订2不同");
        row("deletion gone", "DELETE FROM account_group_history WHERE group_id = 3 AND revision = 2",
            "history-mismatch 3 账号组已不在，历史中却没有删除");
        row("deletion of what is there",
            "UPDATE account_group_history SET operation = 3 WHERE group_id = 1 AND revision = 2",
            "history-mismatch 1 账号组历史以删除结束，账号组却还在");
        row("deletion in the middle",
            "UPDATE account_group_history SET operation = 3 WHERE group_id = 1 AND revision = 1",
            "history-mismatch 1 账号组历史在删除之后还有修订2");
        row("configuration's revision gone", "DELETE FROM group_risk_config_history WHERE revision = 2",
            "history-gap 1 风控配置历史中缺少修订2");
        row("configuration's last revision gone", "DELETE FROM group_risk_config_history WHERE revision = 3",
            "history-mismatch 1 风控配置为修订3，历史中最后为修订2");
        row("configuration's history gone", "DELETE FROM group_risk_config_history",
            "history-mismatch 1 风控配置为修订3，历史中最后为修订1");
        row("other configuration", "UPDATE group_risk_config SET body = NULL WHERE group_id = 1",
            "history-mismatch 1 风控配置的内容与历史中的修订3不同");
        row("past configuration that can't be read",
            "UPDATE group_risk_config_history SET body = x'0102' WHERE revision = 2",
            "broken-config 1 风控配置历史修订2：");
        row("group counter", "UPDATE sub_system SET next_group_id = 3 WHERE id = 1",
            "low-counter 0 下一个账号组编号（3）已经用过，用到了3");
        row("group counter below a restored backup's",
            "INSERT INTO epoch (system_tag, revision, next_group_id, next_rule_id, began_at) VALUES ('E', 9, 100, 1, "
            "0)",
            "low-counter 0 下一个账号组编号（4）已经用过，用到了99");
        row("limit counter", "UPDATE sub_system SET next_rule_id = 2 WHERE id = 1",
            "low-counter 0 下一个资产组合风控编号（2）已经用过，用到了2");
        row("unknown fields that can't be read", "UPDATE account_group SET extra = x'0102' WHERE group_id = 1",
            "broken-fields 1 数据库中的记录已损坏：|history-mismatch 1 账号组的内容与历史中的修订2不同");
        row("past unknown fields that can't be read",
            "UPDATE account_group_history SET extra = x'0102' WHERE group_id = 1 AND revision = 1",
            "broken-fields 1 账号组历史修订1：数据库中的记录已损坏：");
    }
    void damagedHistoriesAndCountersAreFound()
    {
        QFETCH(QString, damage);
        QFETCH(QString, findings);
        const auto renamed = boost::make_shared<CAccountGroup>(*m_fixture->current(1));
        renamed->groupName = "甲组二";
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, renamed), EErrorCode::Success);
        for (int times = 0; times < 2; ++times) {
            const RiskConfigPtr config = m_fixture->loaded(1);
            config->assetsRCs = {stockLimit(1 + times)};
            COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        }
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Delete, m_fixture->storedGroup("丙组")), EErrorCode::Success);
        QCOMPARE(findingsOf(m_fixture->check()), QStringList());

        m_fixture->exec(damage);
        // What follows from a finding of another group would be missing if one ended the check.
        m_fixture->exec("UPDATE account_group_member SET position = 7 WHERE group_id = 2");
        m_fixture->exec("UPDATE account_group SET revision = 8 WHERE group_id = 2");
        const Outcome outcome = m_fixture->check();
        COMPARE_EXIT(outcome, 4);
        QStringList expected = findings.split('|', Qt::SkipEmptyParts);
        expected << "history-mismatch 2 账号组为修订8，历史中最后为修订1";
        QStringList found = findingsOf(outcome);
        QCOMPARE(found.size(), expected.size());
        for (QStringList* list : {&found, &expected}) {
            list->sort();
        }
        for (int i = 0; i < found.size(); ++i) {
            QVERIFY2(found[i].startsWith(expected[i]), qPrintable(found[i]));
        }
    }

    void revisionsThatARestoreLeavesOutAreNoGap()
    {
        m_fixture->exec("INSERT INTO epoch (system_tag, revision, next_group_id, next_rule_id, began_at)"
                        " VALUES ('E', 9, 1, 1, 0)");
        for (const char* table : {"account_group", "account_group_history", "group_risk_config"}) {
            m_fixture->exec(QString("UPDATE %1 SET revision = 9 WHERE group_id = 2").arg(table));
        }
        m_fixture->exec("INSERT INTO group_risk_config_history (server_id, group_id, revision, changed_by, changed_at,"
                        " session, data_type) VALUES (1, 2, 9, 'x', 0, '', 7131)");
        QCOMPARE(findingsOf(m_fixture->check()), QStringList());
        m_fixture->exec("DELETE FROM epoch");
        QCOMPARE(findingsOf(m_fixture->check()), (QStringList{"history-gap 2 账号组历史中缺少修订1至修订8",
                                                              "history-gap 2 风控配置历史中缺少修订2至修订8"}));
    }

    void databaseIsInOrderAfterARestore()
    {
        const QString file = m_fixture->path("backup.db");
        COMPARE_EXIT(m_fixture->run(QStringList{"backup", file}), 0);
        for (int times = 0; times < 2; ++times) {
            COMPARE_EXIT(m_fixture->run(QStringList{"restore", file, "--force"}), 0);
            QCOMPARE(findingsOf(m_fixture->check()), QStringList());
            m_fixture->storedGroup("组" + std::to_string(times));
            QCOMPARE(findingsOf(m_fixture->check()), QStringList());
        }
    }

    void twoListsOfATradeTypeAreFoundWithWhatTheyHide()
    {
        m_fixture->plant(1, [](nvservice::CAccountGroupRCConfig& config) {
            config.rcRule.list(EZvTraderType::Stock).entries = {entry("000001", EZVRCListKind::White)};
            nvservice::CTradeLimitList second = config.rcRule.lists.front();
            second.entries = {entry("600000"), entry("000001", EZVRCListKind::Black)};
            config.rcRule.lists.push_back(second);
        });
        QCOMPARE(findingsOf(m_fixture->check()),
                 (QStringList{"repeated-list 1 证券黑白名单重复", "security-on-both-lists 1 证券黑白名单第3条："
                                                                  "证券000001同时在黑名单和白名单中，请只保留一个"}));
    }

    void faultsOfConfigurationsAreFound()
    {
        m_fixture->plant(1, [](nvservice::CAccountGroupRCConfig& config) {
            config.rcRule.list(EZvTraderType::Stock).entries = {entry("000001", EZVRCListKind::White), entry("600000"),
                                                                entry("000001", EZVRCListKind::Black), entry("六百")};
            config.ratProofSetting.reverseOrderExemptCategoryIds = {StocksCategory, 990001};
            config.ratProofSetting.washTradeExemptCategoryIds = {InternalCategory, 990002};
            config.assetsRCs = {stockLimit(30), stockLimit(-1)};
            config.assetsRCs[0].assetClass = nvservice::EZVRCAssetClass::ByCategory;
            config.assetsRCs[0].categoryId = 990003;
            config.emailRCs = {emailRule(2, "x")};
        });
        const Outcome outcome = m_fixture->check();
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
        const Outcome text = m_fixture->run("check");
        COMPARE_EXIT(text, 4);
        QVERIFY(text.output.endsWith("发现8个问题\n"));
    }

    void ruleOnAnEmptyGroupIsFound()
    {
        m_fixture->plantList(1, EZvTraderType::Stock, EZVRCListKind::Black, "000001");
        m_fixture->execWithHistory("DELETE FROM account_group_member WHERE group_id = 1");
        QCOMPARE(findingsOf(m_fixture->check()), QStringList{"rule-on-empty-group 1 账号组没有账号，却设置了风控"});
    }

    void configurationThatCannotBeReadIsFound()
    {
        m_fixture->exec("UPDATE group_risk_config SET body = x'0102' WHERE group_id = 1");
        const QStringList found = findingsOf(m_fixture->check());
        QCOMPARE(found.size(), 2);
        QVERIFY2(found[0].startsWith("broken-config 1 数据库中的风控配置已损坏"), qPrintable(found[0]));
        QCOMPARE(found[1], QString("history-mismatch 1 风控配置的内容与历史中的修订1不同"));
    }

    void groupsThatContradictEachOtherAreFound_data()
    {
        const support::DataRows<int, QString, int, int, int, bool> row(
            "typeOfSecond", "codeOfSecond", "kindOfSecond", "directionOfFirst", "directionOfSecond", "isFound");
        const int stock = static_cast<int>(EZvTraderType::Stock);
        const int future = static_cast<int>(EZvTraderType::Future);
        const int black = static_cast<int>(EZVRCListKind::Black);
        const int white = static_cast<int>(EZVRCListKind::White);
        row("white here, black there", stock, "000001", black, 0, 0, true);
        row("white in both", stock, "000001", white, 0, 0, false);
        row("other trade type", future, "000001", black, 0, 0, false);
        row("other security", stock, "000002", black, 0, 0, false);
        row("other direction", stock, "000001", black, 1, 2, false);
        row("one direction of both", stock, "000001", black, 0, 2, true);
    }
    void groupsThatContradictEachOtherAreFound()
    {
        QFETCH(int, typeOfSecond);
        QFETCH(QString, codeOfSecond);
        QFETCH(int, kindOfSecond);
        QFETCH(int, directionOfFirst);
        QFETCH(int, directionOfSecond);
        QFETCH(bool, isFound);
        m_fixture->plantList(1, EZvTraderType::Stock, EZVRCListKind::White, "000001",
                             static_cast<EZVRCDirection>(directionOfFirst));
        m_fixture->plantList(2, static_cast<EZvTraderType>(typeOfSecond), static_cast<EZVRCListKind>(kindOfSecond),
                             codeOfSecond.toStdString(), static_cast<EZVRCDirection>(directionOfSecond));
        const QString finding =
            "contradicting-groups 1 账号8001也在账号组2“乙组”：证券000001在本组为白名单，在该组为黑名单";
        QCOMPARE(findingsOf(m_fixture->check()), isFound ? QStringList{finding} : QStringList());
    }

    void groupsWithoutACommonAccountDoNotContradictEachOther()
    {
        m_fixture->plantList(1, EZvTraderType::Stock, EZVRCListKind::White, "abc");
        m_fixture->plantList(2, EZvTraderType::Stock, EZVRCListKind::Black, "ABC");
        QCOMPARE(findingsOf(m_fixture->check()).size(), 1);
        m_fixture->execWithHistory("UPDATE account_group_member SET account_id = (SELECT id FROM account"
                                   " WHERE server_id = 1 AND account_id = '8002') WHERE group_id = 2");
        QCOMPARE(findingsOf(m_fixture->check()), QStringList());
    }

    void everyServerIsCheckedUnlessOneIsNamed()
    {
        m_fixture->storedGroup("西组", First, 1);
        m_fixture->exec("UPDATE account SET state_code = 5 WHERE account_id = '8001' AND server_id = 2");
        QCOMPARE(findingsOf(m_fixture->check()), QStringList());
        const Outcome all = m_fixture->run("check --json");
        COMPARE_EXIT(all, 4);
        QCOMPARE(all.json().object().value("findings").toArray().at(0).toObject().value("server"),
                 QJsonValue("西分系统"));
    }

    void sampleDataHasTheFaultsThatAreInItAndNoOthers()
    {
        const TestDatabase database;
        support::makeSampleDatabase(database.location(), {});
        const support::RealService service(database.location());
        const QStringList check = {"check", "--json", "--store", database.location()};
        Outcome outcome = runAdmin(check);
        COMPARE_EXIT(outcome, 4);
        QCOMPARE(kindsOf(outcome), (QStringList{"closed-account", "contradicting-groups", "missing-category"}));
        QCOMPARE(findingsOf(outcome).filter(QRegularExpression("^closed-account ")).size(),
                 static_cast<int>(
                     service.number("SELECT count(*) FROM account_group_member m JOIN account a ON a.id = m.account_id"
                                    " WHERE a.state_code = 5")));
        QVERIFY(findingsOf(outcome).filter("990001").size() > 0);
        QCOMPARE(findingsOf(outcome).filter("990001").size(), findingsOf(outcome).filter("990002").size());
        QCOMPARE(findingsOf(outcome).filter(QRegularExpression("^missing-category ")).size(),
                 2 * findingsOf(outcome).filter("990001").size());

        // Without them it is clean.
        service.exec("DELETE FROM account_group_member WHERE account_id IN"
                     " (SELECT id FROM account WHERE state_code = 5)");
        for (int server = 1; server <= 3; ++server) {
            for (const char* category : {"990001", "990002"}) {
                service.exec(QString("INSERT INTO category (server_id, category_id, name, category_type, sys_type)"
                                     " VALUES (%1, %2, 'x', 0, 1)")
                                 .arg(server)
                                 .arg(category));
            }
        }
        outcome = runAdmin(check);
        QCOMPARE(kindsOf(outcome), (QStringList{"contradicting-groups", "history-mismatch"}));
        service.exec("UPDATE account_group_history SET members ="
                     " coalesce((SELECT group_concat(account_id) FROM (SELECT account_id FROM account_group_member m"
                     " WHERE m.server_id = account_group_history.server_id"
                     " AND m.group_id = account_group_history.group_id ORDER BY position)), '')");
        QCOMPARE(kindsOf(runAdmin(check)), QStringList{"contradicting-groups"});
        service.exec("UPDATE group_risk_config SET body = NULL");
        service.exec("UPDATE group_risk_config_history SET body = NULL");
        outcome = runAdmin(check);
        QVERIFY2(findingsOf(outcome).isEmpty(), qPrintable(findingsOf(outcome).join('\n')));
        COMPARE_EXIT(outcome, 0);
    }

    void damagedFileIsFound()
    {
        m_fixture->exec("PRAGMA foreign_keys = OFF");
        m_fixture->exec("DELETE FROM institution WHERE institution_id = 2 AND server_id = 2");
        const Outcome outcome = m_fixture->run("check --json");
        COMPARE_EXIT(outcome, 4);
        QVERIFY2(outcome.json().object().value("integrity").toString().contains("数据引用不完整"),
                 qPrintable(outcome.output));
    }
};

TEST_WITHOUT_WIDGETS(AdminCheckTest)
#include "tst_admin_check.moc"
