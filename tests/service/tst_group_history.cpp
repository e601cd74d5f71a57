// SPDX-License-Identifier: Apache-2.0
#include "service/PagedQuery.h"
#include "service/RiskSamples.h"
#include "support/TestProgram.h"

#include <nvservice/CChangeInfo.h>

#include <random>

using namespace testservice;
using nvservice::CChangeInfo;
namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;
namespace UserRight = nvservice::UserRight;

namespace
{

/// "group 3 edit 李", "config 2 edit 李"
QString textOf(const CChangeInfo& change)
{
    return QString("%1 %2 %3 %4 %5")
        .arg(change.dataType == DataType::AccountGroup ? "group" : "config")
        .arg(change.revision())
        .arg(static_cast<int>(change.operation))
        .arg(change.userId.c_str())
        .arg(change.changedAt);
}

QStringList textsOf(const std::vector<nvservice::IDataPtr>& records)
{
    QStringList texts;
    for (const auto& change : recordsAs<CChangeInfo>(records)) {
        texts << textOf(*change);
    }
    return texts;
}

/// A change as the test made it.
struct Made {
    QString text;
    int institution;
    bool isConfig;
    std::int64_t at;
    std::string login;
};

} // namespace

class GroupHistoryTest : public ServiceTest
{
    Q_OBJECT

    std::mt19937 m_random{17};
    std::vector<Made> m_made; ///< the latest last
    int m_id = 0;

    int random(int below) { return static_cast<int>(m_random() % static_cast<unsigned>(below)); }

    /// Changes a group and its configuration at random: names, settings, and the institution now and then.
    void makeChanges(int count)
    {
        m_made.clear();
        std::vector<std::pair<std::string, service::SessionPtr>> users;
        for (const char* const login : {"a", "b", "c"}) {
            users.emplace_back(login, m_fixture->session(login, everyRight()));
        }
        int institution = First;
        std::int64_t groupRevision = 0;
        std::int64_t configRevision = 1;
        for (int i = 0; i < count; ++i) {
            const auto& [login, session] = users[static_cast<std::size_t>(random(3))];
            const bool isConfig = i > 0 && random(2) == 0;
            if (isConfig) {
                const RiskConfigPtr config = loaded(m_fixture->east(), session, m_id);
                config->ratProofSetting.washTradeForbidden = !config->ratProofSetting.washTradeForbidden;
                COMPARE_CODE(save(m_fixture->east(), session, config), EErrorCode::Success);
                ++configRevision;
            } else {
                institution = random(4) == 0 ? (institution == First ? Second : First) : institution;
                const GroupPtr record =
                    group("组" + std::to_string(i), institution, {future(institution == First ? "8001" : "9001")});
                record->groupId = m_id;
                record->setRevision(groupRevision);
                COMPARE_CODE(testservice::operate(m_fixture->east(), session,
                                                  i == 0 ? EZvDataOperation::Add : EZvDataOperation::Modify, record),
                             EErrorCode::Success);
                m_id = i == 0 ? static_cast<int>(m_fixture->number("SELECT max(group_id) FROM account_group")) : m_id;
                ++groupRevision;
            }
            const std::int64_t at = 1000 + 10 * (i / 2);
            const std::int64_t revision = isConfig ? configRevision : groupRevision;
            m_fixture->exec(QString("UPDATE %1 SET changed_at = %2 WHERE group_id = %3 AND revision = %4")
                                .arg(isConfig ? "group_risk_config_history" : "account_group_history")
                                .arg(at)
                                .arg(m_id)
                                .arg(revision));
            const QString text = QString("%1 %2 %3 %4 %5")
                                     .arg(isConfig ? "config" : "group")
                                     .arg(revision)
                                     .arg(i == 0 ? 2 : 0)
                                     .arg(login.c_str())
                                     .arg(at);
            m_made.push_back({text, institution, isConfig, at, login});
        }
    }

    QStringList history(const service::SessionPtr& session, nvservice::CQueryKey key)
    {
        key.set(QueryCondition::Group, m_id);
        return textsOf(everyPage(m_fixture->east(), session, DataType::GroupHistory, key));
    }

private slots:
    /// Changes of one millisecond are in either order, so they are compared as a set.
    void everyChangeIsThereOnceAndTheLatestIsFirst()
    {
        makeChanges(60);
        for (const int pageSize : {1, 2, 7, 1000}) {
            nvservice::CQueryKey key;
            key.set(QueryCondition::PageSize, pageSize);
            QStringList found = history(m_fixture->admin(), key);
            std::int64_t last = std::numeric_limits<std::int64_t>::max();
            for (const QString& text : found) {
                const std::int64_t at = text.section(' ', -1).toLongLong();
                QVERIFY(at <= last);
                last = at;
            }
            QStringList made;
            for (const Made& each : m_made) {
                made << each.text;
            }
            found.sort();
            made.sort();
            QCOMPARE(found, made);
        }
    }

    void timesAndUsersSelectChanges()
    {
        makeChanges(40);
        for (int round = 0; round < 40; ++round) {
            const std::int64_t since = 1000 + random(250);
            const std::int64_t until = since + random(100);
            const std::string user(1, "abcd"[random(4)]);
            nvservice::CQueryKey key;
            key.set(QueryCondition::Since, since).set(QueryCondition::Until, until).set(QueryCondition::PageSize, 3);
            if (round % 2 == 0) {
                key.set(QueryCondition::User, user);
            }
            QStringList made;
            for (const Made& each : m_made) {
                if (each.at >= since && each.at <= until && (round % 2 != 0 || each.login == user)) {
                    made << each.text;
                }
            }
            QStringList found = history(m_fixture->admin(), key);
            found.sort();
            made.sort();
            QCOMPARE(found, made);
        }
    }

