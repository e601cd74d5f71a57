// SPDX-License-Identifier: Apache-2.0
#include "service/RightSets.h"
#include "service/daemon/DaemonThread.h"
#include "service/daemon/RawClient.h"
#include "support/TestProgram.h"

#include <nvservice/CAuditEntry.h>
#include <nvservice/CFinding.h>
#include <nvservice/CGroupRestore.h>

#include <map>
#include <memory>

using namespace testservice;
namespace DataType = nvservice::DataType;
namespace UserRight = nvservice::UserRight;

namespace
{

/// No right makes it possible.
constexpr int NotSupported = -1;

/// Every operation on every kind of record, and the right that it takes.
struct Rule {
    const char* name;
    int dataType;
    EZvDataOperation operation;
    int right;
};

constexpr auto Add = EZvDataOperation::Add;
constexpr auto Modify = EZvDataOperation::Modify;
constexpr auto Delete = EZvDataOperation::Delete;

const Rule Rules[] = {{"add group", DataType::AccountGroup, Add, UserRight::EditAccountGroup},
                      {"modify group", DataType::AccountGroup, Modify, UserRight::EditAccountGroup},
                      {"delete group", DataType::AccountGroup, Delete, UserRight::DeleteAccountGroup},
                      {"add configuration", DataType::GroupRiskConfig, Add, NotSupported},
                      {"modify configuration", DataType::GroupRiskConfig, Modify, UserRight::SetAccountGroupRisk},
                      {"delete configuration", DataType::GroupRiskConfig, Delete, NotSupported},
                      {"add e-mail rules", DataType::EmailRule, Add, NotSupported},
                      {"modify e-mail rules", DataType::EmailRule, Modify, UserRight::SetAccountGroupRisk},
                      {"delete e-mail rules", DataType::EmailRule, Delete, UserRight::SetAccountGroupRisk},
                      {"add a restore", DataType::GroupRestore, Add, NotSupported},
                      {"restore group", DataType::GroupRestore, Modify, UserRight::EditAccountGroup},
                      {"restore configuration", DataType::GroupRestore, Modify, UserRight::SetAccountGroupRisk},
                      {"delete a restore", DataType::GroupRestore, Delete, NotSupported},
                      {"modify history", DataType::GroupHistory, Modify, NotSupported},
                      {"modify a past state", DataType::GroupState, Modify, NotSupported},
                      {"add to the audit", DataType::Audit, Add, NotSupported},
                      {"modify the audit", DataType::Audit, Modify, NotSupported},
                      {"delete from the audit", DataType::Audit, Delete, NotSupported},
                      {"delete a finding", DataType::Finding, Delete, NotSupported},
                      {"add category", DataType::Category, Add, NotSupported},
                      {"modify category", DataType::Category, Modify, NotSupported},
                      {"delete category", DataType::Category, Delete, NotSupported},
                      {"add account", DataType::Account, Add, NotSupported},
                      {"modify account", DataType::Account, Modify, NotSupported},
                      {"delete account", DataType::Account, Delete, NotSupported},
                      {"add product", DataType::Product, Add, NotSupported},
                      {"modify product", DataType::Product, Modify, NotSupported},
                      {"delete product", DataType::Product, Delete, NotSupported},
                      {"add institution", DataType::Institution, Add, NotSupported},
                      {"modify institution", DataType::Institution, Modify, NotSupported},
                      {"delete institution", DataType::Institution, Delete, NotSupported},
                      {"add security", DataType::Security, Add, NotSupported},
                      {"modify security", DataType::Security, Modify, NotSupported},
                      {"delete security", DataType::Security, Delete, NotSupported}};

const int Institutions[] = {None, First, Second};

std::string loginOf(std::size_t rightSet, int institution)
{
    return "user-" + std::to_string(rightSet) + "-" + std::to_string(institution);
}

bool isInScope(int user, int ofGroup)
{
    return user == None || user == ofGroup;
}

EErrorCode expectedCode(const Rule& rule, const Rights& rights, int user, int ofGroup)
{
    if (rule.right == NotSupported) {
        return EErrorCode::Unsupported;
    }
    if (rights.rights.count(rule.right) == 0) {
        return EErrorCode::PermissionDenied;
    }
    return isInScope(user, ofGroup) ? EErrorCode::Success : EErrorCode::OutOfScope;
}

} // namespace

