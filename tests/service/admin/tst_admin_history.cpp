// SPDX-License-Identifier: Apache-2.0
#include "service/RiskSamples.h"
#include "service/admin/AdminFixture.h"

#include "service/admin/Times.h"
#include "service/engine/GroupPast.h"
#include "support/TestProgram.h"

using namespace testservice;

namespace
{

constexpr std::int64_t Day = 24 * 60 * 60 * 1000;

QStringList accountsOf(const QJsonObject& group)
{
    QStringList accounts;
    for (const QJsonValue& account : group.value("accounts").toArray()) {
        const QString unit = account.toObject().value("unitId").toString();
        accounts << account.toObject().value("accountId").toString() + (unit.isEmpty() ? "" : "-" + unit);
    }
    return accounts;
}

/// A group of the east server with four revisions, each a day apart, the first at the first millisecond of 2026 UTC:
/// 甲组 (8001), 甲组改 (8001, 8002), 甲组改 (8002, 5001 while it was open), deleted unless `isKept`.
class PastFixture : public AdminFixture
{
public:
    explicit PastFixture(bool isKept = true)
    {
        auto record = group("甲组", First, {future("8001")});
        add(EZvDataOperation::Add, record);
        id = current(1)->groupId;
        record = boost::dynamic_pointer_cast<CAccountGroup>(current(id)->copy());
        record->groupName = "甲组改";
        record->accounts = {future("8001"), future("8002")};
        add(EZvDataOperation::Modify, record);
        exec("UPDATE account SET state_code = 0 WHERE account_id = '5001'");
        record = boost::dynamic_pointer_cast<CAccountGroup>(current(id)->copy());
        record->accounts = {future("8002"), future("5001")};
        add(EZvDataOperation::Modify, record);
        if (!isKept) {
            add(EZvDataOperation::Delete, current(id));
        }
        for (int revision = 1; revision <= 4; ++revision) {
            exec(QString("UPDATE account_group_history SET changed_at = %1 WHERE revision = %2")
                     .arg(timeOf(revision))
                     .arg(revision));
        }
    }

    static std::int64_t timeOf(int revision) { return 1767225600000 + (revision - 1) * Day; }
    QString at(std::int64_t time) const { return service::isoTime(time); }
    Outcome show(const QStringList& options)
    {
        return run(QStringList{"group", "show", "--server", "E", "--json", "--id", QString::number(id)} + options);
    }
    Outcome restore(const QStringList& options)
    {
        return run(QStringList{"group", "restore", "--server", "E", "--as", "boss", "--id", QString::number(id)} +
                   options);
    }

    int id = 0;

private:
    void add(EZvDataOperation operation, const nvservice::IDataPtr& record)
    {
        const service::Reply reply = operate(operation, record);
        if (!reply.error.isSuccess()) {
            throw std::runtime_error(reply.error.errorMsg());
        }
    }
};

} // namespace

class AdminHistoryTest : public QObject
{
    Q_OBJECT

private slots:
    void groupIsShownAsItWasAtATime()
    {
        PastFixture fixture;
        const auto shownAt = [&](std::int64_t time) {
            const Outcome outcome = fixture.show({"--at", fixture.at(time)});
            const QJsonObject group = outcome.json().object().value("group").toObject();
            return outcome.exitCode == 0 ? group.value("groupName").toString() + " " + accountsOf(group).join(",")
                                         : outcome.errors.trimmed();
        };
        QVERIFY(shownAt(fixture.timeOf(1) - 1).endsWith("还不存在"));
        QCOMPARE(shownAt(fixture.timeOf(1)), QString("甲组 8001"));
        QCOMPARE(shownAt(fixture.timeOf(2) - 1), QString("甲组 8001"));
        QCOMPARE(shownAt(fixture.timeOf(2)), QString("甲组改 8001,8002"));
        QCOMPARE(shownAt(fixture.timeOf(3)), QString("甲组改 8002,5001"));
        const QJsonObject json = fixture.show({}).json().object();
        QCOMPARE(json.value("revision"), QJsonValue(3));
        QCOMPARE(json.value("deleted"), QJsonValue(false));
        QCOMPARE(json.value("change").toObject().value("by"), QJsonValue("admin"));
        QCOMPARE(json.value("risk").toObject().value("revision"), QJsonValue(1));
    }

