// SPDX-License-Identifier: Apache-2.0
#include "service/store/Store.h"
#include "service/store/Backoff.h"
#include "service/store/CommitQueue.h"
#include "service/store/CommitWatch.h"
#include "service/store/Connection.h"
#include "service/store/Integrity.h"
#include "service/store/MasterData.h"
#include "service/store/PostgresLink.h"
#include "service/store/Schema.h"

#include <utils/Translation.h>

#include <QFileInfo>

#include <atomic>
#include <map>

namespace service
{

namespace
{

struct ThreadConnection {
    std::weak_ptr<Store::Core> store;
    std::unique_ptr<Connection> connection;
};

// Connections of the running thread by the number of their store. Numbers are never used again.
std::map<std::uint64_t, ThreadConnection>& threadConnections()
{
    thread_local std::map<std::uint64_t, ThreadConnection> connections;
    return connections;
}

std::uint64_t nextNumber()
{
    static std::atomic<std::uint64_t> number{0};
    return ++number;
}

} // namespace

StoreOptions StoreOptions::forReading(const QString& location)
{
    StoreOptions options;
    options.location = location;
    options.readOnly = true;
    return options;
}

StoreOptions StoreOptions::forCreating(const QString& location)
{
    StoreOptions options;
    options.location = location;
    options.mayCreate = true;
    return options;
}

bool isPostgres(const QString& location)
{
    return location.startsWith(QLatin1String("postgresql://")) || location.startsWith(QLatin1String("postgres://"));
}

bool isMissing(const QString& location)
{
    return !isPostgres(location) && location != QLatin1String(":memory:") && !QFileInfo::exists(location);
}

void requireLocation(const QString& location)
{
    if (isPostgres(location)) {
        PostgresLink::requireUrl(location);
    } else if (isMissing(location)) {
        throw StoreError(utils::EErrorCode::StorageFailure, utils::text("service", "数据库文件不存在"),
                         location.toStdString(), StoreError::EKind::Final);
    }
}

Store::Store(const StoreOptions& options)
    : m_core(std::make_shared<Core>()), m_queue(std::make_unique<CommitQueue>(*this))
{
    m_core->options = options;
    m_core->number = nextNumber();
}

Store::~Store()
{
    threadConnections().erase(m_core->number);
}

StorePtr Store::open(const StoreOptions& options)
{
    const StorePtr store(new Store(options));
    Connection& connection = store->connection();
    if (options.readOnly) {
        requireNewestSchema(connection);
    } else {
        migrateSchema(connection, schemaMigrations());
    }
    connection.checkpoint();
    // A file that is removed later is not replaced by an empty one.
    store->m_core->options.mayCreate = false;
    store->m_watch = std::make_shared<CommitWatch>(store->options());
    return store;
}

StorePtr Store::open(const StoreOptions& options, utils::NVError& error)
{
    try {
        error = utils::NVError();
        return open(options);
    } catch (const StoreError& failure) {
        error = failure.fullError();
        return StorePtr();
    }
}

Connection& Store::connection()
{
    auto& connections = threadConnections();
    const auto found = connections.find(m_core->number);
    if (found != connections.end()) {
        if (found->second.connection->isLost()) {
            found->second.connection->reopen();
        }
        return *found->second.connection;
    }
    for (auto other = connections.begin(); other != connections.end();) {
        other = other->second.store.expired() ? connections.erase(other) : std::next(other);
    }

    static std::atomic<std::uint64_t> opened{0};
    const QString name =
        QStringLiteral("qav-store-%1-%2").arg(QString::number(m_core->number), QString::number(++opened));
    auto connection = std::make_unique<Connection>(m_core->options, name);
    return *(connections[m_core->number] = {m_core, std::move(connection)}).connection;
}

std::vector<SubSystem> Store::subSystems()
{
    std::vector<SubSystem> found;
    read([&found](Connection& connection) { found = loadSubSystems(connection); });
    return found;
}

std::vector<SubSystem> Store::subSystems(utils::NVError& error)
{
    try {
        error = utils::NVError();
        return subSystems();
    } catch (const StoreError& failure) {
        error = failure.fullError();
        return {};
    }
}

void Store::read(const std::function<void(Connection&)>& work)
{
    for (Backoff backoff(m_core->options);;) {
        try {
            Connection& own = connection();
            const Transaction snapshot(own, Transaction::EKind::Read);
            work(own);
            return;
        } catch (const StoreError& failure) {
            if (!backoff.waitToRetry(failure)) {
                throw;
            }
        }
    }
}

utils::NVError Store::write(const WriteJob& job)
{
    return m_queue->write(job);
}

std::shared_ptr<void> Store::watchCommits(std::function<void()> committed)
{
    return m_watch->listen(std::move(committed));
}

void Store::noteCommit()
{
    if (m_watch) {
        m_watch->committed();
    }
}

std::size_t Store::waitingJobs() const
{
    return m_queue->waitingJobs();
}

utils::NVError Store::checkIntegrity()
{
    try {
        std::string damage;
        read([&damage](Connection& connection) { damage = findDamage(connection); });
        return damage.empty() ? utils::NVError() : utils::NVError(utils::EErrorCode::StorageFailure, damage);
    } catch (const StoreError& failure) {
        return failure.fullError();
    }
}

utils::NVError Store::errorForClient(const std::exception& failure) const
{
    if (m_core->options.failureLog) {
        m_core->options.failureLog(failure.what());
    }
    const auto* known = dynamic_cast<const StoreError*>(&failure);
    return known ? known->error()
                 : utils::NVError(utils::EErrorCode::Failed, utils::text("service", "数据服务内部错误"));
}

} // namespace service
