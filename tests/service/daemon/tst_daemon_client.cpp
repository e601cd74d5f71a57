// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/DaemonProcess.h"
#include "service/daemon/Installation.h"
#include "support/TestProgram.h"
#include "support/records/Requests.h"

#include <QAV/CNetworkTransport.h>

#include <atomic>

using namespace testservice;
using nvservice::DataType::AccountGroup;
using QAV::CNetworkTransport;
using QAV::EConnectionState;
using QAV::ITransport;

namespace
{

constexpr std::chrono::seconds Patience(60);

QAV::NetworkServer serverAt(int port)
{
    QAV::NetworkServer server;
    server.host = "localhost";
    server.port = static_cast<std::uint16_t>(port);
    server.systemTag = "E";
    server.caFile = certificates().authority().toStdString();
    server.firstPause = std::chrono::milliseconds(20);
    server.longestPause = std::chrono::milliseconds(200);
    return server;
}

/// Waits for the one call of a handler.
template <typename Begin>
ITransport::Reply replyTo(const Begin& begin)
{
    auto promise = std::make_shared<std::promise<ITransport::Reply>>();
    std::future<ITransport::Reply> reply = promise->get_future();
    begin([promise](ITransport::Reply answer) { promise->set_value(std::move(answer)); });
    if (reply.wait_for(Patience) == std::future_status::ready) {
        return reply.get();
    }
    ITransport::Reply none;
    none.error = utils::NVError(EErrorCode::Failed, "no answer");
    return none;
}

utils::NVError logIn(CNetworkTransport& client, const std::string& user = "admin",
                     const std::string& password = "right")
{
    return replyTo([&](const ITransport::ReplyHandler& handler) {
               client.logIn(user, password, [handler](const utils::NVError& error, const auto&) {
                   ITransport::Reply reply;
                   reply.error = error;
                   handler(reply);
               });
           })
        .error;
}

ITransport::Reply query(CNetworkTransport& client, int dataType = AccountGroup)
{
    return replyTo([&](const auto& handler) { client.query(support::queryOf(dataType), handler); });
}

nvservice::COperateDataReq addition(const std::string& name)
{
    return support::operationOn(AccountGroup, EZvDataOperation::Add, group(name, First, {future("8001")}),
                                "op-" + name);
}

ITransport::Reply operate(CNetworkTransport& client, const nvservice::COperateDataReq& request)
{
    return replyTo([&](const ITransport::ReplyHandler& handler) { client.operate(request, handler); });
}

} // namespace

/// The client's own transport and the daemon, joined by real bytes.
class DaemonClientTest : public QObject
{
    Q_OBJECT

private slots:
    void clientAndDaemonWorkTogetherInOneProcess()
    {
        Installation installation;
        installation.useTls();
        storeGroups(installation.fixture, 5000);
        DaemonThread daemon(installation.configuration);
        CNetworkTransport client(serverAt(daemon.port()));
        QCOMPARE(logIn(client, "admin", "wrong").code(), EErrorCode::NotLoggedIn);
        COMPARE_CODE(query(client), EErrorCode::NotLoggedIn);
        QVERIFY(logIn(client).isSuccess());
        const ITransport::Reply reply = query(client);
        COMPARE_CODE(reply, EErrorCode::Success);
        QCOMPARE(reply.records.size(), std::size_t(5000));
        QCOMPARE(reply.totalCount, 5000);
        COMPARE_CODE(operate(client, addition("新组")), EErrorCode::Success);
        COMPARE_CODE(operate(client, addition("新组")), EErrorCode::Success); // the same operation again
        QCOMPARE(installation.fixture.number("SELECT count(*) FROM account_group WHERE name = '新组'"), 1);
        nvservice::COperateDataReq other = addition("新组");
        other.operationId = "another";
        COMPARE_CODE(operate(client, other), EErrorCode::Duplicate);
        COMPARE_CODE(query(client, 4711), EErrorCode::Unsupported);
        QVERIFY(logIn(client, "reader").isSuccess());
        COMPARE_CODE(operate(client, addition("别组")), EErrorCode::PermissionDenied);
    }

    void manyRequestsAtOnceAreAllAnsweredOnce()
    {
        Installation installation;
        installation.useTls();
        storeGroups(installation.fixture, 300);
        DaemonThread daemon(installation.configuration);
        CNetworkTransport client(serverAt(daemon.port()));
        QVERIFY(logIn(client).isSuccess());
        constexpr int requests = 400; // more than the daemon reads ahead
        std::vector<std::atomic<int>> calls(requests);
        std::atomic<int> failures{0};
        for (int i = 0; i < requests; ++i) {
            const auto handler = [&calls, &failures, i](const ITransport::Reply& reply) {
                ++calls[static_cast<std::size_t>(i)];
                failures += reply.error.isSuccess() ? 0 : 1;
            };
            if (i % 4 == 0) {
                client.operate(addition("多" + std::to_string(i)), handler);
            } else {
                client.query(support::queryOf(AccountGroup), handler);
            }
        }
        QTRY_VERIFY_WITH_TIMEOUT(std::all_of(calls.begin(), calls.end(), [](const auto& count) { return count == 1; }),
                                 100000);
        QCOMPARE(failures.load(), 0);
        QCOMPARE(installation.fixture.number("SELECT count(*) FROM account_group WHERE name LIKE '多%'"), requests / 4);
    }

    void clientComesBackToADaemonThatWasKilled()
    {
        Installation installation;
        QTemporaryDir directory(directoryTemplate());
        DaemonProcess daemon(directory.path());
        daemon.configure(installation.fixture.location(), East, certificates().certificate(), certificates().key());
        QString errors;
        QVERIFY2(daemon.start(errors), qPrintable(errors));
        const int port = daemon.port();
        CNetworkTransport client(serverAt(port));
        QVERIFY(logIn(client).isSuccess());
        COMPARE_CODE(operate(client, addition("一")), EErrorCode::Success);
        // The same port again, as after a restart by the service manager.
        daemon.usePort(port);
        daemon.kill();
        QTRY_VERIFY(client.state() != EConnectionState::Connected);
        QVERIFY2(daemon.start(errors), qPrintable(errors));
        QTRY_VERIFY_WITH_TIMEOUT(query(client).error.isSuccess(), 60000);
        COMPARE_CODE(operate(client, addition("二")), EErrorCode::Success);
        QCOMPARE(query(client).records.size(), std::size_t(2));
        // A daemon that stops in good order.
        daemon.terminate();
        QCOMPARE(daemon.waitForEnd(), 0);
        QTRY_VERIFY(client.state() != EConnectionState::Connected);
        QVERIFY2(daemon.start(errors), qPrintable(errors));
        QTRY_VERIFY_WITH_TIMEOUT(query(client).error.isSuccess(), 60000);
    }
};

TEST_WITHOUT_WIDGETS(DaemonClientTest)
#include "tst_daemon_client.moc"
