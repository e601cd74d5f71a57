// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Listener.h"

#include <QTimer>

#include <unistd.h>
#include <utility>

namespace service::daemon
{

namespace
{

// After a failed accept, for example without free file descriptors.
constexpr int AcceptAgainMilliseconds = 500;

// Reasons to refuse a connection, in log and metrics.
constexpr char Limit[] = "limit";
constexpr char AddressLimit[] = "address_limit";

} // namespace

Listener::Listener(const ConversationContext& context, ConnectionCounts& counts, std::optional<QSslConfiguration> tls)
    : m_context(context), m_counts(counts), m_tls(std::move(tls))
{
    connect(this, &QTcpServer::acceptError, this, [this] {
        m_context.log.error("accept_failed", {{"error", errorString()}});
        QTimer::singleShot(AcceptAgainMilliseconds, this, [this] { resumeAccepting(); });
    });
}

Listener::~Listener()
{
    for (auto& [link, owned] : m_links) {
        link->disconnect(this);
    }
}

bool Listener::listen(const QHostAddress& address, int port, QString& error)
{
    if (QTcpServer::listen(address, static_cast<quint16>(port))) {
        return true;
    }
    error = errorString();
    return false;
}

void Listener::setTls(const QSslConfiguration& tls)
{
    if (m_tls) {
        m_tls = tls;
    }
}

const char* Listener::reachedLimit(const std::string& address) const
{
    const auto found = m_counts.ofAddress.find(address);
    if (found != m_counts.ofAddress.end() && found->second >= m_context.limits.connectionsPerAddress) {
        return AddressLimit;
    }
    return m_counts.all >= m_context.limits.connections ? Limit : nullptr;
}

ClientLink* Listener::oldestWithoutUser(const std::string* address) const
{
    ClientLink* oldest = nullptr;
    for (const auto& [link, owned] : m_links) {
        const bool isCandidate = !link->hasUser() && (!address || link->address() == *address);
        if (isCandidate && (!oldest || link->began() < oldest->began())) {
            oldest = link;
        }
    }
    return oldest;
}

bool Listener::mayConnect(const std::string& address)
{
    const char* reason = reachedLimit(address);
    // A connection without a log-in gives way to a new one.
    if (ClientLink* idle = reason ? oldestWithoutUser(reason == AddressLimit ? &address : nullptr) : nullptr) {
        idle->abort("crowded_out");
        reason = reachedLimit(address);
    }
    if (!reason) {
        return true;
    }
    m_context.metrics.connectionRefused(reason);
    m_context.log.warning("connection_refused", {{"peer", address}, {"reason", reason}});
    return false;
}

void Listener::incomingConnection(qintptr descriptor)
{
    auto socket = std::make_unique<QSslSocket>();
    if (!socket->setSocketDescriptor(descriptor)) {
        ::close(static_cast<int>(descriptor));
        return;
    }
    const std::string address = ClientLink::limitedAddress(socket->peerAddress());
    if (m_isClosing || !mayConnect(address)) {
        return socket->abort();
    }
    ++m_counts.all;
    ++m_counts.ofAddress[address];
    auto link = std::make_unique<ClientLink>(m_context, std::move(socket), m_tls ? &*m_tls : nullptr);
    ClientLink* const key = link.get();
    m_links.emplace(key, std::move(link));
    connect(key, &ClientLink::sigOver, this, [this, key] { remove(key); });
}

void Listener::remove(ClientLink* link)
{
    const auto found = m_links.find(link);
    if (found == m_links.end()) {
        return;
    }
    --m_counts.all;
    const auto count = m_counts.ofAddress.find(link->address());
    if (--count->second == 0) {
        m_counts.ofAddress.erase(count);
    }
    // Deleted later, because the link itself emits the signal.
    found->second.release()->deleteLater();
    m_links.erase(found);
}

std::vector<ClientLink*> Listener::links() const
{
    std::vector<ClientLink*> all;
    all.reserve(m_links.size());
    for (const auto& [link, owned] : m_links) {
        all.push_back(link);
    }
    return all;
}

void Listener::checkTime()
{
    for (ClientLink* link : links()) {
        link->checkTime();
    }
}

void Listener::findLatest(ClientLink*& link, std::chrono::duration<double>& lateness) const
{
    for (const auto& [candidate, owned] : m_links) {
        if (candidate->lateness() > lateness) {
            lateness = candidate->lateness();
            link = candidate;
        }
    }
}

void Listener::beginClosing(int graceMilliseconds)
{
    m_isClosing = true;
    close();
    for (ClientLink* link : links()) {
        link->beginClosing(graceMilliseconds);
    }
}

void Listener::abortAll()
{
    while (!m_links.empty()) {
        m_links.begin()->first->abort("shutdown");
    }
}

} // namespace service::daemon
