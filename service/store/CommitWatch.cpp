// SPDX-License-Identifier: Apache-2.0
#include "service/store/CommitWatch.h"
#include "service/store/Connection.h"
#include "service/store/PostgresLink.h"
#include "service/store/Query.h"

#include <atomic>

namespace service
{

namespace
{

using std::chrono::milliseconds;

constexpr milliseconds LookAgain(250);
constexpr milliseconds ReopenAgain(1000);

std::unique_ptr<Connection> openConnection(const StoreOptions& options)
{
    static std::atomic<std::uint64_t> opened{0};
    auto connection =
        std::make_unique<Connection>(options, QStringLiteral("qav-watch-%1").arg(QString::number(++opened)));
    if (connection->isPostgres()) {
        connection->exec(QStringLiteral("LISTEN ") + QLatin1String(PostgresLink::CommitChannel));
    }
    return connection;
}

/// Changes with every commit by another connection.
std::int64_t dataVersion(Connection& connection)
{
    Query query(connection, QStringLiteral("PRAGMA data_version"));
    return query.runAndNext() ? query.integer(0) : 0;
}

} // namespace

CommitWatch::~CommitWatch()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isStopping = true;
    }
    m_stopping.notify_all();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

std::shared_ptr<void> CommitWatch::listen(Callback callback)
{
    const std::lock_guard<std::mutex> turn(m_turn);
    const std::lock_guard<std::mutex> lock(m_mutex);
    const int listener = ++m_lastListener;
    m_listeners.emplace(listener, std::move(callback));
    if (!m_thread.joinable()) {
        m_isStopping = false;
        m_thread = std::thread([this] { run(); });
    }
    return {static_cast<void*>(this), [self = shared_from_this(), listener](void*) { self->remove(listener); }};
}

void CommitWatch::remove(int listener)
{
    const std::lock_guard<std::mutex> turn(m_turn);
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_listeners.erase(listener);
        if (!m_listeners.empty()) {
            return;
        }
        m_isStopping = true;
    }
    m_stopping.notify_all();
    m_thread.join();
    m_thread = {};
}

void CommitWatch::committed()
{
    // PostgreSQL notifies this process as well.
    if (!m_options.isPostgres()) {
        tellAll();
    }
}

void CommitWatch::tellAll()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto& [listener, callback] : m_listeners) {
        callback();
    }
}

bool CommitWatch::pause(milliseconds time)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return !m_stopping.wait_for(lock, time, [this] { return m_isStopping; });
}

void CommitWatch::run()
{
    std::unique_ptr<Connection> connection;
    std::int64_t version = 0;
    do {
        try {
            while (pause(milliseconds(0))) {
                if (wait(connection, version)) {
                    tellAll();
                }
            }
            return;
        } catch (const StoreError&) {
            // The readers of the store report what is wrong with the database.
            connection.reset();
        }
    } while (pause(ReopenAgain));
}

bool CommitWatch::wait(std::unique_ptr<Connection>& connection, std::int64_t& version)
{
    if (!connection) {
        connection = openConnection(m_options);
        version = 0;
    }
    if (connection->isPostgres()) {
        const bool isNew = version == 0;
        version = 1;
        return isNew || connection->postgres().waitForNotification(LookAgain);
    }
    const std::int64_t now = dataVersion(*connection);
    if (now == version) {
        pause(LookAgain);
        return false;
    }
    version = now;
    return true;
}

} // namespace service
