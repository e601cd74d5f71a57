// SPDX-License-Identifier: Apache-2.0
#include "service/RightSets.h"
#include "support/TestProgram.h"

#include <nvservice/COperateDataReq.h>

using namespace testservice;

class OperationRightsTest : public ServiceTest
{
    Q_OBJECT

private slots:
    void operationNeedsItsRightAndTheUsersInstitution_data()
    {
        const support::DataRows<int, int, int, int> row("operation", "rightSet", "userInstitution", "groupInstitution");
        for (const EZvDataOperation operation : Operations) {
            for (std::size_t set = 0; set < rightSets().size(); ++set) {
                for (const int user : {None, First, Second}) {
                    for (const int ofGroup : {None, First, Second}) {
                        const QString name =
                            QString("%1, %2, user of %3, group of %4")
                                .arg(nameOf(operation), rightSets()[set].name, nameOf(user), nameOf(ofGroup));
                        row(name, static_cast<int>(operation), static_cast<int>(set), user, ofGroup);
                    }
                }
            }
        }
    }
    void operationNeedsItsRightAndTheUsersInstitution()
    {
        QFETCH(int, operation);
        QFETCH(int, rightSet);
        QFETCH(int, userInstitution);
        QFETCH(int, groupInstitution);
        const auto kind = static_cast<EZvDataOperation>(operation);
        const Rights& rights = rightSets()[static_cast<std::size_t>(rightSet)];

        const auto session = m_fixture->session("tester", rights.rights, userInstitution);
        GroupPtr record = m_fixture->storedGroup("原有组", groupInstitution);
        if (kind == EZvDataOperation::Add) {
            record->groupId = -1;
            record->setRevision(0);
        }
        if (kind != EZvDataOperation::Delete) {
            record->groupName = "新名称";
        }
        const QStringList before = m_fixture->content().filter("account_group");

        const bool hasRight = kind == EZvDataOperation::Delete ? rights.mayDelete : rights.mayEdit;
        const bool isInScope = userInstitution == None || userInstitution == groupInstitution;
        const EErrorCode expected = !hasRight    ? EErrorCode::PermissionDenied
                                    : !isInScope ? EErrorCode::OutOfScope
                                                 : EErrorCode::Success;
        const service::Reply reply = operate(m_fixture->east(), session, kind, record);
        COMPARE_CODE(reply, expected);
        QVERIFY(reply.document.isEmpty());

        const int groups = static_cast<int>(m_fixture->number("SELECT count(*) FROM account_group"));
        const std::string name = m_fixture->text("SELECT name FROM account_group ORDER BY group_id DESC");
        if (expected == EErrorCode::Success) {
            QCOMPARE(groups, kind == EZvDataOperation::Add ? 2 : kind == EZvDataOperation::Modify ? 1 : 0);
            if (groups > 0) {
                QCOMPARE(name, std::string("新名称"));
            }
        } else {
            QVERIFY(!reply.error.errorMsg().empty());
            QCOMPARE(m_fixture->content().filter("account_group"), before);
        }
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit"), 1);
        QCOMPARE(m_fixture->number("SELECT outcome FROM audit"), static_cast<int>(expected));
        QCOMPARE(m_fixture->number("SELECT operation FROM audit"), operation);
        QCOMPARE(m_fixture->text("SELECT login FROM audit"), std::string("tester"));
    }

