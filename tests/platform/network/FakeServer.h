// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/tls/TestCertificates.h"

#include "platform/wire/MessageCodec.h"
#include "platform/wire/Protocol.h"

#include <QAV/CNetworkTransport.h>

#include <QSslConfiguration>
#include <QSslSocket>
#include <QTcpServer>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace support
{

/// One connection as the fake server sees it: what it has received, and whatever the test sends. Lives on the test's
/// thread and works while the test waits.
class FakePeer : public QObject
{
public:
    explicit FakePeer(QSslSocket* socket);

    void send(const bson::BSONObj& message)
    {
        sendRaw({message.objdata(), static_cast<std::size_t>(message.objsize())});
    }
    void sendRaw(const std::string& bytes);
    /// Ends the connection after what was sent, or at once.
    void close();
    void abort();
    bool isOpen() const;

    /// Messages of a kind that nobody has taken, the oldest first.
    template <typename Kind>
    std::optional<Kind> take()
    {
        for (auto it = received.begin(); it != received.end(); ++it) {
            if (auto* message = std::get_if<Kind>(&*it)) {
                Kind taken = std::move(*message);
                received.erase(it);
                return taken;
            }
        }
        return std::nullopt;
    }
    template <typename Kind>
    std::size_t count() const
    {
        std::size_t found = 0;
        for (const wire::Message& message : received) {
            found += std::holds_alternative<Kind>(message) ? 1 : 0;
        }
        return found;
    }

    /// Called for every message before it is kept; true: it is done with.
    std::function<bool(FakePeer&, const wire::Message&)> onMessage;
    std::vector<wire::Message> received;
    std::size_t receivedBytes = 0;

private:
    void read();

    QSslSocket* m_socket;
    wire::FrameReader m_reader;
};

/// A server whose behaviour the test decides. It greets and accepts every log-in by itself unless told otherwise; all
/// else is up to the test.
class FakeServer : public QTcpServer
{
public:
    FakeServer();

    /// Speaks TLS with this certificate; otherwise plain TCP.
    void useTls(TestCertificates& certificates, TestCertificates::EKind kind = TestCertificates::EKind::Good);
    /// Listens on a free port, later on the same again.
    bool start();
    /// Refuses connections; those that exist go on.
    void stop() { close(); }
    QAV::NetworkServer address() const;

    std::size_t peerCount() const { return m_peers.size(); }
    /// The connection that was made last; null when there is none.
    FakePeer* peer() const { return m_peers.empty() ? nullptr : m_peers.back().get(); }
    FakePeer* peer(std::size_t index) const { return m_peers.at(index).get(); }

    bool greets = true;
    bool logsIn = true;
    wire::Welcome welcome;
    /// See FakePeer; for messages that greeting and log-in leave.
    std::function<bool(FakePeer&, const wire::Message&)> onMessage;

protected:
    void incomingConnection(qintptr handle) override;

private:
    bool answer(FakePeer& peer, const wire::Message& message);

    std::optional<QSslConfiguration> m_tls;
    quint16 m_port = 0;
    std::vector<std::unique_ptr<FakePeer>> m_peers;
};

/// What the handlers of a transport were called with. Copies of a handler keep the state alive.
class Answers
{
public:
    using Reply = QAV::ITransport::Reply;

    QAV::ITransport::ReplyHandler onReply() const;
    QAV::ITransport::LogInHandler onLogIn() const;
    std::size_t count() const;
    Reply at(std::size_t index) const;
    Reply last() const { return at(count() - 1); }

private:
    struct State {
        std::mutex mutex;
        std::vector<Reply> replies;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

/// Works through events until the condition holds; false when it doesn't within half a minute. Looks more often than
/// QTRY_VERIFY, for tests of very many connections.
bool waitUntil(const std::function<bool()>& condition);

nvservice::CKolmQueryDataReq queryOf(const std::string& key);
nvservice::COperateDataReq operationOf(const std::string& operationId);
/// Pieces of an answer: its begin, a chunk with the group of that number, its end.
std::string beginOf(std::int64_t id, int totalCount = 1);
std::string chunkOf(std::int64_t id, int groupNumber);
std::string endOf(std::int64_t id, std::int64_t recordCount = 1);
/// The whole answer to a query: these many groups.
std::string groupsReply(std::int64_t id, int groups);
/// The answer to an operation that was carried out.
bson::BSONObj doneReply(std::int64_t id);
/// Answers a query with two groups and an operation with a success; false for any other message.
bool answerAtOnce(FakePeer& peer, const wire::Message& message);

} // namespace support
