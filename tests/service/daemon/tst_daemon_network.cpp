#include "service/ServiceFixture.h"
#include "service/daemon/DaemonThread.h"
#include "service/daemon/RawClient.h"

#include "platform/wire/Protocol.h"
#include "support/tls/TestCertificates.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QtTest>

#include <algorithm>

using namespace testservice;
using nvservice::DataType::Account;
using nvservice::DataType::AccountGroup;
using service::daemon::Configuration;
using support::TestCertificates;

namespace
{

TestCertificates& certificates()
{
    static TestCertificates made;
    return made;
}

const QString East = QStringLiteral("东分系统");

/// A store with users, and the configuration of a daemon for it.
struct Installation {
    ServiceFixture fixture;
    Configuration configuration = plainConfiguration(fixture.file(), East);

    Installation()
    {
        addUser(fixture.store(), fixture.server(0), "admin", "right", everyRight(), None);
        addUser(fixture.store(), fixture.server(0), "reader", "right", {}, None);
    }
    void useTls(TestCertificates::EKind kind = TestCertificates::EKind::Good)
    {
        configuration.listen[0].plaintext = false;
        configuration.tls = {certificates().certificate(kind), certificates().key()};
    }
    void storeGroups(int count)
    {
        for (int i = 0; i < count; ++i)
            fixture.storedGroup("组" + std::to_string(i));
    }
};

/// A client that has logged in.
bool enter(RawClient& client, int port, const QString& authority = {}, const char* user = "admin")
{
    return client.open(port, authority) && client.hello() && client.logIn(user, "right").isSuccess();
}

} // namespace

class DaemonNetworkTest : public QObject
{
    Q_OBJECT

private slots:
    void queryIsAnsweredOverTls()
    {
        Installation installation;
        installation.useTls();
        installation.storeGroups(3);
        DaemonThread daemon(installation.configuration);
        QVERIFY2(daemon.startError().isSuccess(), daemon.startError().errorMsg().c_str());
        RawClient client;
        QVERIFY2(enter(client, daemon.port(), certificates().authority()), qPrintable(client.errorText()));
        const RawClient::Answer answer = client.query(AccountGroup);
        COMPARE_CODE(answer, EErrorCode::Success);
        QCOMPARE(answer.totalCount, 3);
        QCOMPARE(answer.records.size(), std::size_t(3));
        QCOMPARE(answer.records[2]->getKey(), std::string("E|3"));
        QCOMPARE(client.query(Account).records.size(), std::size_t(8));
    }
};

QTEST_GUILESS_MAIN(DaemonNetworkTest)
#include "tst_daemon_network.moc"