    void nobodyReadsChangesThatTheirRightsAndInstitutionHide()
    {
        makeChanges(60);
        int users = 0;
        for (const bool maySeeRisk : {false, true}) {
            for (const int institution : {First, Second, None}) {
                const auto session = m_fixture->session(
                    "reader" + std::to_string(++users),
                    maySeeRisk ? std::set<int>{UserRight::SetAccountGroupRisk} : std::set<int>(), institution);
                QStringList made;
                for (std::size_t i = 0; i < m_made.size(); ++i) {
                    const Made& each = m_made[i];
                    const bool mayRead =
                        (institution == None || institution == institutionAt(i)) && (maySeeRisk || !each.isConfig);
                    if (mayRead) {
                        made << each.text;
                    }
                }
                QStringList found = history(session, {});
                found.sort();
                made.sort();
                QCOMPARE(found, made);
            }
        }
    }

    void aChangeTellsWhoWhenAndTheNameThen()
    {
        const int id = m_fixture->storedGroup("旧名")->groupId;
        const GroupPtr record = m_fixture->current(id);
        record->groupName = "新名";
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Success);
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Delete, m_fixture->current(id)), EErrorCode::Success);
        const auto changes =
            recordsAs<CChangeInfo>(m_fixture->query(DataType::GroupHistory, "group=" + std::to_string(id)).records);
        QCOMPARE(changes.size(), std::size_t(3));
        QCOMPARE(changes[0]->operation, EZvDataOperation::Delete);
        QCOMPARE(changes[0]->groupName, std::string("新名"));
        QCOMPARE(changes[0]->userName, std::string("姓名admin"));
        QCOMPARE(changes[0]->getSystemTag(), std::string("E"));
        QVERIFY(changes[0]->operationId.empty());
        QCOMPARE(changes[2]->groupName, std::string("旧名"));
        QCOMPARE(changes[2]->userId, std::string("founder"));
        QCOMPARE(changes[2]->userName, std::string());
        QVERIFY(m_fixture->query(DataType::GroupHistory, "group=99").records.empty());
    }

    void thePastIsReadAsItWas()
    {
        const int id = m_fixture->storedGroup("旧名")->groupId;
        m_fixture->exec("UPDATE account_group_history SET changed_at = 5000");
        const GroupPtr record = m_fixture->current(id);
        record->groupName = "新名";
        record->accounts = {future("8002"), account(EZVBrokerType::Stock, "0010", "01")};
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Success);
        RiskConfigPtr config = m_fixture->loaded(id);
        config->assetsRCs = {stockLimit()};
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        const auto state = [&](const std::string& conditions, const service::SessionPtr& session) {
            return query(m_fixture->east(), session, DataType::GroupState, "group=" + std::to_string(id) + conditions);
        };
        const auto groupOf = [](const service::Reply& reply) {
            return boost::dynamic_pointer_cast<CAccountGroup>(reply.records.at(0));
        };
        const auto now = state("", m_fixture->admin());
        QCOMPARE(now.records.size(), std::size_t(2));
        QCOMPARE(groupOf(now)->groupName, std::string("新名"));
        QCOMPARE(groupOf(now)->revision(), std::int64_t{2});
        QCOMPARE(now.records[1]->revision(), std::int64_t{2});
        const auto then = state("&at=5000", m_fixture->admin());
        QCOMPARE(groupOf(then)->groupName, std::string("旧名"));
        QCOMPARE(then.records[1]->revision(), std::int64_t{1});
        COMPARE_CODE(state("&at=4999", m_fixture->admin()), EErrorCode::NotFound);
        const auto both = state("&group-revision=1&config-revision=2", m_fixture->admin());
        QCOMPARE(both.records.size(), std::size_t(2));
        QCOMPARE(groupOf(both)->accounts.at(0)->accountId, std::string("8001"));
        const auto limits = boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(both.records[1]);
        QCOMPARE(limits->assetsRCs.size(), std::size_t(1));
        COMPARE_CODE(state("&group-revision=3", m_fixture->admin()), EErrorCode::NotFound);
        COMPARE_CODE(state("&config-revision=3", m_fixture->admin()), EErrorCode::NotFound);

        // Without the right to risk settings there are none, and no accounts of types without a right.
        const auto futures = m_fixture->session("futures", {UserRight::FutureAccount}, First);
        const auto shown = state("", futures);
        QCOMPARE(shown.records.size(), std::size_t(1));
        QCOMPARE(groupOf(shown)->accounts.at(0)->accountId, std::string("8002"));
        QVERIFY(groupOf(shown)->accounts.at(1)->accountId.find("无权查看#") == 0);
        QCOMPARE(groupOf(shown)->accounts.at(1)->accountName, std::string());
        COMPARE_CODE(state("&config-revision=1", futures), EErrorCode::PermissionDenied);
        const auto other = m_fixture->session("other", everyRight(), Second);
        for (const char* const conditions : {"", "&at=5000", "&group-revision=1", "&config-revision=1"}) {
            COMPARE_CODE(state(conditions, other), EErrorCode::OutOfScope);
        }
    }

private:
    /// Of the group when the change was made. A change of the configuration in the millisecond of a move may count for
    /// either side, so moves count from their own millisecond on.
    int institutionAt(std::size_t change) const
    {
        if (!m_made[change].isConfig) {
            return m_made[change].institution;
        }
        int institution = m_made[0].institution;
        for (const Made& each : m_made) {
            if (!each.isConfig && each.at <= m_made[change].at) {
                institution = each.institution;
            }
        }
        return institution;
    }
};

TEST_WITHOUT_WIDGETS(GroupHistoryTest)
#include "tst_group_history.moc"
