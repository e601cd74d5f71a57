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
class Connection;

/// One server ("分系统") of the installation.
struct SubSystem {
    std::int64_t id = 0;
    std::string name;      ///< shown to the user, unique
    std::string systemTag; ///< stamped on every record, unique
};

struct StoreOptions {
    /// A SQLite file, which is created when it is missing; or an existing PostgreSQL database as
    /// "postgresql://user@host1:5432,host2/database?option=value", with the options of libpq. Of several hosts the one
    /// that accepts changes is used.
    QString location;
    int busyTimeoutMs = 10000;      ///< how long a statement waits for somebody else who writes
    int statementTimeoutMs = 60000; ///< how long a statement may run; 0 = no limit. PostgreSQL only
    int reconnectMs = 15000;        ///< how long a lost connection is tried again. PostgreSQL only
    bool readOnly = false;          ///< reads only; the schema has to be up to date
    int maxPages = 0;               ///< upper limit of a SQLite file in pages of 4096 bytes; 0 = none
    /// Called before every statement with its text; true makes that statement fail with an input/output error. For
    /// tests of what a failing disk leaves behind.
    std::function<bool(const QString&)> faultHook;
    /// Called, on any thread, with all that is known about a failure of which clients are told less.
    std::function<void(const std::string&)> failureLog;

    bool isPostgres() const; ///< what `location` names
};

/// A change of one server's data, all of it or nothing.
struct WriteJob {
    std::int64_t server = 0;
    /// Sent again it would be recognised (by an operation id), so it may be tried again when the connection is lost
    /// while it is committed.
    bool isRepeatable = false;
    /// Makes the change, on any thread, at any time before `Store::write` returns, and again if need be: after a lost
    /// connection, say. What it throws undoes what it did. It runs in the savepoint "operation" and may roll back to
    /// it.
    std::function<void(Connection&)> work;
};

/// The database of one or several sub-systems.
///
/// Every thread that uses the store has a connection of its own; it is opened at the first use and closed when the
/// thread ends (the connection of the thread that destroys the store is closed at once). All operations may be called
/// on any thread. Writers of one process take turns through `writeMutex`; other processes are waited for up to
/// `busyTimeoutMs`. On PostgreSQL a connection that is lost is opened again, to whichever host accepts changes by then,
/// for up to `reconnectMs`.
class Store : private boost::noncopyable
{
public:
    /// Opens the file, brings its schema up to date and checks that it belongs to this system. Null and a typed error
    /// (`StorageFailure`, text for the user) when that isn't possible; the file is then left as it was.
    static boost::shared_ptr<Store> open(const StoreOptions& options, utils::NVError& error);
    ~Store();

    /// All sub-systems in the order of their ids.
    std::vector<SubSystem> subSystems(utils::NVError& error);

    /// Reads in one transaction, so that everything is of the same moment; again from the start when the connection is
    /// lost. Throws `StoreError` and what `work` throws.
    void read(const std::function<void(Connection&)>& work);

    /// Returns once the change is stored for good; jobs that wait at the same time share the wait for the disk.
    /// Success, or the typed error of this job alone: nothing of it is stored then, unless the text says that this is
    /// unknown.
    utils::NVError write(const WriteJob& job);
    /// How many jobs wait for those that are being carried out.
    std::size_t waitingJobs() const;

    /// Reads the whole database: broken pages, broken references. Success, or a typed error that names the first
    /// finding.
    utils::NVError checkIntegrity();

    /// The calling thread's connection, opened again if it was lost. Not inside a transaction. Throws `StoreError`.
    Connection& connection();

    std::mutex& writeMutex() { return m_writeMutex; }
    const StoreOptions& options() const { return m_core->options; }
    /// Has a failure logged and gives what a client may be told of it.
    utils::NVError errorForClient(const std::exception& failure) const;

    /// What the threads' connections share with the store; gone as soon as the store is.
    struct Core {
        StoreOptions options;
        std::uint64_t number = 0;
    };

private:
    explicit Store(const StoreOptions& options);

    std::shared_ptr<Core> m_core;
    std::mutex m_writeMutex;
    std::unique_ptr<CommitQueue> m_queue;
};

using StorePtr = boost::shared_ptr<Store>;

} // namespace service
