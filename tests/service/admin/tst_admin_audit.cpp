// SPDX-License-Identifier: Apache-2.0
#include "service/RiskSamples.h"
#include "service/admin/AdminFixture.h"

#include "service/admin/Times.h"
#include "service/store/Query.h"
#include "support/TestProgram.h"

using namespace testservice;

namespace
{

/// Changes of several people, some of them refused; row n of the audit is made at n seconds after 2026 UTC began.
class AuditFixture : public AdminFixture
{
public:
    AuditFixture()
    {
        storedGroup("甲组");
        const auto reader = session("reader", {});
        operate(EZvDataOperation::Add, group("乙组", First, {future("8001")}));     // 1: E|2
        operate(EZvDataOperation::Add, group("乙组", First, {future("8001")}));     // 2: duplicate
        testservice::operate(east(), reader, EZvDataOperation::Delete, current(1)); // 3: no right
        save(loaded(1));                                                            // 4: E|1
        operateOn(EmailType, EZvDataOperation::Delete, everyEmailRule(1));          // 5: E|1
        exec(QString("UPDATE audit SET at = %1 + id * 1000").arg(Start));
    }

    Outcome rows(const QStringList& options) { return run(QStringList{"audit", "--server", "E", "--json"} + options); }
    /// The seconds of the rows.
    QList<int> seconds(const QStringList& options)
    {
        QList<int> found;
        for (const QJsonValue& row : rows(options).json().array()) {
            found << static_cast<int>(
                (service::readTime(row.toObject().value("at").toString(), false).value_or(0) - Start) / 1000);
        }
        return found;
    }

    static constexpr qint64 Start = 1767225600000;
};

} // namespace

class AdminAuditTest : public support::FixtureTest<AuditFixture>
{
    Q_OBJECT

private slots:
    void rowsComeLatestFirstWithEverythingThatIsKnown()
    {
        QCOMPARE(m_fixture->seconds({}), (QList<int>{5, 4, 3, 2, 1}));
        const QJsonArray rows = m_fixture->rows({}).json().array();
        const QJsonObject refused = rows.at(2).toObject();
        QCOMPARE(refused.value("login"), QJsonValue("reader"));
        QCOMPARE(refused.value("operation"), QJsonValue("delete"));
        QCOMPARE(refused.value("dataType"), QJsonValue(625));
        QCOMPARE(refused.value("key"), QJsonValue("E|1"));
        QCOMPARE(refused.value("outcome"), QJsonValue("permission-denied"));
        QVERIFY(refused.value("message").toString().contains("没有删除账号组的权限"));
        QVERIFY(!refused.contains("before"));
        QCOMPARE(rows.at(4).toObject().value("outcome"), QJsonValue("ok"));
        const Outcome text = m_fixture->run("audit --server E");
        COMPARE_OUTPUT(text, 0, "无权限");
        QVERIFY(text.output.contains("风控配置"));
        QCOMPARE(text.output.count('\n'), 6);
    }

    void rowsAreChosenByWhoWhenGroupAndOutcome_data()
    {
        const support::DataRows<QStringList, QList<int>> row("options", "expected");
        const auto at = [](int second) { return service::isoTime(AuditFixture::Start + second * qint64{1000}); };
        row("user", {"--user", "reader"}, {3});
        row("nobody", {"--user", "nobody"}, {});
        row("since", {"--since", at(4)}, {5, 4});
        row("until", {"--until", at(2)}, {2, 1});
        row("span", {"--since", at(2), "--until", at(3)}, {3, 2});
        row("group", {"--id", "1"}, {5, 4, 3});
        row("group by name", {"--name", "乙组"}, {1});
        row("done", {"--outcome", "ok"}, {5, 4, 1});
        row("refused", {"--outcome", "refused"}, {3, 2});
        row("outcome by name", {"--outcome", "duplicate"}, {2});
        row("outcome by number", {"--outcome", "7"}, {3});
        row("limit", {"--limit", "2"}, {5, 4});
        row("no limit", {"--limit", "0"}, {5, 4, 3, 2, 1});
        row("together", {"--id", "1", "--user", "admin", "--until", at(4)}, {4});
    }
    void rowsAreChosenByWhoWhenGroupAndOutcome()
    {
        QFETCH(QStringList, options);
        QFETCH(QList<int>, expected);
        QCOMPARE(m_fixture->seconds(options), expected);
    }

    void detailsShowTheStateBeforeAndAfter()
    {
        const GroupPtr group = m_fixture->current(1);
        group->groupName = "甲组改";
        bson::BSONObjBuilder later;
        later.appendBinData("bytes", "xy");
        later.appendValue("date", bson::Date, std::string("\xE8\3\0\0\0\0\0\0", 8));
        group->unknownFields = later.obj();
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, group), EErrorCode::Success);
        const QJsonObject row = m_fixture->rows({"--details", "--limit", "1"}).json().array().at(0).toObject();
        QCOMPARE(row.value("before").toObject().value("groupName"), QJsonValue("甲组"));
        QCOMPARE(row.value("after").toObject().value("groupName"), QJsonValue("甲组改"));
        QCOMPARE(row.value("after").toObject().value("accounts").toArray().at(0).toObject().value("accountId"),
                 QJsonValue("8001"));
        QCOMPARE(row.value("after").toObject().value("bytes").toObject().value("$binary").toObject().value("base64"),
                 QJsonValue("eHk="));
        QCOMPARE(row.value("after").toObject().value("date"),
                 QJsonValue(QJsonObject{{"$date", "1970-01-01T00:00:01Z"}}));
        const Outcome text = m_fixture->run("audit --server E --details --limit 1");
        QVERIFY(text.output.contains("变更前 {"));
        QVERIFY(text.output.contains("变更后 {"));
    }

    void textsOfOthersCannotCommandTheTerminal()
    {
        service::Query(m_fixture->store().connection(), "UPDATE audit SET message = ?, record_key = ?")
            .bind("x\x1b[2J\ny")
            .bind("\x1b")
            .run();
        const Outcome text = m_fixture->run("audit --server E");
        COMPARE_EXIT(text, 0);
        QVERIFY(!text.output.contains(QChar(27)));
        QCOMPARE(text.output.count('\n'), 6);
    }

    void rowsOfOtherServersAreNotShown()
    {
        COMPARE_EXIT(m_fixture->run("institution add 9 新 --server W"), 0);
        QCOMPARE(m_fixture->seconds({}).size(), 5);
        QCOMPARE(m_fixture->run("audit --server W --json").json().array().size(), 1);
    }

    void badFiltersAreNamed()
    {
        const auto errors = [&](const QStringList& options) {
            const Outcome outcome = m_fixture->rows(options);
            return QString::number(outcome.exitCode) + ' ' + outcome.errors;
        };
        QVERIFY(errors({"--since", "morgen"}).startsWith("2 --since 不是有效的时间：morgen"));
        QVERIFY(errors({"--outcome", "vielleicht"}).startsWith("2 --outcome 应为"));
        QVERIFY(errors({"--limit", "-1"}).startsWith("2 --limit 应为数字"));
        QVERIFY(errors({"--id", "77"}).startsWith("1 没有编号为77的账号组"));
    }
};

TEST_WITHOUT_WIDGETS(AdminAuditTest)
#include "tst_admin_audit.moc"
