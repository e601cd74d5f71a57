// SPDX-License-Identifier: Apache-2.0
#include "service/PagedQuery.h"
#include "service/RiskSamples.h"
#include "support/TestProgram.h"

#include <nvservice/CGroupRestore.h>
#include <nvservice/Codec.h>

#include <random>

using namespace testservice;
using nvservice::CAccountGroupRCConfig;
using nvservice::CGroupRestore;
namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;
namespace UserRight = nvservice::UserRight;

namespace
{

using RestorePtr = boost::shared_ptr<CGroupRestore>;

RestorePtr restoreOf(int groupId, std::int64_t groupRevision, std::int64_t configRevision = 0)
{
    const auto restore = boost::make_shared<CGroupRestore>();
    restore->groupId = groupId;
    restore->groupRevision = groupRevision;
    restore->configRevision = configRevision;
    return restore;
}

/// What a state holds, without its revision.
QString textOf(const CAccountGroup& group)
{
    QString text = QString("%1 %2").arg(group.groupName.c_str()).arg(group.institutionId);
    for (const auto& account : group.accounts) {
        text += ' ' + QString::fromStdString(nvservice::accountDisplayID(account));
    }
    return text;
}

} // namespace

class GroupRestoreTest : public ServiceTest
{
    Q_OBJECT

    std::mt19937 m_random{2026};

    int random(int below) { return static_cast<int>(m_random() % static_cast<unsigned>(below)); }

    service::Reply restore(const RestorePtr& wanted, const service::SessionPtr& session = {})
    {
        return testservice::operateOn(DataType::GroupRestore, m_fixture->east(), session ? session : m_fixture->admin(),
                                      EZvDataOperation::Modify, wanted);
    }
    service::Reply preview(int groupId, std::int64_t groupRevision, std::int64_t configRevision = 0,
                           const service::SessionPtr& session = {})
    {
        nvservice::CQueryKey key;
        key.set(QueryCondition::Group, groupId);
        if (groupRevision != 0) {
            key.set(QueryCondition::GroupRevision, groupRevision);
        }
        if (configRevision != 0) {
            key.set(QueryCondition::ConfigRevision, configRevision);
        }
        return query(m_fixture->east(), session ? session : m_fixture->admin(), DataType::GroupRestore, key.text());
    }
    static RestorePtr restoreIn(const service::Reply& reply)
    {
        return boost::dynamic_pointer_cast<CGroupRestore>(reply.records.at(0));
    }
    /// The restore that the user has looked at.
    RestorePtr seen(int groupId, std::int64_t groupRevision, std::int64_t configRevision = 0)
    {
        return restoreIn(preview(groupId, groupRevision, configRevision));
    }
    void rename(int id, const std::string& name)
    {
        const GroupPtr record = m_fixture->current(id);
        record->groupName = name;
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Success);
    }
    void setAccounts(int id, std::vector<boost::shared_ptr<CAccountInfo>> accounts)
    {
        const GroupPtr record = m_fixture->current(id);
        record->accounts = std::move(accounts);
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Success);
    }