    void riskSettingsNeedTheirRightAndTheUsersInstitution_data()
    {
        const support::DataRows<int, int, int, int, int> row("dataType", "operation", "rightSet", "userInstitution",
                                                             "groupInstitution");
        const std::vector<std::tuple<const char*, int, EZvDataOperation>> kinds = {
            {"configuration, modify", nvservice::DataType::GroupRiskConfig, EZvDataOperation::Modify},
            {"e-mail rules, modify", nvservice::DataType::EmailRule, EZvDataOperation::Modify},
            {"e-mail rules, delete", nvservice::DataType::EmailRule, EZvDataOperation::Delete}};
        for (const auto& [kind, type, operation] : kinds) {
            for (std::size_t set = 0; set < rightSets().size(); ++set) {
                for (const int user : {None, First, Second}) {
                    for (const int ofGroup : {None, First, Second}) {
                        const QString name = QString("%1, %2, user of %3, group of %4")
                                                 .arg(kind, rightSets()[set].name, nameOf(user), nameOf(ofGroup));
                        row(name, type, static_cast<int>(operation), static_cast<int>(set), user, ofGroup);
                    }
                }
            }
        }
    }
    void riskSettingsNeedTheirRightAndTheUsersInstitution()
    {
        QFETCH(int, dataType);
        QFETCH(int, operation);
        QFETCH(int, rightSet);
        QFETCH(int, userInstitution);
        QFETCH(int, groupInstitution);
        const auto kind = static_cast<EZvDataOperation>(operation);
        const Rights& rights = rightSets()[static_cast<std::size_t>(rightSet)];

        const auto session = m_fixture->session("tester", rights.rights, userInstitution);
        const int groupId = m_fixture->storedGroup("组", groupInstitution)->groupId;
        const RiskConfigPtr config = m_fixture->config(groupId);
        config->emailRCs = {emailRule(groupId, "old")};
        COMPARE_CODE(m_fixture->operateOn(nvservice::DataType::GroupRiskConfig, EZvDataOperation::Modify, config),
                     EErrorCode::Success);
        m_fixture->exec("DELETE FROM audit");

        const RiskConfigPtr sent = m_fixture->config(groupId);
        sent->ratProofSetting.washTradeForbidden = true;
        const auto rules = boost::make_shared<nvservice::CustomEmailRC>();
        rules->emailRCs = {emailRule(groupId, kind == EZvDataOperation::Delete ? "old" : "new")};
        rules->setRevision(sent->revision());
        const bool isConfig = dataType == nvservice::DataType::GroupRiskConfig;
        const nvservice::IDataPtr record = isConfig ? nvservice::IDataPtr(sent) : nvservice::IDataPtr(rules);
        const QStringList before = m_fixture->content().filter("group_risk_config");

        const bool isInScope = userInstitution == None || userInstitution == groupInstitution;
        const EErrorCode expected = !rights.maySetRisk ? EErrorCode::PermissionDenied
                                    : !isInScope       ? EErrorCode::OutOfScope
                                                       : EErrorCode::Success;
        const service::Reply reply = operateOn(dataType, m_fixture->east(), session, kind, record);
        COMPARE_CODE(reply, expected);
        QVERIFY(reply.document.isEmpty());
        QCOMPARE(reply.error.errorMsg().empty(), expected == EErrorCode::Success);

        if (expected == EErrorCode::Success) {
            const RiskConfigPtr now = m_fixture->config(groupId);
            QCOMPARE(now->revision(), std::int64_t{3});
            QCOMPARE(now->ratProofSetting.washTradeForbidden, isConfig);
            QCOMPARE(now->emailRCs.size(), std::size_t(kind == EZvDataOperation::Delete ? 0 : 1));
            if (!now->emailRCs.empty()) {
                QCOMPARE(now->emailRCs[0].ruleKey, std::string(isConfig ? "old" : "new"));
            }
        } else {
            QCOMPARE(m_fixture->content().filter("group_risk_config"), before);
        }
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit"), 1);
        QCOMPARE(m_fixture->number("SELECT outcome FROM audit"), static_cast<int>(expected));
        QCOMPARE(m_fixture->number("SELECT operation FROM audit"), operation);
        QCOMPARE(m_fixture->number("SELECT data_type FROM audit"), dataType);
        QCOMPARE(m_fixture->text("SELECT login FROM audit"), std::string("tester"));
        QCOMPARE(m_fixture->text("SELECT record_key FROM audit"), "E|" + std::to_string(groupId));
    }

