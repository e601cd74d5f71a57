// SPDX-License-Identifier: Apache-2.0
#include "service/ChangesTest.h"
#include "support/DataRows.h"
#include "support/TestProgram.h"

#include <map>
#include <random>

using namespace testservice;
using service::ChangeBatch;
using service::ChangePosition;
using service::UnreadChanges;
namespace DataType = nvservice::DataType;
namespace UserRight = nvservice::UserRight;

/// What each session may hear of the changes, and has not been told yet.
class UnreadChangesTest : public ChangesTest
{
    Q_OBJECT

private slots:
    void onlyTheOwnOperationIdsAreTold()
    {
        const service::SessionPtr other = m_fixture->session("other", everyRight());
        m_fixture->admin();
        const ChangePosition from = present();
        m_fixture->operate(EZvDataOperation::Add, group("一组", First, {future("8001")}), "op-1");
        for (const auto& [session, id] : {std::pair(m_fixture->admin(), "op-1"), std::pair(other, "")}) {
            UnreadChanges unread(session, from);
            unread.add(m_fixture->east().readChanges(from));
            QCOMPARE(unread.take().records.at(0)->operationId, std::string(id));
        }
    }

    void ofOneGroupTheLatestIsTold()
    {
        const ChangePosition from = present();
        const int id = addGroup("一组");
        rename(id, "二组");
        forbidWashTrades(id);
        rename(id, "三组");
        QCOMPARE(heardByAdmin(from),
                 QStringList({"group modify of 1 三组 r3 by admin", "config modify of 1 二组 r2 by admin"}));
        remove(id);
        QCOMPARE(heardByAdmin(from), QStringList({"group delete of 1 三组 r4 by admin"}));
    }