private slots:
    /// Random changes and restores of two groups. Every restore makes the state of its revision the present one, and no
    /// other.
    void randomCoursesEndInTheStatesThatWereAskedFor()
    {
        std::map<int, std::vector<QString>> groups; ///< by id: the state after each revision
        std::map<int, std::vector<std::string>> configs;
        for (const char* const name : {"左", "右"}) {
            const int id = m_fixture->storedGroup(name)->groupId;
            groups[id] = {textOf(*m_fixture->current(id))};
            configs[id] = {contentOf(*m_fixture->config(id))};
        }
        for (int step = 0; step < 150; ++step) {
            const int id = 1 + random(2);
            std::vector<QString>& states = groups[id];
            std::vector<std::string>& settings = configs[id];
            if (random(3) == 0) {
                const GroupPtr record = m_fixture->current(id);
                record->groupName = (id == 1 ? "左" : "右") + std::to_string(random(9));
                record->accounts = {future(random(2) == 0 ? "8001" : "8002")};
                COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Success);
                states.push_back(textOf(*m_fixture->current(id)));
            } else if (random(2) == 0) {
                COMPARE_CODE(m_fixture->save([&] {
                    const RiskConfigPtr config = m_fixture->loaded(id);
                    config->ratProofSetting.washTradeForbidden = random(2) == 0;
                    config->emailRCs = {emailRule(id, "regel" + std::to_string(random(5)))};
                    return config;
                }()),
                             EErrorCode::Success);
                settings.push_back(contentOf(*m_fixture->config(id)));
            } else {
                const int which = 1 + random(3); // the group, its configuration, or both
                const std::size_t group = static_cast<std::size_t>(random(static_cast<int>(states.size())));
                const std::size_t config = static_cast<std::size_t>(random(static_cast<int>(settings.size())));
                const RestorePtr wanted =
                    seen(id, which & 1 ? static_cast<int>(group) + 1 : 0, which & 2 ? static_cast<int>(config) + 1 : 0);
                QVERIFY2(wanted->obstacles.empty(), wanted->obstacles.empty() ? "" : wanted->obstacles[0].c_str());
                COMPARE_CODE(restore(wanted), EErrorCode::Success);
                if (which & 1 && states[group] != states.back()) {
                    states.push_back(states[group]);
                }
                if (which & 2 && settings[config] != settings.back()) {
                    settings.push_back(settings[config]);
                }
            }
            for (const auto& [each, last] : groups) {
                QCOMPARE(textOf(*m_fixture->current(each)), last.back());
                QCOMPARE(m_fixture->current(each)->revision(), static_cast<std::int64_t>(last.size()));
                QCOMPARE(contentOf(*m_fixture->config(each)), configs[each].back());
                QCOMPARE(m_fixture->config(each)->revision(), static_cast<std::int64_t>(configs[each].size()));
            }
        }
        QVERIFY(m_fixture->store().checkIntegrity().isSuccess());
    }

    void aPreviewShowsWhatTheRestoreStoresAndStoresNothing()
    {
        const int id = m_fixture->storedGroup("旧")->groupId;
        RiskConfigPtr config = m_fixture->loaded(id);
        config->assetsRCs = {stockLimit()};
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        config = m_fixture->loaded(id);
        config->assetsRCs.clear();
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        rename(id, "新");
        const QStringList before = m_fixture->content();
        const service::Reply shown = preview(id, 1, 2);
        COMPARE_CODE(shown, EErrorCode::Success);
        QCOMPARE(m_fixture->content(), before);
        QCOMPARE(shown.records.size(), std::size_t(3));
        QVERIFY(restoreIn(shown)->obstacles.empty());
        QCOMPARE(restoreIn(shown)->seenGroupRevision, std::int64_t{2});
        QCOMPARE(restoreIn(shown)->seenConfigRevision, std::int64_t{3});
        const auto group = boost::dynamic_pointer_cast<CAccountGroup>(shown.records[1]);
        const auto settings = boost::dynamic_pointer_cast<CAccountGroupRCConfig>(shown.records[2]);
        COMPARE_CODE(restore(restoreIn(shown)), EErrorCode::Success);
        QCOMPARE(textOf(*m_fixture->current(id)), textOf(*group));
        QCOMPARE(m_fixture->current(id)->revision(), group->revision());
        QCOMPARE(contentOf(*m_fixture->config(id)), contentOf(*settings));
        QCOMPARE(m_fixture->config(id)->revision(), settings->revision());
        // Each change has its own row.
        QCOMPARE(m_fixture->column("SELECT data_type FROM audit WHERE outcome = 0 ORDER BY id DESC LIMIT 2"),
                 std::string("7131,625"));
        // That is how it is now.
        QCOMPARE(preview(id, 1).records.size(), std::size_t(1));
    }

    void aStateThatChangedMeanwhileIsAConflict()
    {
        const int id = m_fixture->storedGroup("一")->groupId;
        rename(id, "二");
        const RestorePtr group = seen(id, 1);
        rename(id, "三");
        const QStringList before = m_fixture->content();
        const auto other = m_fixture->session("other", everyRight());
        COMPARE_CODE(restore(group), EErrorCode::Conflict);
        const RiskConfigPtr config = loaded(m_fixture->east(), other, id);
        config->ratProofSetting.washTradeForbidden = true;
        COMPARE_CODE(save(m_fixture->east(), other, config), EErrorCode::Success);
        const RestorePtr settings = seen(id, 0, 1);
        config->setRevision(2);
        config->ratProofSetting.reverseOrderCheck = true;
        COMPARE_CODE(save(m_fixture->east(), other, config), EErrorCode::Success);
        COMPARE_CODE(restore(settings), EErrorCode::Conflict);
        // Both or none: the group alone could be restored.
        const RestorePtr both = seen(id, 1, 1);
        both->seenConfigRevision = 1;
        COMPARE_CODE(restore(both), EErrorCode::Conflict);
        QCOMPARE(m_fixture->current(id)->groupName, std::string("三"));
        QCOMPARE(m_fixture->config(id)->revision(), std::int64_t{3});
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE data_type = 90005 AND outcome = 10"),
                 std::int64_t{3});
    }

    void everyReasonAgainstARestoreIsTold()
    {
        const int id = m_fixture->storedGroup("旧")->groupId;
        m_fixture->exec("UPDATE account SET state_code = 0, excluded = 0");
        setAccounts(id, {future("5001"), future("6001"), future("8002")});
        RiskConfigPtr config = m_fixture->loaded(id);
        config->ratProofSetting.reverseOrderExemptCategoryIds = {StocksCategory};
        config->ratProofSetting.washTradeExemptCategoryIds = {StocksCategory};
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        config = m_fixture->loaded(id);
        config->ratProofSetting = {};
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        setAccounts(id, {future("8001")});
        rename(id, "新");
        m_fixture->storedGroup("旧");
        m_fixture->exec("UPDATE account SET state_code = 5 WHERE account_id = '5001'");
        m_fixture->exec("UPDATE account SET excluded = 1 WHERE account_id = '6001'");
        m_fixture->exec("DELETE FROM category");
        const service::Reply shown = preview(id, 2, 2);
        COMPARE_CODE(shown, EErrorCode::Success);
        QStringList obstacles;
        for (const std::string& text : restoreIn(shown)->obstacles) {
            obstacles << QString::fromStdString(text);
        }
        QCOMPARE(obstacles.size(), 5);
        QVERIFY2(obstacles[0].contains("5001") && obstacles[0].contains("已销户"), qPrintable(obstacles[0]));
        QVERIFY2(obstacles[1].contains("6001"), qPrintable(obstacles[1]));
        QVERIFY2(obstacles[2].contains("旧") && obstacles[2].contains("已被使用"), qPrintable(obstacles[2]));
        QVERIFY2(obstacles[3].contains("反向单") && obstacles[3].contains("不存在"), qPrintable(obstacles[3]));
        QVERIFY2(obstacles[4].contains("对敲") && obstacles[4].contains("不存在"), qPrintable(obstacles[4]));
        const service::Reply refused = restore(restoreIn(shown));
        COMPARE_CODE(refused, EErrorCode::InvalidValue);
        QCOMPARE(refused.error.errorMsg(), obstacles[0].toStdString());
    }

    void aDeletedGroupComesBackWithItsSettingsUnderANewNumber()
    {
        const int id = m_fixture->storedGroup("旧")->groupId;
        RiskConfigPtr config = m_fixture->loaded(id);
        config->assetsRCs = {stockLimit()};
        config->emailRCs = {emailRule(id, "regel")};
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Delete, m_fixture->current(id)), EErrorCode::Success);
        COMPARE_CODE(preview(id, 2), EErrorCode::InvalidValue); // the deletion itself
        COMPARE_CODE(preview(id, 0, 2), EErrorCode::NotFound);  // settings of no group
        const service::Reply shown = preview(id, 1);
        COMPARE_CODE(shown, EErrorCode::Success);
        QCOMPARE(shown.records.size(), std::size_t(3));
        QCOMPARE(restoreIn(shown)->configRevision, std::int64_t{2});
        const service::Reply done = restore(restoreIn(shown));
        COMPARE_CODE(done, EErrorCode::Success);
        QCOMPARE(done.newId, std::int64_t{id + 1});
        QCOMPARE(m_fixture->current(id + 1)->groupName, std::string("旧"));
        const RiskConfigPtr settings = m_fixture->config(id + 1);
        QCOMPARE(settings->assetsRCs.size(), std::size_t(1));
        QCOMPARE(settings->emailRCs.at(0).accountKey, std::to_string(id + 1));
        COMPARE_CODE(restore(restoreIn(shown)), EErrorCode::Duplicate);
        const RestorePtr asIfThere = restoreOf(id, 1);
        asIfThere->seenGroupRevision = 1;
        COMPARE_CODE(restore(asIfThere), EErrorCode::NotFound);
    }

    void whatIsThatWayAlreadyStays()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        COMPARE_CODE(restore(seen(id, 1, 1)), EErrorCode::Success);
        QCOMPARE(m_fixture->current(id)->revision(), std::int64_t{1});
        QCOMPARE(m_fixture->config(id)->revision(), std::int64_t{1});
    }

    void senselessRestoresAreRefused()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        COMPARE_CODE(restore(restoreOf(id, 0)), EErrorCode::InvalidValue);
        COMPARE_CODE(restore(restoreOf(id, -1)), EErrorCode::InvalidValue);
        COMPARE_CODE(restore(restoreOf(id, 1, -1)), EErrorCode::InvalidValue);
        COMPARE_CODE(restore(restoreOf(id, 2)), EErrorCode::NotFound);
        COMPARE_CODE(restore(restoreOf(99, 1)), EErrorCode::NotFound);
        const RestorePtr elsewhere = restoreOf(id, 1);
        elsewhere->setSystemTag("W");
        COMPARE_CODE(restore(elsewhere), EErrorCode::OutOfScope);
        const RestorePtr large = restoreOf(id, 1);
        large->obstacles.assign(101, "x");
        COMPARE_CODE(restore(large), EErrorCode::ResourceExhausted);
        COMPARE_CODE(m_fixture->operateOn(DataType::GroupRestore, EZvDataOperation::Add, restoreOf(id, 1)),
                     EErrorCode::Unsupported);
    }

    void aRepeatedRestoreIsCarriedOutOnce()
    {
        const int id = m_fixture->storedGroup("一")->groupId;
        rename(id, "二");
        const RestorePtr wanted = seen(id, 1);
        for (int i = 0; i < 2; ++i) {
            COMPARE_CODE(m_fixture->operateOn(DataType::GroupRestore, EZvDataOperation::Modify, wanted, "once"),
                         EErrorCode::Success);
        }
        QCOMPARE(m_fixture->current(id)->revision(), std::int64_t{3});
    }

    /// Rights x institution of the user x institutions of the group then and now.
    void nobodyRestoresWhatTheyMayNotChange()
    {
        int users = 0;
        for (const bool mayEdit : {false, true}) {
            for (const bool maySetRisk : {false, true}) {
                for (const int user : {First, Second, None}) {
                    std::set<int> rights = {UserRight::FutureAccount};
                    if (mayEdit) {
                        rights.insert(UserRight::EditAccountGroup);
                    }
                    if (maySetRisk) {
                        rights.insert(UserRight::SetAccountGroupRisk);
                    }
                    const auto session = m_fixture->session("u" + std::to_string(++users), rights, user);
                    for (const int then : {First, Second}) {
                        for (const int now : {First, Second}) {
                            tryToRestore(session, mayEdit, maySetRisk, user, then, now);
                        }
                    }
                }
            }
        }
    }

    void accountsThatAUserMayNotReadAreNeitherNamedNorMoved()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        setAccounts(id, {future("8001"), account(EZVBrokerType::Stock, "0010", "01")});
        setAccounts(id, {future("8002")});
        const auto futures =
            m_fixture->session("futures", {UserRight::EditAccountGroup, UserRight::FutureAccount}, First);
        const service::Reply shown = preview(id, 2, 0, futures);
        COMPARE_CODE(shown, EErrorCode::Success);
        QString everything;
        for (const auto& record : shown.records) {
            everything += QString::fromStdString(nvservice::encodeRecord(*record).toString());
        }
        QVERIFY2(!everything.contains("0010"), qPrintable(everything));
        QCOMPARE(restoreIn(shown)->obstacles.size(), std::size_t(1));
        const service::Reply refused = restore(restoreIn(shown), futures);
        COMPARE_CODE(refused, EErrorCode::PermissionDenied);
        QVERIFY(!QString::fromStdString(refused.error.errorMsg()).contains("0010"));
        // While it is a member, it stays.
        setAccounts(id, {future("8002"), account(EZVBrokerType::Stock, "0010", "01")});
        const RestorePtr wanted = restoreIn(preview(id, 2, 0, futures));
        QVERIFY(wanted->obstacles.empty());
        COMPARE_CODE(restore(wanted, futures), EErrorCode::Success);
        QCOMPARE(textOf(*m_fixture->current(id)), QString("组 1 8001 0010-01"));
    }

