// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/DaemonThread.h"
#include "support/UnexpectedLog.h"
#include "support/qav/CReplyCollector.h"
#include "support/qav/Client.h"
#include "support/records/Requests.h"
#include "support/service/RealService.h"
#include "support/tls/TestCertificates.h"

#include "workbench/CInstallation.h"
#include "workbench/CSession.h"

#include "support/TestProgram.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/DataType.h>

#include <boost/make_shared.hpp>

using QAV::EConnectionState;
using support::CollectedReply;
using support::CReplyCollector;
using testservice::DaemonThread;
using utils::EErrorCode;

namespace
{

constexpr int Groups = 40;
const QStringList Servers{"上海分系统", "深圳分系统"};

CollectedReply groups()
{
    CReplyCollector replies;
    support::centre().queryData_async(support::shared(support::queryOf(nvservice::DataType::AccountGroup)),
                                      replies.onQuery(), 0);
    return replies.first();
}

EConnectionState stateOf(const QString& server)
{
    return support::centre().getClientByName(server.toStdString())->state();
}

std::string reasonOf(const QString& server)
{
    return support::centre().getClientByName(server.toStdString())->stateReason();
}

} // namespace

/// The client with servers of the network: two sub-systems of one database, a daemon for each, TLS between them.
class NetworkTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_certificates = std::make_unique<support::TestCertificates>();
        service::SampleOptions sample;
        sample.servers = Servers.size();
        sample.groups = Groups;
        sample.accounts = 60 * Servers.size();
        support::makeSampleDatabase(m_folder.filePath("sample.db"), sample);
    }

    void init()
    {
        m_log = std::make_unique<support::UnexpectedLog>();
        QFile list(m_folder.filePath("servers.ini"));
        QVERIFY(list.open(QIODevice::WriteOnly));
        for (int i = 0; i < Servers.size(); ++i) {
            start(i);
            list.write(QStringLiteral("[s%1]\nname=%2\ntag=%3\nhost=localhost\nport=%4\nca=%5\n")
                           .arg(i)
                           .arg(Servers[i], i == 0 ? "SH01" : "SZ01")
                           .arg(m_ports[i])
                           .arg(m_certificates->authority())
                           .toUtf8());
        }
        list.close();
        std::vector<workbench::ServerSetting> servers;
        QString problem;
        QVERIFY2(workbench::readServerList(list.fileName(), servers, problem), qPrintable(problem));
        m_installation = std::make_unique<workbench::CInstallation>();
        const utils::NVError error = m_installation->connectTo(servers);
        QVERIFY2(error.isSuccess(), error.errorMsg().c_str());
    }

    void cleanup()
    {
        m_installation.reset();
        support::centre().shutDown();
        for (auto& daemon : m_daemons) {
            daemon.reset();
        }
        m_log.reset();
    }

    void aUserLogsInEverywhereAndSeesEverything()
    {
        workbench::CSession session;
        QVERIFY2(logIn(session).isSuccess(), m_refusal.c_str());
        QCOMPARE(session.refusedServers(), QStringList());
        const CollectedReply reply = groups();
        QVERIFY2(reply.error.isSuccess(), reply.error.errorMsg().c_str());
        QCOMPARE(reply.records.size(), std::size_t(Groups));
        QCOMPARE(reply.totalCount, Groups);
        for (const QString& server : Servers) {
            QVERIFY(stateOf(server) == EConnectionState::Connected);
        }
    }

    void aChangeArrives()
    {
        workbench::CSession session;
        QVERIFY2(logIn(session).isSuccess(), m_refusal.c_str());
        const auto group = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(groups().records.at(0));
        QVERIFY(group);
        group->groupName = "经网络改名的组";
        const auto request = support::shared(
            support::operationOn(nvservice::DataType::AccountGroup, nvservice::EZvDataOperation::Modify, group));
        CReplyCollector replies;
        const auto client = support::centre().getClientBySystemTag(group->getSystemTag());
        client->operateData_async(request, replies.onOperate(), 0);
        QVERIFY2(replies.first().error.isSuccess(), replies.first().error.errorMsg().c_str());
        const auto records = groups().records;
        QVERIFY(std::any_of(records.begin(), records.end(), [&](const nvservice::IDataPtr& record) {
            return static_cast<const nvservice::CAccountGroup&>(*record).groupName == group->groupName;
        }));
        // The same once more is based on what is no more.
        CReplyCollector again;
        client->operateData_async(request, again.onOperate(), 0);
        QCOMPARE(int(again.first().error.code()), int(EErrorCode::Conflict));
    }

    void aWrongPasswordIsRefusedByAll()
    {
        workbench::CSession session;
        QCOMPARE(int(logIn(session, "wrong").code()), int(EErrorCode::NotLoggedIn));
        QCOMPARE(m_refusal, std::string("用户名或密码错误"));
        QCOMPARE(int(groups().error.code()), int(EErrorCode::NotLoggedIn));
    }

    void aServerThatIsDownIsNamedAndTheOthersWork()
    {
        m_daemons[1].reset();
        workbench::CSession session;
        QVERIFY2(logIn(session).isSuccess(), m_refusal.c_str());
        QCOMPARE(session.refusedServers(), QStringList(Servers[1] + "：无法连接：服务端拒绝连接或没有启动"));
        const CollectedReply reply = groups();
        QCOMPARE(int(reply.error.code()), int(EErrorCode::NotConnected));
        QVERIFY(!reply.records.empty());
        QVERIFY(reply.records.size() < std::size_t(Groups));
        // When it comes, the user is there too.
        start(1);
        QTRY_VERIFY_WITH_TIMEOUT(stateOf(Servers[1]) == EConnectionState::Connected, 60000);
        QCOMPARE(groups().records.size(), std::size_t(Groups));
    }

    void aRestartedServerIsConnectedAgainWithTheSameUser()
    {
        workbench::CSession session;
        QVERIFY2(logIn(session).isSuccess(), m_refusal.c_str());
        m_daemons[0].reset();
        QTRY_VERIFY_WITH_TIMEOUT(stateOf(Servers[0]) != EConnectionState::Connected, 60000);
        QVERIFY(stateOf(Servers[1]) == EConnectionState::Connected);
        QTRY_COMPARE_WITH_TIMEOUT(reasonOf(Servers[0]), std::string("无法连接：服务端拒绝连接或没有启动"), 60000);
        QCOMPARE(reasonOf(Servers[1]), std::string());
        start(0);
        QTRY_VERIFY_WITH_TIMEOUT(stateOf(Servers[0]) == EConnectionState::Connected, 60000);
        const CollectedReply reply = groups();
        QVERIFY2(reply.error.isSuccess(), reply.error.errorMsg().c_str());
        QCOMPARE(reply.records.size(), std::size_t(Groups));
    }

