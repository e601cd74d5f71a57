// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/network/FakeServer.h"
#include "platform/wire/WireSamples.h"
#include "support/FixtureTest.h"
#include "support/TestProgram.h"
#include "support/UnexpectedLog.h"

namespace support
{

/// A test of a transport to a fake server, over plain TCP.
class NetworkTest : public FunctionTest
{
protected:
    void begin() override
    {
        m_log = std::make_unique<UnexpectedLog>();
        m_server = std::make_unique<FakeServer>();
        QVERIFY(m_server->start());
    }

    void end() override
    {
        m_transport.reset();
        m_server.reset();
        m_log.reset();
    }

    void connectTransport() { m_transport = std::make_unique<QAV::CNetworkTransport>(m_server->address()); }

    /// Connects and asks to log in.
    Answers beginLogIn()
    {
        connectTransport();
        Answers answers;
        m_transport->logIn("admin", "secret", answers.onLogIn());
        return answers;
    }

    /// Connects and logs in; the answer is in what is returned.
    Answers logIn()
    {
        const Answers answers = beginLogIn();
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

    /// Sends a query and gives what the server receives.
    wire::Query ask(const std::string& key, const Answers& answers)
    {
        m_transport->query(queryOf(key), answers.onReply());
        return waitFor<wire::Query>();
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
