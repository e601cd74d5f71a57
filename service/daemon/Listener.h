// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/ClientLink.h"

#include <QSslConfiguration>
#include <QTcpServer>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace service::daemon
{

/// The number of connections of all listeners together and per address.
struct ConnectionCounts {
    int all = 0;
    std::map<std::string, int> ofAddress;
};

/// One port with its sub-system and its connections.
class Listener : private QTcpServer
{
public:
    /// @param tls  empty: no TLS
    Listener(const ConversationContext& context, ConnectionCounts& counts, std::optional<QSslConfiguration> tls);
    ~Listener() override;

    /// Returns false and an error text if the port is not available.
    bool listen(const QHostAddress& address, int port, QString& error);
    int port() const { return serverPort(); }
    /// For new connections.
    void setTls(const QSslConfiguration& tls);

    void checkTime();
    /// Stops accepting connections and informs the clients.
    void beginClosing(int graceMilliseconds);
    void abortAll();
    /// Replaces both if one of the connections is later with an answer.
    void findLatest(ClientLink*& link, std::chrono::duration<double>& lateness) const;

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    bool mayConnect(const std::string& address);
    /// The limit that forbids another connection from the address; null if there is none.
    const char* reachedLimit(const std::string& address) const;
    ClientLink* oldestWithoutUser(const std::string* address) const;
    void remove(ClientLink* link);
    /// A copy, because a link that ends removes itself.
    std::vector<ClientLink*> links() const;

    ConversationContext m_context;
    ConnectionCounts& m_counts;
    std::optional<QSslConfiguration> m_tls;
    std::map<ClientLink*, std::unique_ptr<ClientLink>> m_links;
    bool m_isClosing = false;
};

} // namespace service::daemon