/// Who may do what, asked of the daemon over a socket by a client that checks nothing itself.
class WireRightsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<ServiceFixture> m_fixture;
    std::unique_ptr<DaemonThread> m_daemon;
    std::map<std::string, std::unique_ptr<RawClient>> m_clients;
    int m_number = 0;

    RawClient& clientOf(const std::string& login)
    {
        std::unique_ptr<RawClient>& client = m_clients[login];
        if (!client) {
            client = std::make_unique<RawClient>();
            if (!client->open(m_daemon->port()) || !client->hello() || !client->logIn(login, "right").isSuccess()) {
                throw std::runtime_error("no log-in for " + login);
            }
        }
        return *client;
    }

    nvservice::IDataPtr recordFor(const Rule& rule, int groupId)
    {
        if (rule.dataType == DataType::GroupRiskConfig) {
            const RiskConfigPtr config = m_fixture->config(groupId);
            config->ratProofSetting.washTradeForbidden = true;
            return config;
        }
        if (rule.dataType == DataType::EmailRule) {
            const auto rules = boost::make_shared<nvservice::CustomEmailRC>();
            rules->emailRCs = {emailRule(groupId, rule.operation == Delete ? "old" : "new")};
            return rules;
        }
        if (rule.dataType == DataType::GroupRestore) {
            return restoreOfFirst(groupId, rule.right == UserRight::SetAccountGroupRisk);
        }
        const GroupPtr record = m_fixture->current(groupId);
        if (rule.operation == Add) {
            record->groupId = -1;
            record->setRevision(0);
        }
        record->groupName = "新" + std::to_string(++m_number);
        return record;
    }

    /// Changes the group, or its configuration, and asks for what was there before.
    nvservice::IDataPtr restoreOfFirst(int groupId, bool isConfig)
    {
        const auto restore = boost::make_shared<nvservice::CGroupRestore>();
        restore->groupId = groupId;
        if (isConfig) {
            const RiskConfigPtr config = m_fixture->config(groupId);
            config->ratProofSetting.washTradeForbidden = true;
            m_fixture->operateOn(DataType::GroupRiskConfig, Modify, config);
            restore->configRevision = 1;
        } else {
            const GroupPtr record = m_fixture->current(groupId);
            record->groupName += "改";
            m_fixture->operate(Modify, record);
            restore->groupRevision = 1;
        }
        restore->seenGroupRevision = m_fixture->current(groupId)->revision();
        restore->seenConfigRevision = m_fixture->config(groupId)->revision();
        return restore;
    }

    /// Every row that an operation on the group could change, but for the audit.
    QStringList stateOf(int groupId)
    {
        const QString id = QString::number(groupId);
        return {QString::number(m_fixture->number("SELECT count(*) FROM account_group")),
                QString::number(m_fixture->number("SELECT count(*) FROM account_group_history")),
                QString::number(m_fixture->number("SELECT count(*) FROM group_risk_config_history")),
                QString::number(m_fixture->number("SELECT count(*) FROM account") +
                                m_fixture->number("SELECT count(*) FROM institution") +
                                m_fixture->number("SELECT count(*) FROM category") +
                                m_fixture->number("SELECT count(*) FROM product") +
                                m_fixture->number("SELECT count(*) FROM security")),
                QString::fromStdString(
                    m_fixture->text("SELECT name || revision FROM account_group WHERE group_id = " + id)),
                QString::number(m_fixture->number("SELECT revision FROM group_risk_config WHERE group_id = " + id))};
    }

    int institutionOf(int groupId)
    {
        return static_cast<int>(
            m_fixture->number(QString("SELECT coalesce(institution_id, -1) FROM account_group_history"
                                      " WHERE group_id = %1 ORDER BY revision DESC LIMIT 1")
                                  .arg(groupId)));
    }

