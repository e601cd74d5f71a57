// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/ServiceFixture.h"
#include "service/daemon/DaemonThread.h"
#include "service/daemon/RawClient.h"
#include "support/tls/TestCertificates.h"

namespace testservice
{

/// Made once for a test program.
inline support::TestCertificates& certificates()
{
    static support::TestCertificates made;
    return made;
}

inline const QString East = QStringLiteral("东分系统");

/// A store with the users "admin" (every right) and "reader" (none), both with the password "right", and the
/// configuration of a daemon for its east server.
struct Installation {
    ServiceFixture fixture;
    service::daemon::Configuration configuration = plainConfiguration(fixture.location(), East);

    Installation()
    {
        addUser(fixture.store(), fixture.server(0), "admin", "right", everyRight(), None);
        addUser(fixture.store(), fixture.server(0), "reader", "right", {}, None);
    }
    void useTls(support::TestCertificates::EKind kind = support::TestCertificates::EKind::Good)
    {
        configuration.listen[0].plaintext = false;
        configuration.tls = {certificates().certificate(kind), certificates().key()};
    }
    void useMonitor() { configuration.monitor = {QHostAddress(QHostAddress::LocalHost), 0}; }
};

/// A test each of whose functions has an installation of its own.
class InstallationTest : public support::FunctionTest
{
protected:
    void begin() override { m_installation = std::make_unique<Installation>(); }
    void end() override { m_installation.reset(); }

    std::unique_ptr<Installation> m_installation;
};

/// A client that has logged in.
inline bool enter(RawClient& client, int port, const QString& authority = {}, const char* user = "admin")
{
    return client.open(port, authority) && client.hello() && client.logIn(user, "right").isSuccess();
}

/// Stores so many groups of one account, in one transaction.
void storeGroups(ServiceFixture& fixture, int count);

} // namespace testservice
