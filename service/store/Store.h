// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/NVError.h>

#include <QString>

#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace service
{

class CommitQueue;
class CommitWatch;
class Connection;

/// One server (分系统) of the installation.
struct SubSystem {
    std::int64_t id = 0;
    std::string name;      ///< shown to the user, unique
    std::string systemTag; ///< set in every record, unique
};

/// True for a PostgreSQL URL, false for a SQLite file.
bool isPostgres(const QString& location);
/// True if the location is that of a missing file.
bool isMissing(const QString& location);
/// Throws `StoreError` if the location is no valid URL, or that of a missing file. Does not connect.
void requireLocation(const QString& location);

struct StoreOptions {
    static StoreOptions forReading(const QString& location);
    static StoreOptions forCreating(const QString& location);

    /// A SQLite file, or an existing PostgreSQL database as
    /// "postgresql://user@host1:5432,host2/database?option=value", with the options of libpq. Of several hosts the one
    /// that accepts writes is used.
    QString location;
    bool mayCreate = false;         ///< true: a missing SQLite file is created; false: that is an error
    int busyTimeoutMs = 10000;      ///< how long a statement waits for other writers
    int statementTimeoutMs = 60000; ///< how long a statement may run; 0 = no limit. PostgreSQL only
    int reconnectMs = 15000;        ///< how long to try to reopen a lost connection. PostgreSQL only
    bool readOnly = false;          ///< true: opened for reading only; the schema must be up to date
    int maxPages = 0;               ///< maximum size of a SQLite file in pages of 4096 bytes; 0 = no limit
    /// For tests of disk failures: called before every statement with its text; if it returns true, the statement fails
    /// with an input/output error.
    std::function<bool(const QString&)> faultHook;
    /// Called on any thread with the details of a failure that clients must not see.
    std::function<void(const std::string&)> failureLog;

    bool isPostgres() const { return service::isPostgres(location); }
};

/// An atomic change of one server's data.
struct WriteJob {
    std::int64_t server = 0;
    /// True if a repetition is recognised by its operation id. Then the job may be repeated if the connection is lost
    /// during the commit.
    bool isRepeatable = false;
    /// Makes the change. Runs on any thread before `Store::write` returns, and possibly more than once, for example
    /// after a lost connection. An exception rolls its changes back. Runs in the savepoint "operation" and may roll
    /// back to it.
    std::function<void(Connection&)> work;
};

/// The database of one or several sub-systems.
///
/// Every thread that uses the store has its own connection, which is opened at the first use and closed when the thread
/// ends. The connection of the thread that destroys the store is closed at once. Thread-safe. Writers of one process
/// take turns with `writeMutex`; other processes are waited for up to `busyTimeoutMs`. On PostgreSQL a lost connection
/// is reopened to whichever host accepts writes, for up to `reconnectMs`.
class Store : private boost::noncopyable
{
public:
    /// Opens the database, checks that it belongs to this system, and migrates its schema. If that is not possible,
    /// returns null and an error (`StorageFailure`, text for the user) and leaves the database unchanged.
    static boost::shared_ptr<Store> open(const StoreOptions& options, utils::NVError& error);
    /// The same; throws `StoreError`.
    static boost::shared_ptr<Store> open(const StoreOptions& options);
    ~Store();

    /// All sub-systems in the order of their ids.
    std::vector<SubSystem> subSystems(utils::NVError& error);
    /// The same; throws `StoreError`.
    std::vector<SubSystem> subSystems();

    /// Calls `work` in one read transaction, so that all data are from the same moment. Calls it again from the start
    /// if the connection is lost. Throws `StoreError` and whatever `work` throws.
    void read(const std::function<void(Connection&)>& work);

    /// Returns when the change is durable. Jobs that wait at the same time share one commit. Returns success or the
    /// error of this job. After an error nothing of the job is stored, unless the text says that this is unknown.
    utils::NVError write(const WriteJob& job);
    /// The number of jobs that wait for a commit in progress.
    std::size_t waitingJobs() const;

    /// Calls `committed` when this process or another one has committed to the database, for as long as the result
    /// exists: on any thread, once or more often for each commit or once for several, and also when commits may have
    /// been missed. It must return soon, and neither begin nor end a watch.
    [[nodiscard]] std::shared_ptr<void> watchCommits(std::function<void()> committed);
    /// For the queue: this process has committed.
    void noteCommit();

    /// Reads the whole database and looks for broken pages and references. Returns success or an error that names the
    /// first finding.
    utils::NVError checkIntegrity();

    /// The calling thread's connection; reopened if it was lost. Not inside a transaction. Throws `StoreError`.
    Connection& connection();

    std::mutex& writeMutex() { return m_writeMutex; }
    const StoreOptions& options() const { return m_core->options; }
    /// Logs a failure and returns the error that clients may see.
    utils::NVError errorForClient(const std::exception& failure) const;

    /// Shared with the connections of the threads, which thus notice when the store is destroyed.
    struct Core {
        StoreOptions options;
        std::uint64_t number = 0;
    };

private:
    explicit Store(const StoreOptions& options);

    std::shared_ptr<Core> m_core;
    std::mutex m_writeMutex;
    std::unique_ptr<CommitQueue> m_queue;
    std::shared_ptr<CommitWatch> m_watch; ///< null until the store is open
};

using StorePtr = boost::shared_ptr<Store>;

} // namespace service