    void revisionIsShownForPeopleAndPrograms()
    {
        PastFixture fixture;
        const QJsonObject second = fixture.show({"--revision", "2"}).json().object().value("group").toObject();
        QCOMPARE(accountsOf(second), (QStringList{"8001", "8002"}));
        const Outcome text = fixture.run("group show --server E --id 1 --revision 2");
        COMPARE_EXIT(text, 0);
        QVERIFY2(text.output.startsWith("账号组 1“甲组改” 修订2（admin 于 "), qPrintable(text.output));
        QVERIFY(text.output.contains(
            "所属机构：甲机构\n账号（2个）\n  期货账号 8001 户名8001\n  期货账号 8002 户名8002\n"));
        COMPARE_ERROR(fixture.show({"--revision", "9"}), 1, "账号组1没有修订9");
        COMPARE_EXIT(fixture.show({"--revision", "2", "--at", "2026-01-05"}), 2);
        COMPARE_EXIT(fixture.show({"--at", "gestern"}), 2);
    }

    void groupNameWithPercentSignsIsShownAsItIs()
    {
        AdminFixture fixture;
        const service::Reply reply =
            fixture.operate(EZvDataOperation::Add, group("涨100%3%7组", First, {future("8001")}));
        QVERIFY2(reply.error.isSuccess(), reply.error.errorMsg().c_str());
        const Outcome outcome = fixture.run("group show --server E --id 1");
        COMPARE_EXIT(outcome, 0);
        QVERIFY2(outcome.output.startsWith("账号组 1“涨100%3%7组” 修订1（"), qPrintable(outcome.output));
    }

    void deletedGroupIsStillKnown()
    {
        PastFixture fixture(false);
        COMPARE_ERROR(fixture.show({}), 1, "删除");
        COMPARE_EXIT(fixture.show({"--at", fixture.at(fixture.timeOf(3))}), 0);
        const Outcome history = fixture.run("group history --server E --name 甲组 --json");
        COMPARE_EXIT(history, 0);
        QCOMPARE(history.json().array().size(), 4);
        QCOMPARE(history.item("revision", 4).value("operation").toString(), QString("删除"));
        QCOMPARE(history.item("revision", 2).value("name").toString(), QString("甲组改"));
        QCOMPARE(history.item("revision", 2).value("accounts"), QJsonValue(2));
        QCOMPARE(history.item("revision", 1).value("at").toString(), service::isoTime(fixture.timeOf(1)));
    }

    void groupsAreFoundByIdAndByEveryNameThatTheyHad()
    {
        PastFixture fixture;
        fixture.storedGroup("乙组");
        COMPARE_EXIT(fixture.run("group show --server E --name 甲组改"), 0);
        COMPARE_EXIT(fixture.run("group show --server E --name 甲组"), 0);
        COMPARE_ERROR(fixture.run("group show --server E --name 丙组"), 1, "没有名为“丙组”的账号组");
        COMPARE_EXIT(fixture.run("group show --server E --id 99"), 1);
        COMPARE_EXIT(fixture.run("group show --server W --id 1"), 1);
        COMPARE_EXIT(fixture.run("group show --server E --id x"), 2);
        COMPARE_EXIT(fixture.run("group show --server E"), 2);
        COMPARE_EXIT(fixture.run("group show --server E --id 1 --name 甲组"), 2);
        fixture.exec("UPDATE account_group_history SET name = '甲组' WHERE group_id = 2");
        COMPARE_ERROR(fixture.run("group show --server E --name 甲组"), 1, "请用 --id 指定：1、2");
        const Outcome list = fixture.run("group list --server E --json");
        QCOMPARE(list.json().array().size(), 2);
        QCOMPARE(list.item("id", 1).value("accounts"), QJsonValue(2));
        QCOMPARE(list.item("id", 1).value("institution"), QJsonValue("甲机构"));
    }