    void otherDataTypesAndOperationsAreUnsupportedForEverybody_data()
    {
        const support::DataRows<int, int> row("dataType", "operation");
        using namespace nvservice;
        for (const int type : {DataType::Category, DataType::Account, DataType::Product, DataType::Institution,
                               DataType::Security, 0, -1, 624}) {
            for (const EZvDataOperation operation : Operations) {
                row(QString("type %1, %2").arg(type).arg(nameOf(operation)), type, static_cast<int>(operation));
            }
        }
        row("configuration, add", DataType::GroupRiskConfig, static_cast<int>(EZvDataOperation::Add));
        row("configuration, delete", DataType::GroupRiskConfig, static_cast<int>(EZvDataOperation::Delete));
        row("e-mail rules, add", DataType::EmailRule, static_cast<int>(EZvDataOperation::Add));
        for (const int operation : {1, 4, -1}) {
            row(QString("groups, operation %1").arg(operation), DataType::AccountGroup, operation);
        }
    }
    void otherDataTypesAndOperationsAreUnsupportedForEverybody()
    {
        QFETCH(int, dataType);
        QFETCH(int, operation);
        const GroupPtr record = m_fixture->storedGroup("组");
        const QStringList before = m_fixture->content().filter("account_group");
        COMPARE_CODE(m_fixture->operateOn(dataType, static_cast<EZvDataOperation>(operation), record),
                     EErrorCode::Unsupported);
        QCOMPARE(m_fixture->content().filter("account_group"), before);
        QCOMPARE(m_fixture->number("SELECT outcome FROM audit"), static_cast<int>(EErrorCode::Unsupported));
    }

    void recordOfAnotherClassIsMalformed()
    {
        const GroupPtr record = m_fixture->storedGroup("组");
        const QStringList before = m_fixture->content().filter("group");
        const auto config = m_fixture->config(record->groupId);
        const auto rules = everyEmailRule(record->groupId);
        using nvservice::IDataPtr;
        namespace DataType = nvservice::DataType;
        for (const auto& [type, data] : std::vector<std::pair<int, IDataPtr>>{{DataType::GroupRiskConfig, record},
                                                                              {DataType::GroupRiskConfig, rules},
                                                                              {DataType::GroupRiskConfig, IDataPtr()},
                                                                              {DataType::EmailRule, config},
                                                                              {DataType::AccountGroup, config}}) {
            const auto reply = m_fixture->operateOn(type, EZvDataOperation::Modify, data);
            COMPARE_CODE(reply, EErrorCode::Malformed);
            QVERIFY(!reply.error.errorMsg().empty());
        }
        QCOMPARE(m_fixture->content().filter("group"), before);
    }

