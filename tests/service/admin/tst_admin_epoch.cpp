// SPDX-License-Identifier: Apache-2.0
#include "service/RiskSamples.h"
#include "service/admin/AdminFixture.h"

#include "service/admin/Backup.h"
#include "service/store/Query.h"
#include "service/store/Schema.h"
#include "support/TestProgram.h"

#include <nvservice/Codec.h>

#include <QFile>

#include <map>

using namespace testservice;

namespace
{

constexpr std::int64_t Million = 1000000;

/// A client of the east server: the user "admin", at a database that is open as long as this lives.
class Desk : public support::RealService
{
public:
    explicit Desk(const TestDatabase& database) : RealService(database.location())
    {
        const auto user = service::findUser({store().connection(), server(0)}, "admin");
        m_session = boost::make_shared<service::Session>(*user, server(0).id);
    }

    service::Reply add(const std::string& name, const std::string& operationId = {})
    {
        return send(EZvDataOperation::Add, group(name, First, {future("8001")}), operationId);
    }
    service::Reply rename(const GroupPtr& read, const std::string& name, const std::string& operationId = {})
    {
        const auto changed = boost::make_shared<CAccountGroup>(*read);
        changed->groupName = name;
        return send(EZvDataOperation::Modify, changed, operationId);
    }
    service::Reply remove(const GroupPtr& read, const std::string& operationId = {})
    {
        return send(EZvDataOperation::Delete, read, operationId);
    }
    service::Reply saveConfig(const RiskConfigPtr& config) { return save(engine(), m_session, config); }
    service::Reply send(EZvDataOperation operation, const nvservice::IDataPtr& record, const std::string& operationId)
    {
        return operate(engine(), m_session, operation, record, operationId);
    }

    std::vector<GroupPtr> groups()
    {
        std::vector<GroupPtr> found;
        for (const nvservice::IDataPtr& record :
             query(engine(), m_session, nvservice::DataType::AccountGroup).records) {
            found.push_back(boost::dynamic_pointer_cast<CAccountGroup>(record));
        }
        return found;
    }
    GroupPtr groupNamed(const std::string& name)
    {
        for (const GroupPtr& each : groups()) {
            if (each->groupName == name) {
                return each;
            }
        }
        return {};
    }
    RiskConfigPtr config(int groupId) { return loaded(engine(), m_session, groupId); }

private:
    service::SessionPtr m_session;
};

/// A database that nobody has open, with two servers and the user "admin" of the first.
class ClosedDatabase : public TestDatabase
{
public:
    ClosedDatabase()
    {
        const service::StorePtr store = support::openStore(location());
        fill(*store);
        utils::NVError error;
        service::StoredUser user;
        user.login = "admin";
        user.passwordHash = "-";
        user.enabled = true;
        user.rights = everyRight();
        service::insertUser({store->connection(), store->subSystems(error).at(0)}, user);
    }

    QString backup(const char* name) const
    {
        const QString file = path(name);
        QFile::remove(file);
        service::backUp(location(), file, false, {});
        return file;
    }
    void restore(const QString& file, bool isForced = false) const
    {
        service::restoreBackup(file, location(), {isForced, "boss", {}});
    }
};

/// Everything that clients have ever read, with what it was.
class Readings
{
public:
    void read(Desk& desk)
    {
        for (const GroupPtr& group : desk.groups()) {
            take("group", group->groupId, group->revision(), group->groupName);
            m_groups.push_back(group);
            const RiskConfigPtr config = desk.config(group->groupId);
            take("config", config->groupId, config->revision(), contentOf(*config));
            for (const nvservice::CAssetsRC& limit : config->assetsRCs) {
                take("limit", limit.ruleId, 0, limit.remark);
            }
        }
    }
    /// A record that somebody may still have on the screen.
    const GroupPtr& someGroup(std::mt19937& random) const { return m_groups[random() % m_groups.size()]; }

private:
    /// The same id and revision never mean two things.
    void take(const char* what, std::int64_t id, std::int64_t revision, const std::string& content)
    {
        const auto [known, isNew] = m_content.emplace(std::make_tuple(what, id, revision), content);
        if (!isNew && known->second != content) {
            qFatal("%s %lld of revision %lld was %s and is %s", what, static_cast<long long>(id),
                   static_cast<long long>(revision), known->second.c_str(), content.c_str());
        }
    }

