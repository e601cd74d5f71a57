// SPDX-License-Identifier: Apache-2.0
#include "service/RiskSamples.h"
#include "support/TestProgram.h"

using namespace testservice;
using nvservice::CustomEmailRC;

class EmailRulesTest : public ServiceTest
{
    Q_OBJECT

    static boost::shared_ptr<CustomEmailRC> rules(int groupId, const std::vector<std::string>& keys)
    {
        auto record = boost::make_shared<CustomEmailRC>();
        for (const std::string& key : keys) {
            record->emailRCs.push_back(emailRule(groupId, key));
        }
        return record;
    }

private:
    std::vector<std::string> keysOf(int groupId)
    {
        std::vector<std::string> keys;
        const RiskConfigPtr config = m_fixture->loaded(groupId);
        for (const nvservice::CEmailRC& rule : config->emailRCs) {
            keys.push_back(rule.ruleKey);
        }
        return keys;
    }

    service::Reply apply(EZvDataOperation operation, const boost::shared_ptr<CustomEmailRC>& record,
                         const std::string& id = {})
    {
        return m_fixture->operateOn(EmailType, operation, record, id);
    }

    /// The first of the two requests with which the risk settings save a configuration: it has no e-mail rules.
    void saveAsTheDialog(const service::SessionPtr& session, int groupId)
    {
        const RiskConfigPtr config = loaded(m_fixture->east(), session, groupId);
        config->emailRCs.clear();
        COMPARE_CODE(save(m_fixture->east(), session, config), EErrorCode::Success);
    }

