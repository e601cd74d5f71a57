// SPDX-License-Identifier: Apache-2.0
#include "service/admin/AdminFixture.h"
#include "service/daemon/ChangeListener.h"
#include "service/daemon/DaemonThread.h"
#include "support/TestProgram.h"

using namespace testservice;
namespace DataType = nvservice::DataType;

/// What clients of a daemon hear of what the tool does to its database.
class AdminBesideDaemonTest : public AdminTest
{
    Q_OBJECT

    void begin() override
    {
        AdminTest::begin();
        for (const char* const login : {"li", "wang"}) {
            addUser(m_fixture->store(), m_fixture->server(0), login, "right", everyRight(), None);
        }
        m_daemon = std::make_unique<DaemonThread>(plainConfiguration(m_fixture->location(), "东分系统"));
    }
    void end() override
    {
        m_daemon.reset();
        AdminTest::end();
    }

    int add(const std::string& name, int institution = First)
    {
        const std::string account = institution == First ? "8001" : "9001";
        return static_cast<int>(
            m_fixture->operate(EZvDataOperation::Add, group(name, institution, {future(account)})).newId);
    }
    void forbidWashTrades(int groupId)
    {
        const RiskConfigPtr config = m_fixture->loaded(groupId);
        config->ratProofSetting.washTradeForbidden = true;
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
    }

    std::unique_ptr<DaemonThread> m_daemon;

private slots:
    void clientsHearWhatTheToolRestores()
    {
        const int id = add("一组");
        const GroupPtr record = m_fixture->current(id);
        record->groupName = "二组";
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Success);
        ChangeListener listener;
        QVERIFY(listener.begin(m_daemon->port(), "li"));
        COMPARE_EXIT(m_fixture->run(QString("group restore --server E --as wang --id %1 --revision 1").arg(id)), 0);
        QVERIFY(listener.takeUntil("一组"));
        QCOMPARE(listener.heard.revisions().at({id, DataType::AccountGroup}), std::int64_t(3));
    }

    void whatTheToolWithdrawsIsNotHeardAnyMore()
    {
        ChangeListener li;
        ChangeListener wang;
        QVERIFY(li.begin(m_daemon->port(), "li") && wang.begin(m_daemon->port(), "wang"));
        const auto heardOf = [](const ChangeListener& listener, int groupId, int dataType) {
            return listener.heard.revisions().count({groupId, dataType}) > 0;
        };
        const int first = add("一组");
        forbidWashTrades(first);
        add("二组");
        QVERIFY(li.takeUntil("二组") && heardOf(li, first, DataType::GroupRiskConfig));

        COMPARE_EXIT(m_fixture->run("right revoke --server E li 10719"), 0);
        const int third = add("三组");
        forbidWashTrades(third);
        add("四组");
        QVERIFY(li.takeUntil("四组") && heardOf(li, third, DataType::AccountGroup));
        QVERIFY(!heardOf(li, third, DataType::GroupRiskConfig));

        COMPARE_EXIT(m_fixture->run("user bind --server E li --institution 1"), 0);
        const int fifth = add("五组", Second);
        add("六组");
        QVERIFY(li.takeUntil("六组") && !heardOf(li, fifth, DataType::AccountGroup));

        COMPARE_EXIT(m_fixture->run("user disable --server E li"), 0);
        add("七组");
        QVERIFY(wang.takeUntil("七组"));
        QVERIFY(heardOf(wang, third, DataType::GroupRiskConfig) && heardOf(wang, fifth, DataType::AccountGroup));
        // Those who listened were all told at once.
        li.client.send(wire::encode(wire::Ping{li.client.nextId()}));
        QVERIFY(li.client.expect<wire::Pong>());
    }
};

TEST_WITHOUT_WIDGETS(AdminBesideDaemonTest)
#include "tst_admin_beside_daemon.moc"