    std::map<std::tuple<std::string, std::int64_t, std::int64_t>, std::string> m_content;
    std::vector<GroupPtr> m_groups;
};

} // namespace

/// What is given out after a backup was restored, and what becomes of those who have read something before.
class AdminEpochTest : public support::FixtureTest<ClosedDatabase>
{
    Q_OBJECT

private slots:
    void whatWasReadBeforeARestoreCannotBeSavedAfterIt()
    {
        QString backup;
        GroupPtr changed;
        GroupPtr added;
        RiskConfigPtr config;
        {
            Desk desk(*m_fixture);
            COMPARE_CODE(desk.add("甲"), EErrorCode::Success);
            backup = m_fixture->backup("backup");
            COMPARE_CODE(desk.rename(desk.groupNamed("甲"), "甲二"), EErrorCode::Success);
            COMPARE_CODE(desk.add("乙"), EErrorCode::Success);
            COMPARE_CODE(desk.add("丙"), EErrorCode::Success);
            COMPARE_CODE(desk.remove(desk.groupNamed("丙")), EErrorCode::Success);
            config = desk.config(1);
            config->assetsRCs = {stockLimit()};
            COMPARE_CODE(desk.saveConfig(config), EErrorCode::Success);
            config = desk.config(1);
            changed = desk.groupNamed("甲二");
            added = desk.groupNamed("乙");
        }
        QCOMPARE(added->groupId, 2);
        m_fixture->restore(backup);

        Desk desk(*m_fixture);
        COMPARE_CODE(desk.add("丁"), EErrorCode::Success);
        QCOMPARE(desk.groupNamed("丁")->groupId, 4); // 3 was given to 丙
        COMPARE_CODE(desk.remove(added), EErrorCode::NotFound);
        const service::Reply reply = desk.remove(changed);
        COMPARE_CODE(reply, EErrorCode::Conflict);
        QVERIFY(QString::fromStdString(reply.error.errorMsg()).contains("boss"));
        COMPARE_CODE(desk.saveConfig(config), EErrorCode::Conflict);
        QCOMPARE(desk.groupNamed("甲")->revision(), changed->revision() + 1);
        const RiskConfigPtr current = desk.config(1);
        current->assetsRCs = {stockLimit()};
        COMPARE_CODE(desk.saveConfig(current), EErrorCode::Success);
        QVERIFY(desk.config(1)->assetsRCs[0].ruleId > config->assetsRCs[0].ruleId);
        // The restore itself is in the history.
        QCOMPARE(desk.number("SELECT count(*) FROM account_group_history WHERE changed_by = 'boss' AND revision = 3"
                             " AND name = '甲' AND members = (SELECT members FROM account_group_history"
                             " WHERE group_id = 1 AND revision = 1)"),
                 1);
        QCOMPARE(desk.number("SELECT count(*) FROM group_risk_config_history WHERE changed_by = 'boss'"), 1);
    }

    void nothingIsEverGivenOutTwice()
    {
        std::mt19937 random(13);
        Readings readings;
        std::vector<QString> backups;
        int restores = 0;
        int number = 0;
        auto desk = std::make_unique<Desk>(*m_fixture);
        const auto newName = [&number] { return "名" + std::to_string(++number); };
        for (int step = 0; step < 300; ++step) {
            const std::vector<GroupPtr> groups = desk->groups();
            const GroupPtr one = groups.empty() ? GroupPtr() : groups[random() % groups.size()];
            const unsigned action = random() % 16;
            if (action < 4 || !one) {
                COMPARE_CODE(desk->add(newName()), EErrorCode::Success);
            } else if (action < 7) {
                COMPARE_CODE(desk->rename(one, newName()), EErrorCode::Success);
            } else if (action < 9) {
                COMPARE_CODE(desk->remove(one), EErrorCode::Success);
            } else if (action < 12) {
                const RiskConfigPtr config = desk->config(one->groupId);
                config->assetsRCs = {stockLimit(), stockLimit()};
                for (nvservice::CAssetsRC& limit : config->assetsRCs) {
                    limit.remark = newName();
                }
                COMPARE_CODE(desk->saveConfig(config), EErrorCode::Success);
            } else if (action < 14) {
                // Whatever is based on something outdated is refused.
                const GroupPtr& read = readings.someGroup(random);
                const GroupPtr now = desk->groupNamed(read->groupName);
                const bool isCurrent = now && now->groupId == read->groupId && now->revision() == read->revision();
                QCOMPARE(desk->remove(read).error.isSuccess(), isCurrent);
            } else if (action == 14 || backups.empty()) {
                backups.push_back(m_fixture->backup(("backup" + std::to_string(backups.size())).c_str()));
            } else {
                desk.reset();
                m_fixture->restore(backups[random() % backups.size()]);
                desk = std::make_unique<Desk>(*m_fixture);
                ++restores;
            }
            readings.read(*desk);
        }
        QVERIFY2(restores > 5, qPrintable(QString::number(restores)));
        QVERIFY2(desk->number("SELECT max(group_id) FROM account_group_history") < Million, "nothing jumps");
    }