private:
    void start(int server)
    {
        auto configuration = testservice::plainConfiguration(m_folder.filePath("sample.db"), Servers[server]);
        configuration.listen[0].plaintext = false;
        configuration.listen[0].port = m_ports[server];
        configuration.tls = {m_certificates->certificate(), m_certificates->key()};
        m_daemons[server] = std::make_unique<DaemonThread>(configuration);
        if (!m_daemons[server]->startError().isSuccess()) {
            qFatal("no daemon: %s", m_daemons[server]->startError().errorMsg().c_str());
        }
        m_ports[server] = m_daemons[server]->port();
    }

    utils::NVError logIn(workbench::CSession& session, const QString& password = "admin123")
    {
        std::optional<utils::NVError> outcome;
        session.logIn("admin", password, [&](const workbench::CSession::Outcome& reached) { outcome = reached.error; });
        if (!QTest::qWaitFor([&] { return outcome.has_value(); }, 60000)) {
            return {EErrorCode::Failed, "no answer"};
        }
        m_refusal = outcome->errorMsg();
        return *outcome;
    }

    QTemporaryDir m_folder;
    std::unique_ptr<support::TestCertificates> m_certificates;
    std::unique_ptr<support::UnexpectedLog> m_log;
    std::unique_ptr<DaemonThread> m_daemons[2];
    int m_ports[2] = {0, 0};
    std::unique_ptr<workbench::CInstallation> m_installation;
    std::string m_refusal; ///< of the last log-in
};

TEST_WITHOUT_WIDGETS(NetworkTest)
#include "tst_workbench_network.moc"