private:
    void tryToRestore(const service::SessionPtr& session, bool mayEdit, bool maySetRisk, int user, int then, int now)
    {
        static int number = 0;
        const int id = m_fixture->storedGroup("组" + std::to_string(++number), then)->groupId;
        const RiskConfigPtr config = m_fixture->loaded(id);
        config->ratProofSetting.washTradeForbidden = true;
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        const GroupPtr record = m_fixture->current(id);
        record->groupName += "改";
        record->institutionId = now;
        record->accounts = {future(now == First ? "8002" : "9001")};
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Success);
        const RiskConfigPtr last = m_fixture->loaded(id);
        last->ratProofSetting = {};
        COMPARE_CODE(m_fixture->save(last), EErrorCode::Success);

        m_fixture->exec(
            QString("UPDATE account_group_history SET changed_at = 1000 * revision WHERE group_id = %1").arg(id));
        m_fixture->exec(
            QString("UPDATE group_risk_config_history SET changed_at = 750 * revision WHERE group_id = %1").arg(id));

        const bool isInScope = user == None || (user == then && user == now);
        const RestorePtr group = seen(id, 1);
        const RestorePtr settings = seen(id, 0, 2);
        const service::Reply shownGroup = preview(id, 1, 0, session);
        const service::Reply shownSettings = preview(id, 0, 2, session);
        for (const service::Reply* const shown : {&shownGroup, &shownSettings}) {
            COMPARE_CODE(*shown, isInScope || (shown == &shownSettings && !maySetRisk && (user == None || user == now))
                                     ? EErrorCode::Success
                                     : EErrorCode::OutOfScope);
        }
        if (isInScope) {
            QCOMPARE(restoreIn(shownGroup)->obstacles.empty(), mayEdit);
            QCOMPARE(restoreIn(shownSettings)->obstacles.empty(), maySetRisk);
            QCOMPARE(shownSettings.records.size(), std::size_t(maySetRisk ? 2 : 1));
        }
        const QStringList before = state(id);
        COMPARE_CODE(restore(settings, session), !maySetRisk ? EErrorCode::PermissionDenied
                                                 : isInScope ? EErrorCode::Success
                                                             : EErrorCode::OutOfScope);
        QCOMPARE(state(id) == before, !isInScope || !maySetRisk);
        const QStringList between = state(id);
        COMPARE_CODE(restore(group, session), !mayEdit    ? EErrorCode::PermissionDenied
                                              : isInScope ? EErrorCode::Success
                                                          : EErrorCode::OutOfScope);
        QCOMPARE(state(id) == between, !isInScope || !mayEdit);
    }
    QStringList state(int id)
    {
        return {textOf(*m_fixture->current(id)), QString::number(m_fixture->current(id)->revision()),
                QString::fromStdString(contentOf(*m_fixture->config(id))),
                QString::number(m_fixture->config(id)->revision())};
    }
};

TEST_WITHOUT_WIDGETS(GroupRestoreTest)
#include "tst_group_restore.moc"