    /// A request that says which state it is based on.
    void storeRules(const service::SessionPtr& session, int groupId, const std::string& key)
    {
        const auto record = rules(groupId, {key});
        record->setRevision(m_fixture->config(groupId)->revision());
        COMPARE_CODE(operateOn(EmailType, m_fixture->east(), session, EZvDataOperation::Modify, record),
                     EErrorCode::Success);
    }

private slots:
    void modifyReplacesTheRulesOfTheGroupAndNothingElse()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const int other = m_fixture->storedGroup("别组")->groupId;
        const RiskConfigPtr config = m_fixture->loaded(id);
        config->assetsRCs = {stockLimit()};
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        using Keys = std::vector<std::string>;
        COMPARE_CODE(apply(EZvDataOperation::Modify, rules(other, {"x"})), EErrorCode::Success);
        COMPARE_CODE(apply(EZvDataOperation::Modify, rules(id, {"b", "a"})), EErrorCode::Success);
        QCOMPARE(keysOf(id), (Keys{"b", "a"}));
        COMPARE_CODE(apply(EZvDataOperation::Modify, rules(id, {"c"})), EErrorCode::Success);
        QCOMPARE(keysOf(id), Keys{"c"});
        QCOMPARE(keysOf(other), Keys{"x"});
        QCOMPARE(m_fixture->config(id)->assetsRCs.size(), std::size_t{1});
        QCOMPARE(m_fixture->config(id)->revision(), std::int64_t{4});
        const std::string email = std::to_string(EmailType);
        QCOMPARE(m_fixture->column(QString("SELECT data_type FROM group_risk_config_history WHERE group_id = %1"
                                           " ORDER BY revision")
                                       .arg(id)),
                 std::to_string(ConfigType) + ',' + email + ',' + email);
    }

    void deleteTakesTheNamedRulesOrAll()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        using Keys = std::vector<std::string>;
        apply(EZvDataOperation::Modify, rules(id, {"a", "b", "c"}));
        COMPARE_CODE(apply(EZvDataOperation::Delete, rules(id, {"b", "nowhere"})), EErrorCode::Success);
        QCOMPARE(keysOf(id), (Keys{"a", "c"}));
        const service::Reply reply = apply(EZvDataOperation::Delete, everyEmailRule(id));
        COMPARE_CODE(reply, EErrorCode::Success);
        QVERIFY(reply.document.isEmpty() && reply.error.errorMsg().empty());
        QCOMPARE(keysOf(id), Keys{});
        QCOMPARE(m_fixture->number("SELECT count(*) FROM group_risk_config_history"), 3);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit"), 3);
    }

    void deleteOfNothingSucceedsAuditedAndChangesNothing()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const QStringList before = m_fixture->content().filter("group_risk_config");
        COMPARE_CODE(apply(EZvDataOperation::Delete, everyEmailRule(id)), EErrorCode::Success);
        QCOMPARE(m_fixture->content().filter("group_risk_config"), before);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE outcome = 0"), 1);
    }

    void deleteSentTwiceIsAppliedOnce()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        apply(EZvDataOperation::Modify, rules(id, {"a"}));
        COMPARE_CODE(apply(EZvDataOperation::Delete, everyEmailRule(id), "once"), EErrorCode::Success);
        apply(EZvDataOperation::Modify, rules(id, {"new"}));
        COMPARE_CODE(apply(EZvDataOperation::Delete, everyEmailRule(id), "once"), EErrorCode::Success);
        QCOMPARE(keysOf(id), std::vector<std::string>{"new"});
    }

    void rulesStayWhenTheSaveThatTheyBelongToWasRefused()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        apply(EZvDataOperation::Modify, rules(id, {"a"}));
        const RiskConfigPtr config = m_fixture->loaded(id);
        config->assetsRCs = {stockLimit(-1)};
        COMPARE_CODE(m_fixture->save(config), EErrorCode::InvalidValue);
        const service::Reply reply = apply(EZvDataOperation::Delete, everyEmailRule(id));
        COMPARE_CODE(reply, EErrorCode::InvalidValue);
        QVERIFY(QString::fromStdString(reply.error.errorMsg()).contains("阈值不能小于0"));
        QCOMPARE(keysOf(id), std::vector<std::string>{"a"});

        // Who says which state is meant needs no save before.
        const auto based = everyEmailRule(id);
        based->setRevision(m_fixture->config(id)->revision());
        COMPARE_CODE(apply(EZvDataOperation::Delete, based), EErrorCode::Success);
        QVERIFY(keysOf(id).empty());
    }

    void outdatedRevisionIsRefused()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const auto zhang = m_fixture->session("zhang", everyRight());
        COMPARE_CODE(operateOn(EmailType, m_fixture->east(), zhang, EZvDataOperation::Modify, rules(id, {"a"})),
                     EErrorCode::Success);
        const auto based = rules(id, {"b"});
        based->setRevision(1);
        const service::Reply reply = apply(EZvDataOperation::Modify, based);
        COMPARE_CODE(reply, EErrorCode::Conflict);
        QVERIFY(QString::fromStdString(reply.error.errorMsg()).contains("zhang"));
        QCOMPARE(keysOf(id), std::vector<std::string>{"a"});
    }

    void rulesOfOthersAreNotOverwrittenWithoutARevision_data()
    {
        const support::DataRows<bool, bool> row("isModify", "hasSaved");
        for (const bool isModify : {false, true}) {
            const QString name = isModify ? "modify" : "delete";
            row(name, isModify, false);
            row(name + " of a session that has stored rules before", isModify, true);
        }
    }
    void rulesOfOthersAreNotOverwrittenWithoutARevision()
    {
        QFETCH(bool, isModify);
        QFETCH(bool, hasSaved);
        const int id = m_fixture->storedGroup("组")->groupId;
        if (hasSaved) {
            COMPARE_CODE(apply(EZvDataOperation::Modify, rules(id, {"mine"})), EErrorCode::Success);
        }
        storeRules(m_fixture->session("zhang", everyRight()), id, "new");
        const QStringList before = m_fixture->content().filter("group_risk_config");
        const service::Reply reply = isModify ? apply(EZvDataOperation::Modify, rules(id, {"mine"}))
                                              : apply(EZvDataOperation::Delete, everyEmailRule(id));
        COMPARE_CODE(reply, EErrorCode::Conflict);
        QVERIFY(QString::fromStdString(reply.error.errorMsg()).contains("姓名zhang（zhang）于"));
        QCOMPARE(m_fixture->content().filter("group_risk_config"), before);
        QCOMPARE(m_fixture->text("SELECT outcome FROM audit ORDER BY id DESC LIMIT 1"),
                 std::to_string(static_cast<int>(EErrorCode::Conflict)));
    }

    void ownRulesAreReplacedWithoutARevision()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        storeRules(m_fixture->session("zhang", everyRight()), id, "old");
        storeRules(m_fixture->admin(), id, "mine");
        COMPARE_CODE(apply(EZvDataOperation::Modify, rules(id, {"newer"})), EErrorCode::Success);
        QCOMPARE(keysOf(id), std::vector<std::string>{"newer"});
    }

    /// The dialog's second request may come after somebody else's change: it is answered, and takes nothing of it away.
    void secondRequestOfASaveLeavesWhatOthersHaveStoredSince_data()
    {
        const support::DataRows<bool> row("hasLoggedInAgain");
        row("same session", false);
        row("session of a new log-in", true);
    }
    void secondRequestOfASaveLeavesWhatOthersHaveStoredSince()
    {
        QFETCH(bool, hasLoggedInAgain);
        const int id = m_fixture->storedGroup("组")->groupId;
        saveAsTheDialog(m_fixture->admin(), id);
        storeRules(m_fixture->session("zhang", everyRight()), id, "new");
        const QStringList before = m_fixture->content().filter("group_risk_config");
        const auto user = service::findUser({m_fixture->store().connection(), m_fixture->server(0)}, "admin");
        const auto session = hasLoggedInAgain ? boost::make_shared<service::Session>(*user, m_fixture->server(0).id)
                                              : m_fixture->admin();
        COMPARE_CODE(
            operateOn(EmailType, m_fixture->east(), session, EZvDataOperation::Delete, everyEmailRule(id), "once"),
            EErrorCode::Success);
        QCOMPARE(m_fixture->content().filter("group_risk_config"), before);
        // Only what the save has said itself.
        COMPARE_CODE(operateOn(EmailType, m_fixture->east(), session, EZvDataOperation::Modify, rules(id, {"mine"})),
                     EErrorCode::Conflict);
    }

    /// Two desks of one user and another user save by dialog, one more stores rules; the second request of each save
    /// comes at any time before the next save of its desk.
    void noOrderOfSavesRefusesOneOrLosesRulesOfOthers()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const auto user = [&] {
            return service::findUser({m_fixture->store().connection(), m_fixture->server(0)}, "admin");
        };
        const std::vector<service::SessionPtr> desks = {
            m_fixture->admin(), boost::make_shared<service::Session>(*user(), m_fixture->server(0).id),
            m_fixture->session("zhang", everyRight())};
        const service::SessionPtr other = m_fixture->session("li", everyRight());
        std::vector<bool> owes(desks.size(), false);
        std::mt19937 random(12);
        std::size_t refused = 0;
        for (int step = 0; step < 600; ++step) {
            const std::size_t desk = random() % desks.size();
            if (random() % 3 == 0) {
                storeRules(other, id, "rule" + std::to_string(step));
                const auto blind = operateOn(EmailType, m_fixture->east(), desks[desk], EZvDataOperation::Modify,
                                             rules(id, {"blind"}));
                COMPARE_CODE(blind, EErrorCode::Conflict);
                ++refused;
            } else if (owes[desk]) {
                const std::vector<std::string> before = keysOf(id);
                COMPARE_CODE(
                    operateOn(EmailType, m_fixture->east(), desks[desk], EZvDataOperation::Delete, everyEmailRule(id)),
                    EErrorCode::Success);
                QCOMPARE(keysOf(id), before);
                owes[desk] = false;
            } else {
                saveAsTheDialog(desks[desk], id);
                QCOMPARE(keysOf(id), std::vector<std::string>());
                owes[desk] = true;
            }
        }
        QVERIFY(refused > 100);
    }

    void requestsThatNameNoGroupOrNoSenseAreTypedErrors()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        apply(EZvDataOperation::Modify, rules(id, {"a"}));
        const auto refused = [&](EZvDataOperation operation, auto change, EErrorCode code) {
            const auto record = rules(id, {"b"});
            change(*record);
            const service::Reply reply = apply(operation, record);
            COMPARE_CODE(reply, code);
            QVERIFY(!reply.error.errorMsg().empty());
        };
        const auto nothing = [](CustomEmailRC& record) { record.emailRCs.clear(); };
        const auto twoGroups = [](CustomEmailRC& record) { record.emailRCs.push_back(emailRule(99, "b")); };
        const auto otherKind = [](CustomEmailRC& record) { record.emailRCs[0].ruleKind = "1"; };
        const auto noNumber = [](CustomEmailRC& record) { record.emailRCs[0].accountKey = "01"; };
        const auto unknownGroup = [](CustomEmailRC& record) { record.emailRCs[0].accountKey = "99"; };
        const auto otherServer = [](CustomEmailRC& record) { record.setSystemTag("W"); };
        const auto badAddress = [](CustomEmailRC& record) { record.emailRCs[0].recipients = {"x"}; };
        for (const auto operation : {EZvDataOperation::Modify, EZvDataOperation::Delete}) {
            refused(operation, nothing, EErrorCode::InvalidValue);
            refused(operation, twoGroups, EErrorCode::InvalidValue);
            refused(operation, otherKind, EErrorCode::InvalidValue);
            refused(operation, noNumber, EErrorCode::InvalidValue);
            refused(operation, unknownGroup, EErrorCode::NotFound);
            refused(operation, otherServer, EErrorCode::OutOfScope);
        }
        refused(EZvDataOperation::Modify, badAddress, EErrorCode::InvalidValue);
        QCOMPARE(keysOf(id), std::vector<std::string>{"a"});
    }
};

TEST_WITHOUT_WIDGETS(EmailRulesTest)
#include "tst_email_rules.moc"