    void pastRevisionBecomesANewOne()
    {
        PastFixture fixture;
        const auto session = fixture.session("li", everyRight());
        const GroupPtr outdated = fixture.current(1);
        COMPARE_OUTPUT(fixture.restore({"--revision", "1"}), 0, "新的修订为4");
        const GroupPtr now = fixture.current(1);
        QCOMPARE(now->revision(), 4);
        QCOMPARE(now->groupName, std::string("甲组"));
        QCOMPARE(now->accounts.size(), std::size_t{1});
        QCOMPARE(now->accounts[0]->accountId, std::string("8001"));
        QCOMPARE(fixture.text("SELECT changed_by || name FROM account_group_history WHERE revision = 4"),
                 toolUserAsBoss().toStdString() + "甲组");
        QCOMPARE(fixture.audit(1), QStringList{toolUserAsBoss() + " 0 E|1 0"});
        COMPARE_CODE(operate(fixture.east(), session, EZvDataOperation::Modify, outdated), EErrorCode::Conflict);
    }

    void restoringByTimeTakesTheRevisionOfThatTime()
    {
        PastFixture fixture;
        COMPARE_EXIT(fixture.restore({"--at", fixture.at(fixture.timeOf(2))}), 0);
        QCOMPARE(fixture.current(1)->accounts.size(), std::size_t{2});
        QCOMPARE(fixture.current(1)->accounts[0]->accountId, std::string("8001"));
    }

    void restoringWhatIsThereAlreadyStoresNothing()
    {
        PastFixture fixture;
        const QStringList before = fixture.content();
        COMPARE_OUTPUT(fixture.restore({"--revision", "3"}), 0, "没有变化");
        QCOMPARE(fixture.content(), before);
        COMPARE_EXIT(fixture.restore({}), 2);
    }

    void rulesOfTodayApply_data()
    {
        const support::DataRows<QString, QString, QString> row("change", "revision", "reason");
        row("account was closed", "UPDATE account SET state_code = 5 WHERE account_id = '8001'", "1",
            "账号“8001”已销户，不能加入账号组");
        row("account was excluded", "UPDATE account SET excluded = 1 WHERE account_id = '8001'", "2",
            "账号“8001”不允许加入账号组");
        row("account moved to another institution", "UPDATE account SET institution_id = 2 WHERE account_id = '8001'",
            "1", "账号“8001”不属于账号组的所属机构");
        row("name was taken",
            "INSERT INTO account_group (server_id, group_id, name, revision, modified_by,"
            " modified_at) VALUES (1, 50, '甲组', 1, 'x', 0)",
            "1", "账号组名称“甲组”已被使用");
        row("no such revision", "UPDATE sub_system SET name = name", "9", "账号组1没有修订9");
    }
    void rulesOfTodayApply()
    {
        QFETCH(QString, change);
        QFETCH(QString, revision);
        QFETCH(QString, reason);
        PastFixture fixture;
        fixture.exec(change);
        const Outcome outcome = fixture.restore({"--revision", revision});
        COMPARE_ERROR(outcome, 1, reason);
        QCOMPARE(fixture.current(1)->revision(), 3);
        QCOMPARE(fixture.number("SELECT count(*) FROM account_group_history WHERE server_id = 1"), 3);
        QCOMPARE(QString::fromStdString(
                     fixture.text("SELECT message FROM audit WHERE login LIKE '% as boss' AND outcome <> 0")),
                 outcome.errors.trimmed());
    }