private slots:
    void initTestCase()
    {
        m_fixture = std::make_unique<ServiceFixture>();
        for (std::size_t set = 0; set < rightSets().size(); ++set) {
            for (const int institution : Institutions) {
                addUser(m_fixture->store(), m_fixture->server(0), loginOf(set, institution), "right",
                        rightSets()[set].rights, institution);
            }
        }
        m_daemon = std::make_unique<DaemonThread>(plainConfiguration(m_fixture->location(), "东分系统"));
        QVERIFY2(m_daemon->startError().isSuccess(), m_daemon->startError().errorMsg().c_str());
    }
    void cleanupTestCase()
    {
        m_clients.clear();
        m_daemon.reset();
        m_fixture.reset();
    }

    void nobodyDoesWhatTheTableDoesNotAllow_data()
    {
        const support::DataRows<int, int> row("rule", "rightSet");
        for (std::size_t rule = 0; rule < std::size(Rules); ++rule) {
            for (std::size_t set = 0; set < rightSets().size(); ++set) {
                row(QString("%1, %2").arg(Rules[rule].name, rightSets()[set].name), static_cast<int>(rule),
                    static_cast<int>(set));
            }
        }
    }
    void nobodyDoesWhatTheTableDoesNotAllow()
    {
        QFETCH(int, rule);
        QFETCH(int, rightSet);
        const Rule& asked = Rules[rule];
        const Rights& rights = rightSets()[static_cast<std::size_t>(rightSet)];
        for (const int user : Institutions) {
            for (const int ofGroup : Institutions) {
                const int groupId = m_fixture->storedGroup("组" + std::to_string(++m_number), ofGroup)->groupId;
                const nvservice::IDataPtr record = recordFor(asked, groupId);
                const QStringList before = stateOf(groupId);
                const EErrorCode expected = expectedCode(asked, rights, user, ofGroup);
                const auto answer = clientOf(loginOf(static_cast<std::size_t>(rightSet), user))
                                        .operate(asked.dataType, asked.operation, record, std::to_string(m_number));
                QVERIFY2(answer.error.code() == expected, qPrintable(QString("%1, user of %2, group of %3: %4")
                                                                         .arg(asked.name, nameOf(user), nameOf(ofGroup),
                                                                              answer.error.errorMsg().c_str())));
                const bool isDeleteOfNothing = asked.dataType == DataType::EmailRule && asked.operation == Delete;
                QCOMPARE(stateOf(groupId) == before, expected != EErrorCode::Success || isDeleteOfNothing);
            }
        }
    }

    void nobodySeesTheGroupsOfAnotherInstitution()
    {
        std::map<int, int> groups;
        for (const int institution : Institutions) {
            groups[institution] = m_fixture->storedGroup("看" + std::to_string(++m_number), institution)->groupId;
        }
        for (std::size_t set = 0; set < rightSets().size(); ++set) {
            for (const int user : Institutions) {
                RawClient& client = clientOf(loginOf(set, user));
                for (const auto& [institution, groupId] : groups) {
                    const std::string key = std::to_string(groupId);
                    const bool maySee = isInScope(user, institution);
                    QCOMPARE(client.query(DataType::AccountGroup, key).records.size(), std::size_t(maySee ? 1 : 0));
                    COMPARE_CODE(client.query(DataType::GroupRiskConfig, key), !rightSets()[set].maySetRisk
                                                                                   ? EErrorCode::PermissionDenied
                                                                               : maySee ? EErrorCode::Success
                                                                                        : EErrorCode::OutOfScope);
                }
                for (const auto& record : client.query(DataType::AccountGroup).records) {
                    QVERIFY(isInScope(user, dynamic_cast<const CAccountGroup&>(*record).institutionId));
                }
            }
        }
    }

    void nobodyReadsThePastOfAnotherInstitutionOrWithoutTheRight()
    {
        std::map<int, int> groups;
        for (const int institution : Institutions) {
            const int id = m_fixture->storedGroup("昔" + std::to_string(++m_number), institution)->groupId;
            restoreOfFirst(id, false);
            restoreOfFirst(id, true);
            groups[institution] = id;
        }
        for (std::size_t set = 0; set < rightSets().size(); ++set) {
            const Rights& rights = rightSets()[set];
            const bool mayAudit = rights.rights.count(UserRight::ReadAudit) != 0;
            for (const int user : Institutions) {
                RawClient& client = clientOf(loginOf(set, user));
                for (const auto& [institution, groupId] : groups) {
                    const bool maySee = isInScope(user, institution);
                    const std::string key = "group=" + std::to_string(groupId);
                    const auto seen = [&](int dataType, const std::string& conditions) {
                        return static_cast<int>(client.query(dataType, conditions).records.size());
                    };
                    QCOMPARE(seen(DataType::GroupHistory, key), !maySee ? 0 : rights.maySetRisk ? 3 : 2);
                    QCOMPARE(seen(DataType::GroupState, key), !maySee ? 0 : rights.maySetRisk ? 2 : 1);
                    QCOMPARE(seen(DataType::GroupState, key + "&config-revision=2"),
                             maySee && rights.maySetRisk ? 1 : 0);
                    QCOMPARE(seen(DataType::GroupRestore, key + "&group-revision=1"), maySee ? 2 : 0);
                    QCOMPARE(seen(DataType::GroupRestore, key + "&config-revision=1"), !maySee             ? 0
                                                                                       : rights.maySetRisk ? 2
                                                                                                           : 1);
                    QCOMPARE(seen(DataType::Audit, key), maySee && mayAudit ? 2 : 0);
                }
                for (const int dataType : {DataType::Audit, DataType::Finding}) {
                    COMPARE_CODE(client.query(dataType), mayAudit ? EErrorCode::Success : EErrorCode::PermissionDenied);
                }
                for (const auto& record : client.query(DataType::Audit, "page-size=1000").records) {
                    const auto& entry = dynamic_cast<const nvservice::CAuditEntry&>(*record);
                    QVERIFY(user == None || isInScope(user, institutionOf(entry.groupId)));
                }
                for (const auto& record : client.query(DataType::Finding).records) {
                    const auto& finding = dynamic_cast<const nvservice::CFinding&>(*record);
                    QVERIFY(user == None || isInScope(user, institutionOf(finding.groupId)));
                }
            }
        }
    }

    void nobodyDoesAnythingWithoutALogIn()
    {
        RawClient client;
        QVERIFY(client.open(m_daemon->port()) && client.hello());
        for (const Rule& rule : Rules) {
            const auto answer =
                client.operate(rule.dataType, rule.operation, boost::make_shared<CAccountGroup>(), "without");
            COMPARE_CODE(answer, EErrorCode::NotLoggedIn);
            COMPARE_CODE(client.query(rule.dataType), EErrorCode::NotLoggedIn);
        }
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE operation_id = 'without'"), std::int64_t{0});
    }
};

TEST_WITHOUT_WIDGETS(WireRightsTest)
#include "tst_wire_rights.moc"
