// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"
#include "service/engine/UnreadChanges.h"
#include "service/store/Journal.h"
#include "support/TestProgram.h"

#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <random>

using namespace testservice;
using service::ChangeBatch;
using service::ChangePosition;
using service::UnreadChanges;
namespace DataType = nvservice::DataType;
namespace UserRight = nvservice::UserRight;

namespace
{

QString described(const nvservice::CChangeInfo& info)
{
    return QString("%1 %2 of %3 %4 r%5 by %6")
        .arg(info.dataType == DataType::AccountGroup ? "group" : "config")
        .arg(info.operation == EZvDataOperation::Add      ? "add"
             : info.operation == EZvDataOperation::Modify ? "modify"
                                                          : "delete")
        .arg(info.groupId)
        .arg(QString::fromStdString(info.groupName))
        .arg(info.revision())
        .arg(QString::fromStdString(info.userId));
}

/// "everything", or what each record says.
QStringList described(const UnreadChanges::News& news)
{
    QStringList all;
    if (!news.isComplete) {
        all << "everything";
    }
    for (const nvservice::CChangeInfoPtr& info : news.records) {
        all << described(*info);
    }
    return all;
}

} // namespace

/// What the service knows of its commits, and what each session may hear of them.
class ChangeFeedTest : public ServiceTest
{
    Q_OBJECT

    ChangePosition present() { return m_fixture->east().readChanges(std::nullopt).end; }

    /// What a session that has been told everything up to `from` hears of what came then.
    QStringList heard(const service::SessionPtr& session, const std::optional<ChangePosition>& from)
    {
        UnreadChanges unread(session, from);
        unread.add(m_fixture->east().readChanges(from));
        return described(unread.take());
    }
    QStringList heardByAdmin(const std::optional<ChangePosition>& from) { return heard(m_fixture->admin(), from); }

    int addGroup(const std::string& name, int institution = First)
    {
        return static_cast<int>(
            m_fixture->operate(EZvDataOperation::Add, group(name, institution, {future("8001")})).newId);
    }
    void rename(int groupId, const std::string& name)
    {
        const GroupPtr record = m_fixture->current(groupId);
        record->groupName = name;
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Success);
    }
    void forbidWashTrades(int groupId)
    {
        const RiskConfigPtr config = m_fixture->loaded(groupId);
        config->ratProofSetting.washTradeForbidden = !config->ratProofSetting.washTradeForbidden;
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
    }
    void remove(int groupId)
    {
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Delete, m_fixture->current(groupId)), EErrorCode::Success);
    }