    void accountEntersGroupOnlyWithTheRightOfItsType()
    {
        const auto session = m_fixture->session(
            "futures", {nvservice::UserRight::EditAccountGroup, nvservice::UserRight::FutureAccount});
        const auto stock = group("股票组", First, {account(EZVBrokerType::Stock, "0010")});
        COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Add, stock), EErrorCode::PermissionDenied);
        const auto futures = group("期货组", First, {future("8001")});
        COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Add, futures), EErrorCode::Success);

        // An account that is in the group already may stay there.
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Add, stock), EErrorCode::Success);
        const GroupPtr mixed = m_fixture->current(2);
        mixed->accounts.push_back(future("8002"));
        COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Modify, mixed), EErrorCode::Success);
        const GroupPtr again = m_fixture->current(2);
        again->accounts.push_back(account(EZVBrokerType::Stock, "0010", "01"));
        COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Modify, again),
                     EErrorCode::PermissionDenied);
    }

    void boundUserCannotMoveGroupToAnotherInstitution()
    {
        const auto session = m_fixture->session("bound", everyRight(), First);
        const GroupPtr record = m_fixture->storedGroup("组");
        record->institutionId = Second;
        record->accounts = {future("9001")};
        COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Modify, record), EErrorCode::OutOfScope);
        QCOMPARE(m_fixture->current(record->groupId)->institutionId, First);
    }

    void everyQueryIsLimitedToTheUsersInstitution()
    {
        m_fixture->storedGroup("甲组", First);
        m_fixture->storedGroup("乙组", Second);
        m_fixture->storedGroup("主经纪商组", None);
        m_fixture->storedGroup("西组", First, 1);
        const std::set<int> readers = withTypes({nvservice::UserRight::SetAccountGroupRisk});
        const auto all = m_fixture->session("all", readers);
        const auto first = m_fixture->session("first", readers, First);
        const auto second = m_fixture->session("second", everyRight(), Second);
        using Names = std::vector<std::string>;
        const int type = nvservice::DataType::AccountGroup;
        QCOMPARE(groupNames(query(m_fixture->east(), all, type)), (Names{"甲组", "乙组", "主经纪商组"}));
        QCOMPARE(groupNames(query(m_fixture->east(), first, type)), Names{"甲组"});
        QCOMPARE(groupNames(query(m_fixture->east(), second, type)), Names{"乙组"});
        QCOMPARE(groupNames(query(m_fixture->east(), first, type, "1")), Names{"甲组"});
        QCOMPARE(groupNames(query(m_fixture->east(), second, type, "1")), Names{});
        QCOMPARE(query(m_fixture->east(), all, nvservice::DataType::Account).totalCount, 8);
        QCOMPARE(query(m_fixture->east(), first, nvservice::DataType::Account).totalCount, 6);
        QCOMPARE(query(m_fixture->east(), second, nvservice::DataType::Account).totalCount, 1);
        QCOMPARE(query(m_fixture->east(), all, nvservice::DataType::Institution).totalCount, 2);
        QCOMPARE(query(m_fixture->east(), first, nvservice::DataType::Institution).records.at(0)->getKey(),
                 std::string("E|1"));
        QCOMPARE(query(m_fixture->east(), second, nvservice::DataType::Institution).totalCount, 1);
        const int config = nvservice::DataType::GroupRiskConfig;
        QCOMPARE(query(m_fixture->east(), all, config, "2").totalCount, 1);
        QCOMPARE(query(m_fixture->east(), second, config, "2").totalCount, 1);
        COMPARE_CODE(query(m_fixture->east(), first, config, "2"), EErrorCode::OutOfScope);
        COMPARE_CODE(query(m_fixture->east(), first, config, "3"), EErrorCode::OutOfScope);
        QVERIFY(query(m_fixture->east(), first, config, "3").records.empty());
    }

    void sessionOfAnotherServerOrDisabledUserIsNotLoggedIn()
    {
        const GroupPtr record = m_fixture->storedGroup("组");
        const auto western = m_fixture->session("western", everyRight(), None, 1);
        const auto gone = m_fixture->session("gone", everyRight());
        m_fixture->exec("UPDATE app_user SET enabled = 0 WHERE login = 'gone'");
        const QStringList before = m_fixture->content().filter("group");
        for (const service::SessionPtr& session : {western, gone, service::SessionPtr()}) {
            COMPARE_CODE(query(m_fixture->east(), session, nvservice::DataType::AccountGroup), EErrorCode::NotLoggedIn);
            COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Delete, record),
                         EErrorCode::NotLoggedIn);
        }
        QCOMPARE(m_fixture->content().filter("group"), before);
        QCOMPARE(m_fixture->column("SELECT login FROM audit"), std::string("gone"));
    }

    void rightThatIsTakenAwayIsGoneAtOnce()
    {
        const auto session = m_fixture->session("editor", everyRight());
        COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Add, group("一", First, {future("8001")})),
                     EErrorCode::Success);
        m_fixture->exec("DELETE FROM user_right WHERE right_id = 10717");
        COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Add, group("二", First, {future("8001")})),
                     EErrorCode::PermissionDenied);
    }
};

TEST_WITHOUT_WIDGETS(OperationRightsTest)
#include "tst_operation_rights.moc"