    void closedAccountMayStayInTheGroupThatHasIt()
    {
        PastFixture fixture;
        fixture.exec("UPDATE account SET state_code = 5 WHERE account_id = '8002'");
        COMPARE_EXIT(fixture.restore({"--revision", "2"}), 0);
        QCOMPARE(fixture.current(1)->revision(), 4);
    }

    void deletedGroupIsAddedAgainWithItsRules()
    {
        AdminFixture fixture;
        fixture.storedGroup("甲组");
        RiskConfigPtr config = fixture.loaded(1);
        config->rcRule.list(nvservice::EZvTraderType::Stock).entries = {entry("000001")};
        config->assetsRCs = {stockLimit()};
        config->emailRCs = {emailRule(1, "washTrade")};
        COMPARE_CODE(fixture.save(config), EErrorCode::Success);
        COMPARE_CODE(fixture.operate(EZvDataOperation::Delete, fixture.current(1)), EErrorCode::Success);
        COMPARE_ERROR(fixture.run("group restore --server E --id 1 --revision 2"), 1, "修订2是账号组的删除");

        COMPARE_OUTPUT(fixture.run("group restore --server E --id 1 --revision 1 --as boss"), 0, "已重新添加为账号组2");
        QCOMPARE(fixture.current(2)->groupName, std::string("甲组"));
        const RiskConfigPtr restored = fixture.config(2);
        QCOMPARE(restored->rcRule.findList(nvservice::EZvTraderType::Stock)->entries.size(), std::size_t{1});
        QCOMPARE(restored->emailRCs.at(0).accountKey, std::string("2"));
        QVERIFY(restored->assetsRCs.at(0).ruleId != config->assetsRCs.at(0).ruleId);
        QCOMPARE(fixture.audit(2), (QStringList{toolUserAsBoss() + " 0 E|2 0", toolUserAsBoss() + " 2 E|2 0"}));
    }

    void riskConfigurationIsShownAndRestored()
    {
        AdminFixture fixture;
        fixture.storedGroup("甲组");
        RiskConfigPtr config = fixture.loaded(1);
        config->rcRule.list(nvservice::EZvTraderType::Stock).entries = {entry("000001")};
        config->ratProofSetting.washTradeForbidden = true;
        config->ratProofSetting.washTradeExemptCategoryIds = {StocksCategory};
        COMPARE_CODE(fixture.save(config), EErrorCode::Success);
        config = fixture.loaded(1);
        config->rcRule.lists.clear();
        config->ratProofSetting.washTradeExemptCategoryIds.clear();
        COMPARE_CODE(fixture.save(config), EErrorCode::Success);
        for (int revision = 2; revision <= 3; ++revision) {
            fixture.exec(QString("UPDATE group_risk_config_history SET changed_at = %1 WHERE revision = %2")
                             .arg(PastFixture::timeOf(revision))
                             .arg(revision));
        }
        fixture.exec("UPDATE account_group_history SET changed_at = 1000");

        const auto entriesAt = [&](const QStringList& when) {
            const Outcome outcome =
                fixture.run(QStringList{"risk", "show", "--server", "E", "--id", "1", "--json"} + when);
            const QJsonObject body = outcome.json().object().value("config").toObject();
            return outcome.exitCode == 0 ? QString::fromUtf8(QJsonDocument(body).toJson()).count("\"000001\"") : -1;
        };
        QCOMPARE(entriesAt({"--at", service::isoTime(PastFixture::timeOf(2) - 1)}), 0);
        QCOMPARE(entriesAt({"--at", service::isoTime(PastFixture::timeOf(2))}), 1);
        QCOMPARE(entriesAt({"--at", service::isoTime(PastFixture::timeOf(3))}), 0);
        QCOMPARE(entriesAt({"--revision", "1"}), 0);
        QCOMPARE(entriesAt({"--revision", "2"}), 1);
        QCOMPARE(entriesAt({"--revision", "9"}), -1);
        QCOMPARE(entriesAt({}), 0);
        const Outcome text = fixture.run("risk show --server E --id 1 --revision 2");
        QVERIFY2(text.output.contains("证券黑白名单（1条）\n  黑名单 000001"), qPrintable(text.output));
        QVERIFY2(text.output.contains("对敲交易禁止 是，豁免分类 11\n"), qPrintable(text.output));
        const Outcome history = fixture.run("risk history --server E --id 1 --json");
        QCOMPARE(history.json().array().size(), 2);
        QCOMPARE(history.item("revision", 3).value("by"), QJsonValue("admin"));
        const Outcome group = fixture.run(QStringList{"group", "show", "--server", "E", "--id", "1", "--json", "--at",
                                                      service::isoTime(PastFixture::timeOf(2))});
        QCOMPARE(group.json().object().value("risk").toObject().value("revision"), QJsonValue(2));

        COMPARE_OUTPUT(fixture.run("risk restore --server E --id 1 --revision 2 --as boss"), 0, "新的修订为4");
        QCOMPARE(entriesAt({}), 1);
        QCOMPARE(fixture.config(1)->revision(), 4);
        QCOMPARE(fixture.audit(1), QStringList{toolUserAsBoss() + " 0 E|1 0"});
        QCOMPARE(fixture.text("SELECT changed_by FROM group_risk_config_history WHERE revision = 4"),
                 toolUserAsBoss().toStdString());
        QVERIFY(fixture.run("risk restore --server E --id 1 --revision 2").output.contains("没有变化"));
        COMPARE_EXIT(fixture.run("risk restore --server E --id 1 --revision 1"), 0);
        QCOMPARE(entriesAt({}), 0);

        fixture.exec("DELETE FROM category WHERE category_id = 11 AND server_id = 1");
        COMPARE_ERROR(fixture.run("risk restore --server E --id 1 --revision 2 --as boss"), 1,
                      "对敲交易设置：证券分类（编号11）不存在");
        QCOMPARE(fixture.config(1)->revision(), 5);
        QCOMPARE(fixture.audit(1), QStringList{toolUserAsBoss() + " 0 E|1 12"});
    }