    void numbersJumpWhenTheReplacedDatabaseIsNotKnown_data()
    {
        const support::DataRows<QString> row("fate");
        row("missing", "missing");
        row("unreadable", "unreadable");
        row("in use", "in use");
    }
    void numbersJumpWhenTheReplacedDatabaseIsNotKnown()
    {
        QFETCH(QString, fate);
        QString backup;
        {
            Desk desk(*m_fixture);
            COMPARE_CODE(desk.add("甲"), EErrorCode::Success);
            backup = m_fixture->backup("backup");
        }
        std::unique_ptr<Desk> other;
        if (fate == "in use") {
            other = std::make_unique<Desk>(*m_fixture);
        } else if (TestDatabase::isPostgres() && fate == "missing") {
            support::openStore(m_fixture->location())
                ->connection()
                .exec("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
        } else if (TestDatabase::isPostgres()) {
            support::openStore(m_fixture->location())
                ->connection()
                .exec("ALTER TABLE account_group_history DROP COLUMN revision");
        } else {
            QFile::remove(m_fixture->location());
        }
        if (!TestDatabase::isPostgres() && fate == "unreadable") {
            writeFile(m_fixture->location(), QByteArray(8192, 'x'));
        }
        m_fixture->restore(backup, fate != "missing");

        Desk desk(*m_fixture);
        COMPARE_CODE(desk.add("乙"), EErrorCode::Success);
        const std::int64_t secondsOf2024 = QDateTime::currentSecsSinceEpoch() - 1704067200;
        for (const std::int64_t given :
             {std::int64_t{desk.groupNamed("乙")->groupId}, desk.groupNamed("甲")->revision(),
              desk.config(1)->revision(), desk.number("SELECT next_rule_id FROM sub_system WHERE system_tag = 'W'")}) {
            QVERIFY2(given > Million && given <= secondsOf2024 + 2 && given > secondsOf2024 - 600,
                     qPrintable(QString::number(given)));
        }
        QCOMPARE(desk.groupNamed("甲")->groupId, 1);
    }

    void operationIsAppliedOnceWhetherTheRestoreHasTakenItAwayOrNot()
    {
        QString backup;
        GroupPtr read;
        {
            Desk desk(*m_fixture);
            COMPARE_CODE(desk.add("甲", "before"), EErrorCode::Success);
            backup = m_fixture->backup("backup");
            COMPARE_CODE(desk.add("乙", "after"), EErrorCode::Success);
            read = desk.groupNamed("甲");
            COMPARE_CODE(desk.rename(read, "甲二", "change"), EErrorCode::Success);
        }
        m_fixture->restore(backup);
        Desk desk(*m_fixture);
        for (int time = 0; time < 3; ++time) {
            COMPARE_CODE(desk.add("甲", "before"), EErrorCode::Success);
            COMPARE_CODE(desk.add("乙", "after"), EErrorCode::Success);
            COMPARE_CODE(desk.rename(read, "甲二", "change"), EErrorCode::Conflict);
            QCOMPARE(desk.groups().size(), std::size_t{2});
            QCOMPARE(desk.groupNamed("乙")->groupId, 3);
            QVERIFY(desk.groupNamed("甲"));
        }
    }

    void subSystemThatARestoreTookAwayGoesOnWithItsIds()
    {
        const QString backup = m_fixture->backup("backup");
        const auto add = [this] {
            const service::StorePtr store = support::openStore(m_fixture->location());
            service::Transaction transaction(store->connection(), service::Transaction::EKind::Write);
            const service::SubSystem server = service::insertSubSystem(store->connection(), "北分系统", "N");
            const std::int32_t id = service::takeGroupId({store->connection(), server});
            service::takeRuleIds({store->connection(), server}, 5);
            transaction.commit();
            return id;
        };
        QCOMPARE(add(), 1);
        for (int restored = 1; restored < 4; ++restored) {
            m_fixture->restore(backup);
            QCOMPARE(add(), 1 + restored);
        }
        Desk desk(*m_fixture);
        QCOMPARE(desk.number("SELECT next_rule_id FROM sub_system WHERE system_tag = 'N'"), 21);
        QCOMPARE(desk.number("SELECT next_group_id FROM sub_system WHERE system_tag = 'E'"), 1);
    }

    void backupWithCountersBelowItsOwnContentGivesOutNothingTwice()
    {
        QString backup;
        {
            Desk desk(*m_fixture);
            for (const char* name : {"甲", "乙", "丙"}) {
                COMPARE_CODE(desk.add(name), EErrorCode::Success);
            }
            COMPARE_CODE(desk.remove(desk.groupNamed("丙")), EErrorCode::Success);
            desk.exec("UPDATE sub_system SET next_group_id = 2");
            backup = m_fixture->backup("backup");
        }
        m_fixture->restore(backup);
        Desk desk(*m_fixture);
        COMPARE_CODE(desk.add("丁"), EErrorCode::Success);
        QCOMPARE(desk.groupNamed("丁")->groupId, 4);
    }

    void databaseOfAnOlderVersionIsReplacedExactly()
    {
        const QString backup = m_fixture->backup("backup");
        {
            Desk desk(*m_fixture);
            for (const char* table : {"epoch", "group_risk_config_history", "security", "category", "operation_log"}) {
                desk.exec(QStringLiteral("DROP TABLE ") + QLatin1String(table));
            }
            for (const char* index :
                 {"audit_by_user", "audit_by_institution", "audit_of_refusals", "audit_by_outcome"}) {
                desk.exec(QStringLiteral("DROP INDEX ") + QLatin1String(index));
            }
            desk.exec("ALTER TABLE audit DROP COLUMN institution_id");
            desk.exec("ALTER TABLE sub_system DROP COLUMN next_rule_id");
            desk.exec("DELETE FROM schema_version WHERE version > 1");
            desk.exec("UPDATE sub_system SET next_group_id = 20");
        }
        m_fixture->restore(backup);
        Desk desk(*m_fixture);
        COMPARE_CODE(desk.add("甲"), EErrorCode::Success);
        QCOMPARE(desk.groupNamed("甲")->groupId, 20);
    }

    void backupOfAnOlderVersionIsBroughtToTheNewest()
    {
        QString backup;
        {
            Desk desk(*m_fixture);
            COMPARE_CODE(desk.add("甲"), EErrorCode::Success);
            for (const char* table : {"epoch", "group_risk_config_history", "security", "category"}) {
                desk.exec(QStringLiteral("DROP TABLE ") + QLatin1String(table));
            }
            for (const char* index :
                 {"audit_by_user", "audit_by_institution", "audit_of_refusals", "audit_by_outcome"}) {
                desk.exec(QStringLiteral("DROP INDEX ") + QLatin1String(index));
            }
            desk.exec("ALTER TABLE audit DROP COLUMN institution_id");
            desk.exec("ALTER TABLE sub_system DROP COLUMN next_rule_id");
            desk.exec("ALTER TABLE operation_log DROP COLUMN new_id");
            desk.exec("DELETE FROM schema_version WHERE version > 2");
            backup = m_fixture->backup("backup");
        }
        m_fixture->restore(backup);
        Desk desk(*m_fixture);
        QCOMPARE(desk.number("SELECT max(version) FROM schema_version"), service::schemaMigrations().back().number);
        QCOMPARE(desk.groupNamed("甲")->revision(), std::int64_t{2});
        QCOMPARE(desk.config(1)->revision(), std::int64_t{2});
    }

    void newestGroupThatWasDeletedLeavesItsIdToNobody()
    {
        Desk desk(*m_fixture);
        for (int id = 1; id < 5; ++id) {
            COMPARE_CODE(desk.add("甲"), EErrorCode::Success);
            QCOMPARE(desk.groupNamed("甲")->groupId, id);
            COMPARE_CODE(desk.remove(desk.groupNamed("甲")), EErrorCode::Success);
        }
    }
};

TEST_WITHOUT_WIDGETS(AdminEpochTest)
#include "tst_admin_epoch.moc"
