#pragma once

#include "service/daemon/ClientLink.h"

#include <QSslConfiguration>
#include <QTcpServer>

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace service::daemon
{

/// How many connections there are, of all listeners together and of each address.
struct ConnectionCounts {
    int all = 0;
    std::map<std::string, int> ofAddress;
};

/// One port, at which one sub-system is served, and its connections.
class Listener : private QTcpServer
{
public:
    /// @param tls  empty: no TLS.
    Listener(const ConversationContext& context, ConnectionCounts& counts, std::optional<QSslConfiguration> tls);
    ~Listener() override;

    /// False and an error text when the port cannot be had.
    bool listen(const QHostAddress& address, int port, QString& error);
    int port() const { return serverPort(); }
    /// For connections that begin from now on.
    void setTls(const QSslConfiguration& tls);

    void checkTime();
    /// Accepts nobody any more and tells the clients.
    void beginClosing(int graceMilliseconds);
    void abortAll();
    bool hasConnections() const { return !m_links.empty(); }
    /// Sets both when one of the connections is later with an answer.
    void findLatest(ClientLink*& link, std::chrono::duration<double>& lateness) const;

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    bool mayConnect(const std::string& address);
    /// The reason why nobody else may connect from there; null: one may.
    const char* reachedLimit(const std::string& address) const;
    ClientLink* oldestWithoutUser(const std::string* address) const;
    void remove(ClientLink* link);

    ConversationContext m_context;
    ConnectionCounts& m_counts;
    std::optional<QSslConfiguration> m_tls;
    std::map<ClientLink*, std::unique_ptr<ClientLink>> m_links;
    bool m_isClosing = false;
};

} // namespace service::daemon