    void riskConfigurationOfADeletedGroupIsNotRestoredAlone()
    {
        PastFixture fixture(false);
        COMPARE_ERROR(fixture.run("risk restore --server E --id 1 --revision 1"), 1, "删除");
        COMPARE_EXIT(fixture.run("risk restore --server E --id 1"), 2);
    }

    void timesMeanWhatPeopleMean_data()
    {
        const support::DataRows<QString, qint64, qint64> row("text", "start", "end");
        const auto local = [](const char* text) {
            return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate).toMSecsSinceEpoch();
        };
        row("day", "2026-01-05", local("2026-01-05T00:00:00"), local("2026-01-06T00:00:00") - 1);
        row("minute", " 2026-01-05 09:30 ", local("2026-01-05T09:30:00"), local("2026-01-05T09:31:00") - 1);
        row("second", "2026-01-05T09:30:15", local("2026-01-05T09:30:15"), local("2026-01-05T09:30:16") - 1);
        row("millisecond", "2026-01-05T09:30:15.250Z", 1767605415250, 1767605415250);
        row("offset", "2026-01-05 17:30:15+08:00", 1767605415000, 1767605415999);
        for (const char* bad : {"", "5.1.2026", "2026-13-01", "2026-01-05 25:00", "2026-01-05 9:30", "2026-02-30"}) {
            row(QString("bad ") + bad, bad, -1, -1);
        }
    }
    void timesMeanWhatPeopleMean()
    {
        QFETCH(QString, text);
        QFETCH(qint64, start);
        QFETCH(qint64, end);
        QCOMPARE(service::readTime(text, false).value_or(-1), std::int64_t{start});
        QCOMPARE(service::readTime(text, true).value_or(-1), std::int64_t{end});
    }
};

TEST_WITHOUT_WIDGETS(AdminHistoryTest)
#include "tst_admin_history.moc"
