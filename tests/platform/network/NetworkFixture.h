// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/network/FakeServer.h"
#include "support/UnexpectedLog.h"

#include <QtTest>

namespace support
{

/// A fake server and one transport to it, over plain TCP.
class NetworkFixture
{
protected:
    void setUp()
    {
        m_log = std::make_unique<UnexpectedLog>();
        m_server = std::make_unique<FakeServer>();
        QVERIFY(m_server->start());
    }

    void tearDown()
    {
        m_transport.reset();
        m_server.reset();
        m_log.reset();
    }

    void connectTransport() { m_transport = std::make_unique<QAV::CNetworkTransport>(m_server->address()); }

    /// Connects and logs in; the answer is in what is returned.
    Answers logIn()
    {
        connectTransport();
        Answers answers;
        m_transport->logIn("admin", "secret", answers.onLogIn());
        if (!waitUntil([&] { return answers.count() == 1; }) || !answers.at(0).error.isSuccess()) {
            qFatal("no log-in");
        }
        return answers;
    }

    /// The next message of a kind on the last connection; waits for it.
    template <typename Kind>
    Kind waitFor()
    {
        std::optional<Kind> message;
        const bool came = waitUntil([&] {
            if (!message && m_server->peer()) {
                message = m_server->peer()->take<Kind>();
            }
            return message.has_value();
        });
        if (!came) {
            qFatal("the client does not send what is expected of it");
        }
        return std::move(*message);
    }

    /// Whether the connection still works in both directions; everything that was sent before has been read then.
    bool isAlive()
    {
        m_server->peer()->send(wire::encode(wire::Ping{999999}));
        return waitFor<wire::Pong>().id == 999999;
    }

    /// What a log-in at that address is refused with.
    static std::string refusalOf(const QAV::NetworkServer& address)
    {
        QAV::CNetworkTransport transport(address);
        Answers answers;
        transport.logIn("admin", "secret", answers.onLogIn());
        return waitUntil([&] { return answers.count() == 1; }) ? answers.at(0).error.errorMsg() : "no answer";
    }

    std::unique_ptr<UnexpectedLog> m_log;
    std::unique_ptr<FakeServer> m_server;
    std::unique_ptr<QAV::CNetworkTransport> m_transport;
};

} // namespace support