    void whoMayNotReadTheNewStateHearsOfADeletionUnderTheOldName()
    {
        const service::SessionPtr first = m_fixture->session("first", everyRight(), First);
        const service::SessionPtr second = m_fixture->session("second", everyRight(), Second);
        const int id = addGroup("一组");
        const ChangePosition from = present();
        const GroupPtr record = m_fixture->current(id);
        record->groupName = "二组";
        record->institutionId = Second;
        record->accounts = {future("9001")};
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Success);
        QCOMPARE(heard(first, from), QStringList({"group delete of 1 一组 r2 by admin"}));
        QCOMPARE(heard(second, from), QStringList({"group modify of 1 二组 r2 by admin"}));
        const ChangePosition moved = present();
        forbidWashTrades(id);
        rename(id, "三组");
        QCOMPARE(heard(first, moved), QStringList());
        QCOMPARE(heard(first, from), QStringList({"group delete of 1 一组 r2 by admin"}));
    }

    /// Against queries: what a session could read before and after each operation.
    void whatASessionHearsIsWhatItCouldRead()
    {
        struct Reader {
            service::SessionPtr session;
            std::unique_ptr<UnreadChanges> unread;
            std::map<int, std::pair<std::string, int>> groups; ///< what it reads: name and revision by id
            std::map<int, int> configs;                        ///< revision by id
            std::map<std::pair<int, int>, QString> expected;   ///< by id and data type
        };
        std::vector<Reader> readers;
        const auto look = [this](Reader& reader) {
            reader.groups.clear();
            reader.configs.clear();
            for (const auto& each : query(m_fixture->east(), reader.session, DataType::AccountGroup).records) {
                const auto record = boost::dynamic_pointer_cast<CAccountGroup>(each);
                reader.groups[record->groupId] = {record->groupName, static_cast<int>(record->revision())};
                const service::Reply config = query(m_fixture->east(), reader.session, DataType::GroupRiskConfig,
                                                    std::to_string(record->groupId));
                if (config.error.isSuccess()) {
                    reader.configs[record->groupId] = static_cast<int>(config.records.at(0)->revision());
                }
            }
        };
        for (const int institution : {None, First, Second}) {
            for (const bool readsRisk : {false, true}) {
                std::set<int> rights = everyRight();
                if (!readsRisk) {
                    rights.erase(UserRight::SetAccountGroupRisk);
                }
                Reader reader;
                reader.session = m_fixture->session("r" + std::to_string(readers.size()), rights, institution);
                readers.push_back(std::move(reader));
            }
        }
        m_fixture->admin();
        ChangePosition from = present();
        for (Reader& reader : readers) {
            reader.unread = std::make_unique<UnreadChanges>(reader.session, from);
        }
        std::mt19937 random(1);
        std::vector<int> ids;
        int names = 0;
        int told = 0;
        for (int step = 0; step < 150; ++step) {
            for (Reader& reader : readers) {
                look(reader);
            }
            std::vector<Reader> before;
            for (const Reader& reader : readers) {
                before.push_back({reader.session, nullptr, reader.groups, reader.configs, {}});
            }
            const int what = ids.empty() ? 0 : static_cast<int>(random() % 6);
            const int id = ids.empty() ? 0 : ids[random() % ids.size()];
            if (what == 0) {
                ids.push_back(addGroup("组" + std::to_string(++names), First));
            } else if (what == 1) {
                remove(id);
                ids.erase(std::find(ids.begin(), ids.end(), id));
            } else if (what == 2) {
                forbidWashTrades(id);
            } else if (what == 3) {
                rename(id, "组" + std::to_string(++names));
            } else if (what == 4) {
                const GroupPtr record = m_fixture->current(id);
                const int institutions[] = {None, First, Second};
                record->institutionId = institutions[random() % 3];
                record->institutionName.clear();
                record->accounts = {future(record->institutionId == First    ? "8001"
                                           : record->institutionId == Second ? "9001"
                                                                             : "7001")};
                COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Success);
            } else {
                const auto rules = boost::make_shared<nvservice::CustomEmailRC>();
                rules->emailRCs = {emailRule(id, std::to_string(++names))};
                COMPARE_CODE(m_fixture->operateOn(DataType::EmailRule, EZvDataOperation::Modify, rules),
                             EErrorCode::Success);
            }
            for (std::size_t i = 0; i < readers.size(); ++i) {
                Reader& reader = readers[i];
                look(reader);
                for (const auto& [groupId, was] : before[i].groups) {
                    if (reader.groups.count(groupId) == 0) {
                        reader.expected.erase({groupId, DataType::GroupRiskConfig});
                        reader.expected[{groupId, DataType::AccountGroup}] =
                            QString("group delete of %1 %2 r%3 by admin")
                                .arg(groupId)
                                .arg(QString::fromStdString(was.first))
                                .arg(was.second + 1);
                    }
                }
                for (const auto& [groupId, now] : reader.groups) {
                    const auto was = before[i].groups.find(groupId);
                    const QString name = QString::fromStdString(now.first);
                    if (was == before[i].groups.end() || was->second != now) {
                        reader.expected[{groupId, DataType::AccountGroup}] = QString("group %1 of %2 %3 r%4 by admin")
                                                                                 .arg(what == 0 ? "add" : "modify")
                                                                                 .arg(groupId)
                                                                                 .arg(name)
                                                                                 .arg(now.second);
                    }
                    const auto config = reader.configs.find(groupId);
                    if ((what == 2 || what == 5) && groupId == id && config != reader.configs.end()) {
                        reader.expected[{groupId, DataType::GroupRiskConfig}] =
                            QString("config modify of %1 %2 r%3 by admin").arg(groupId).arg(name).arg(config->second);
                    }
                }
            }
            if (random() % 3 == 0) {
                const ChangeBatch batch = m_fixture->east().readChanges(from);
                from = batch.end;
                for (Reader& reader : readers) {
                    reader.unread->add(batch);
                    if (random() % 2 == 0) {
                        QStringList expected;
                        for (const auto& [key, text] : std::exchange(reader.expected, {})) {
                            expected << text;
                        }
                        told += expected.size();
                        QCOMPARE(described(reader.unread->take()), expected);
                    }
                }
            }
        }
        QVERIFY2(told > 100, qPrintable(QString::number(told)));
    }

    void whoIsDisabledInARestoredBackupHearsNothing()
    {
        UnreadChanges unread(m_fixture->session("reader", everyRight()), present());
        unread.add(m_fixture->east().readChanges(present()));
        QVERIFY(unread.hasNews()); // its first position
        m_fixture->exec("INSERT INTO epoch (system_tag, revision, next_group_id, next_rule_id, began_at)"
                        " VALUES ('E', 7, 100, 100, 1)");
        m_fixture->exec("UPDATE app_user SET enabled = 0 WHERE login = 'reader'");
        unread.add(m_fixture->east().readChanges(unread.position()));
        QVERIFY(!unread.hasNews());
    }

    void ofMoreThanAThousandGroupsOneHearsThatAnythingMayHaveChanged()
    {
        const ChangePosition from = present();
        for (int i = 1; i <= 1000; ++i) {
            addGroup("组" + std::to_string(i));
        }
        QCOMPARE(heardByAdmin(from).size(), 1000);
        addGroup("组1001");
        QCOMPARE(heardByAdmin(from), QStringList("everything"));
    }

    void whoseSessionEndsHearsNothing_data()
    {
        const support::DataRows<QString> row("sql");
        row("disabled", "UPDATE app_user SET enabled = 0 WHERE login = 'reader'");
        row("a new password", "UPDATE app_user SET password_hash = 'new' WHERE login = 'reader'");
        row("removed", "DELETE FROM app_user WHERE login = 'reader'");
    }
    void whoseSessionEndsHearsNothing()
    {
        QFETCH(QString, sql);
        const service::SessionPtr reader = m_fixture->session("reader", {});
        const ChangePosition from = present();
        UnreadChanges unread(reader, from);
        const int id = addGroup("一组");
        const ChangeBatch first = m_fixture->east().readChanges(from);
        unread.add(first);
        QVERIFY(unread.hasNews());
        m_fixture->exec(sql);
        rename(id, "二组");
        const ChangeBatch second = m_fixture->east().readChanges(first.end);
        unread.add(second);
        QVERIFY(!unread.hasNews());
        rename(id, "三组");
        m_fixture->exec("UPDATE app_user SET enabled = 1, password_hash = '-' WHERE login = 'reader'");
        unread.add(m_fixture->east().readChanges(second.end));
        QVERIFY(!unread.hasNews()); // nor ever again
    }

    void whatWaitsForAUserWithOtherRightsIsDropped_data()
    {
        const support::DataRows<QString> row("sql");
        const QString reader = "(SELECT id FROM app_user WHERE login = 'reader')";
        row("no right to risk settings", "DELETE FROM user_right WHERE right_id = 10719 AND user_id = " + reader);
        row("another institution", "UPDATE app_user SET institution_id = 2 WHERE id = " + reader);
    }
    void whatWaitsForAUserWithOtherRightsIsDropped()
    {
        QFETCH(QString, sql);
        const service::SessionPtr reader = m_fixture->session("reader", everyRight());
        const int id = addGroup("一组");
        const ChangePosition from = present();
        UnreadChanges unread(reader, from);
        forbidWashTrades(id);
        const ChangeBatch first = m_fixture->east().readChanges(from);
        unread.add(first);
        m_fixture->exec(sql);
        rename(id, "二组");
        unread.add(m_fixture->east().readChanges(first.end));
        QCOMPARE(described(unread.take()), QStringList("everything"));
    }

    void aPositionIsToldAtFirstAndAfterALongSilence()
    {
        const service::SessionPtr stranger = m_fixture->session("stranger", {}, Second);
        QVERIFY(!UnreadChanges(stranger, present()).hasNews()); // it is not known yet what has changed
        UnreadChanges unread(stranger, std::nullopt);
        QVERIFY(!unread.hasNews());
        ChangeBatch batch = m_fixture->east().readChanges(std::nullopt);
        unread.add(batch);
        QVERIFY(unread.hasNews());
        QVERIFY(unread.take().records.empty());
        addGroup("一组");
        batch = m_fixture->east().readChanges(batch.end);
        unread.add(batch);
        QVERIFY(!unread.hasNews());
        for (int i = 0; i < 1000; ++i) {
            addGroup("组" + std::to_string(i));
        }
        unread.add(m_fixture->east().readChanges(batch.end));
        QVERIFY(unread.hasNews());
        QVERIFY(unread.take().records.empty());
    }
};

TEST_WITHOUT_WIDGETS(UnreadChangesTest)
#include "tst_unread_changes.moc"