private slots:
    void everyChangeIsReadOnceInTheOrderOfTheCommits()
    {
        m_fixture->admin();
        const ChangePosition from = present();
        const int id = addGroup("一组");
        rename(id, "二组");
        forbidWashTrades(id);
        const auto rules = boost::make_shared<nvservice::CustomEmailRC>();
        rules->emailRCs = {emailRule(id, "k")};
        COMPARE_CODE(m_fixture->operateOn(DataType::EmailRule, EZvDataOperation::Modify, rules), EErrorCode::Success);
        remove(id);
        const ChangeBatch batch = m_fixture->east().readChanges(from);
        QStringList all;
        for (const service::CommittedChange& change : batch.changes) {
            all << described(*change.info);
            QCOMPARE(change.info->userName, std::string("姓名admin"));
            QCOMPARE(change.info->getSystemTag(), std::string("E"));
        }
        QCOMPARE(all, QStringList({"group add of 1 一组 r1 by admin", "group modify of 1 二组 r2 by admin",
                                   "config modify of 1 二组 r2 by admin", "config modify of 1 二组 r3 by admin",
                                   "group delete of 1 二组 r3 by admin"}));
        QVERIFY(m_fixture->east().readChanges(batch.end).changes.empty());
    }

    void whatIsRefusedOrChangesNothingIsNoChange()
    {
        const int id = addGroup("一组");
        addGroup("二组");
        const ChangePosition from = present();
        const GroupPtr record = m_fixture->current(id);
        record->groupName = "二组";
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Duplicate);
        COMPARE_CODE(m_fixture->operateOn(DataType::EmailRule, EZvDataOperation::Delete, everyEmailRule(id)),
                     EErrorCode::Success);
        QVERIFY(m_fixture->number("SELECT max(id) FROM audit") > from.auditId + 1);
        QCOMPARE(heardByAdmin(from), QStringList());
    }

    void changesOfAnotherServerAreNoChanges()
    {
        const ChangePosition from = present();
        const service::SessionPtr west = m_fixture->session("west", everyRight(), None, 1);
        COMPARE_CODE(operate(m_fixture->west(), west, EZvDataOperation::Add, group("西组", First, {future("8001")})),
                     EErrorCode::Success);
        QCOMPARE(heardByAdmin(from), QStringList());
    }

    void whatIsRolledBackIsNoChange()
    {
        int remaining = -1;
        service::StoreOptions options;
        options.faultHook = failureAfter(remaining);
        ServiceFixture faulty(options);
        const service::SessionPtr admin = faulty.admin();
        const ChangePosition from = faulty.east().readChanges(std::nullopt).end;
        bool hasSucceeded = false;
        for (int statement = 0; !hasSucceeded; ++statement) {
            remaining = statement;
            hasSucceeded =
                faulty.operate(EZvDataOperation::Add, group("一组", First, {future("8001")})).error.isSuccess();
            remaining = -1;
            const std::size_t changes = faulty.east().readChanges(from).changes.size();
            QCOMPARE(changes, static_cast<std::size_t>(faulty.number("SELECT count(*) FROM account_group")));
        }
        QCOMPARE(faulty.east().readChanges(from).changes.size(), std::size_t(1));
    }

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

    void aPositionSurvivesAsText()
    {
        addGroup("一组");
        const ChangePosition from = present();
        const std::optional<ChangePosition> read = ChangePosition::fromText(from.text());
        QVERIFY(read);
        addGroup("二组");
        QCOMPARE(heardByAdmin(read), QStringList({"group add of 2 二组 r1 by admin"}));
    }

    void whatIsNoPositionIsNone_data()
    {
        const support::DataRows<QString> row("text");
        row("empty", "");
        row("a word", "unknown");
        row("two numbers", "1.2");
        row("four numbers", "1.2.3.4");
        row("a negative number", "0.-1.2");
        row("too large a number", "0.99999999999999999999.2");
    }
    void whatIsNoPositionIsNone()
    {
        QFETCH(QString, text);
        QVERIFY(!ChangePosition::fromText(text.toStdString()));
    }

    void afterAPositionThatTheStoreDoesNotKnowAnythingMayHaveChanged()
    {
        addGroup("一组");
        const ChangePosition now = present();
        QCOMPARE(heardByAdmin(ChangePosition{now.epoch, now.auditId + 1000, now.at}), QStringList("everything"));
        QCOMPARE(heardByAdmin(ChangePosition{now.epoch + 1, now.auditId, now.at}), QStringList("everything"));
        QCOMPARE(heardByAdmin(now), QStringList());
    }

    /// Ids count anew in a restored backup.
    void aRestoredBackupIsNotSilent()
    {
        addGroup("一组");
        ChangePosition from = present();
        from.auditId += 100; // what was written after the backup
        m_fixture->exec("INSERT INTO epoch (system_tag, revision, next_group_id, next_rule_id, began_at)"
                        " VALUES ('E', 7, 100, 100, 1)");
        UnreadChanges unread(m_fixture->admin(), from);
        const ChangeBatch restored = m_fixture->east().readChanges(from);
        unread.add(restored);
        QCOMPARE(described(unread.take()), QStringList("everything"));
        addGroup("二组");
        unread.add(m_fixture->east().readChanges(restored.end));
        QCOMPARE(described(unread.take()), QStringList("group add of 2 二组 r1 by admin"));
    }

    void afterARemovalOfUnreadAuditRowsAnythingMayHaveChanged()
    {
        m_fixture->admin();
        const ChangePosition early = present();
        addGroup("一组");
        const ChangePosition late = present();
        const auto prune = [this](std::int64_t before) {
            service::AuditRow row;
            row.at = before;
            row.login = "boss";
            row.recordKey = service::PrunedAuditKey;
            bson::BSONObjBuilder document;
            document.append("before", static_cast<long long>(before));
            row.before = document.obj();
            service::WriteJob job;
            job.server = m_fixture->server(0).id;
            job.work = [&](service::Connection& connection) {
                const service::ServerData data{connection, m_fixture->server(0)};
                insertAudit(data, row);
                removeAudit(data, before, 1000);
            };
            QVERIFY(m_fixture->store().write(job).isSuccess());
        };
        prune(early.at - 1000);
        QCOMPARE(heardByAdmin(early), QStringList("group add of 1 一组 r1 by admin"));
        prune(late.at + 1);
        QCOMPARE(heardByAdmin(early), QStringList("everything"));
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

    void whoHasMissedTooMuchDoesNotDisturbTheOthers()
    {
        const int id = addGroup("一组");
        const ChangePosition early = present();
        m_fixture->exec(QString("INSERT INTO audit (server_id, at, login, operation, data_type, record_key,"
                                " operation_id, outcome, message) ") +
                        numbers(4096) + " SELECT 1, 1, 'x', 0, 0, 'x', '', 7, '' FROM n");
        const ChangePosition late = present();
        rename(id, "二组");
        UnreadChanges slow(m_fixture->admin(), early);
        UnreadChanges quick(m_fixture->admin(), late);
        const ChangeBatch batch = m_fixture->east().readChanges(early);
        slow.add(batch);
        quick.add(batch);
        QCOMPARE(described(slow.take()), QStringList("everything"));
        QCOMPARE(described(quick.take()), QStringList("group modify of 1 二组 r2 by admin"));
    }

    void whoIsDisabledHearsNothing()
    {
        const service::SessionPtr reader = m_fixture->session("reader", everyRight());
        const ChangePosition from = present();
        UnreadChanges unread(reader, from);
        const int id = addGroup("一组");
        const ChangeBatch first = m_fixture->east().readChanges(from);
        unread.add(first);
        QVERIFY(unread.hasNews());
        m_fixture->exec("UPDATE app_user SET enabled = 0 WHERE login = 'reader'");
        rename(id, "二组");
        unread.add(m_fixture->east().readChanges(first.end));
        QVERIFY(!unread.hasNews());
    }

    void whatWaitsForAUserWithOtherRightsIsDropped()
    {
        const service::SessionPtr reader = m_fixture->session("reader", everyRight());
        const int id = addGroup("一组");
        const ChangePosition from = present();
        UnreadChanges unread(reader, from);
        forbidWashTrades(id);
        const ChangeBatch first = m_fixture->east().readChanges(from);
        unread.add(first);
        m_fixture->exec("DELETE FROM user_right WHERE right_id = 10719 AND user_id ="
                        " (SELECT id FROM app_user WHERE login = 'reader')");
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

    void everyCommitIsNoticedHereAndElsewhere()
    {
        std::mutex mutex;
        std::condition_variable noted;
        int commits = 0;
        const auto waitForMore = [&](int than) {
            std::unique_lock<std::mutex> lock(mutex);
            return noted.wait_for(lock, std::chrono::seconds(30), [&] { return commits > than; });
        };
        const auto count = [&] {
            const std::lock_guard<std::mutex> lock(mutex);
            return commits;
        };
        std::shared_ptr<void> watch = m_fixture->store().watchCommits([&] {
            const std::lock_guard<std::mutex> lock(mutex);
            ++commits;
            noted.notify_all();
        });
        QVERIFY(waitForMore(0)); // what may have been missed
        addGroup("一组");
        QVERIFY(waitForMore(1));
        const service::StorePtr other = support::openStore(m_fixture->location());
        const int before = count();
        service::WriteJob job;
        job.server = m_fixture->server(0).id;
        job.work = [](service::Connection& connection) { connection.exec("UPDATE account_group SET name = '二组'"); };
        QVERIFY(other->write(job).isSuccess());
        QVERIFY(waitForMore(before));
        watch.reset();
        const int last = count();
        addGroup("三组");
        QCOMPARE(count(), last);
    }
};

TEST_WITHOUT_WIDGETS(ChangeFeedTest)
#include "tst_change_feed.moc"
