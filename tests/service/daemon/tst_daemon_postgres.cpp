// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/DaemonProcess.h"
#include "service/daemon/Installation.h"
#include "support/TestProgram.h"
#include "support/postgres/LossyProxy.h"

using namespace testservice;
using nvservice::DataType::AccountGroup;

/// The daemon when its PostgreSQL server goes away and comes back, as at a fail-over.
class DaemonPostgresTest : public QObject
{
    Q_OBJECT

private slots:
    void clientsKeepTheirConnectionAndGetTheirAnswersWhenTheDatabaseIsBack()
    {
        Installation installation;
        support::LossyProxy proxy(installation.fixture.path("").toStdString(),
                                  qgetenv("QAV_TEST_POSTGRES").toStdString());
        installation.configuration.store = installation.fixture.locationThrough(installation.fixture.path(""));
        installation.useMonitor();
        DaemonThread daemon(installation.configuration);
        QVERIFY2(daemon.startError().isSuccess(), daemon.startError().errorMsg().c_str());
        RawClient client;
        QVERIFY(enter(client, daemon.port()));
        QCOMPARE(httpGet(daemon.monitorPort(), "/health").status, 200);

        proxy.setAway(true);
        const std::int64_t operation =
            client.sendOperation(AccountGroup, EZvDataOperation::Add, group("甲", First, {future("8001")}), "1");
        const HttpReply reply = httpGet(daemon.monitorPort(), "/health");
        QCOMPARE(reply.status, 503);
        QVERIFY2(reply.body.contains("store_failure"), qPrintable(reply.body));
        QVERIFY(reply.body.contains("\"connections\":1"));

        proxy.setAway(false);
        COMPARE_CODE(client.answerTo(operation), EErrorCode::Success);
        QCOMPARE(client.query(AccountGroup).records.size(), std::size_t(1));
        QCOMPARE(installation.fixture.text("SELECT name FROM account_group"), std::string("甲"));
        QTRY_COMPARE_WITH_TIMEOUT(httpGet(daemon.monitorPort(), "/health").status, 200, 60000);
    }

    void daemonWaitsForItsDatabaseAndServesWhenItIsThere()
    {
        Installation installation;
        const QString folder = installation.fixture.path("");
        DaemonProcess daemon(folder);
        daemon.configure(installation.fixture.locationThrough(folder), East, {}, {});
        daemon.launch();
        QTRY_COMPARE_WITH_TIMEOUT(daemon.log().filter("waiting_for_store").size(), 1, 60000);
        support::LossyProxy proxy(folder.toStdString(), qgetenv("QAV_TEST_POSTGRES").toStdString());
        proxy.setAway(true);
        // It is away for another reason now.
        QTRY_COMPARE_WITH_TIMEOUT(daemon.log().filter("waiting_for_store").size(), 2, 60000);
        QCOMPARE(daemon.log().filter("listening").size(), 0);
        proxy.setAway(false);
        QString errors;
        QVERIFY2(daemon.waitUntilStarted(errors), qPrintable(errors));
        RawClient client;
        QVERIFY(enter(client, daemon.port()));
    }

    void strangerHearsThatTheDatabaseIsAwayAndNotWhereItIs()
    {
        Installation installation;
        const QString folder = installation.fixture.path("");
        support::LossyProxy proxy(folder.toStdString(), qgetenv("QAV_TEST_POSTGRES").toStdString());
        installation.configuration.store = installation.fixture.locationThrough(folder);
        DaemonThread daemon(installation.configuration);
        QVERIFY2(daemon.startError().isSuccess(), daemon.startError().errorMsg().c_str());
        proxy.setAway(true);
        RawClient stranger;
        QVERIFY(stranger.open(daemon.port()) && stranger.hello());
        const utils::NVError error = stranger.logIn("admin", "right");
        QCOMPARE(error.code(), EErrorCode::StorageFailure);
        QCOMPARE(error.errorMsg(), std::string("无法连接数据库"));
        QVERIFY2(daemon.hasLogged(folder), qPrintable(daemon.log().join('\n')));
    }
};

TEST_WITHOUT_WIDGETS(DaemonPostgresTest)
#include "tst_daemon_postgres.moc"
