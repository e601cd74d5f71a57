// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Store.h"
#include "service/store/StoreError.h"

#include <QHash> // std::hash<QString>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

#include <boost/noncopyable.hpp>

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

namespace service
{

class PostgresLink;

/// One thread's connection to the database. All functions throw `StoreError`.
class Connection : private boost::noncopyable
{
public:
    /// Opens the database and applies the settings of every connection; does not check the schema.
    Connection(const StoreOptions& options, const QString& name);
    ~Connection();

    bool isPostgres() const { return m_isPostgres; }
    bool isLost() const;
    /// Reopens a lost connection. Statements prepared on it must not be used any more.
    void reopen();

    void exec(const QString& sql);
    /// The same for a frequent statement, which is prepared once.
    void execOften(const QString& sql);
    /// Begins a read transaction on the current state of the database. Reopens the connection if it is lost.
    void beginRead();
    /// Ends a read transaction. On PostgreSQL nobody waits for the server to do so; the next statement does.
    void endRead() noexcept;
    /// Begins a write transaction and takes the write lock at once, so that data read in it cannot be outdated when
    /// they are written. The lock covers the data of one server, or of all; SQLite always locks all. Reopens the
    /// connection if it is lost.
    void beginWrite(std::optional<std::int64_t> server = std::nullopt);
    void commit();
    void rollback() noexcept;
    /// Begins a part of the transaction that can be rolled back alone. In it, statements of `Query::runLater` may be
    /// delayed.
    void beginOperation();
    void undoOperation();
    /// Runs all delayed statements first.
    void endOperation();
    /// Moves what a killed process has left in SQLite's write-ahead log into the database. Not inside a transaction.
    void checkpoint();
    /// Lifts the time limit of the statements of this transaction.
    void allowLongStatements();
    /// The commit of this write transaction waits until the data that it has read are durable, even if it changes
    /// nothing itself.
    void requireDurableReads();

    QSqlDatabase& database() { return m_database; }
    StoreError errorOf(const QSqlError& error) const;
    /// Throws if the store's fault hook makes this statement fail.
    void checkFault(const QString& sql) const;

    /// True if statements without a result may be delayed until the next message.
    bool mayWait() const { return m_postgres && m_isInOperation; }
    PostgresLink& postgres() { return *m_postgres; }

    /// A prepared statement; reuses one that was given back, if possible.
    std::unique_ptr<QSqlQuery> takeStatement(const QString& sql);
    void giveBackStatement(const QString& sql, std::unique_ptr<QSqlQuery> statement) noexcept;

private:
    using FileId = std::pair<dev_t, ino_t>;
    static std::optional<FileId> fileAt(const QString& location);

    void open();
    void close() noexcept;
    void begin(const QString& sql);
    /// Throws if the file at the database's path is not the one that is open: what is written to that is lost.
    void requireFile() const;

    StoreOptions m_options;
    QString m_name;
    bool m_isPostgres;
    QSqlDatabase m_database;
    std::optional<FileId> m_file;             ///< the open file
    std::unique_ptr<PostgresLink> m_postgres; ///< null for SQLite
    bool m_isInOperation = false;
    bool m_hasSavepoint = false; ///< of the operation, on PostgreSQL
    std::unordered_multimap<QString, std::unique_ptr<QSqlQuery>> m_statements;
};

/// A transaction that is rolled back unless it was committed.
class Transaction : private boost::noncopyable
{
public:
    enum class EKind { Read, Write };
    Transaction(Connection& connection, EKind kind);
    /// For writing to the data of one server.
    Transaction(Connection& connection, std::int64_t server);
    ~Transaction();
    void commit();

private:
    Connection& m_connection;
    EKind m_kind = EKind::Write;
    bool m_open = true;
};

} // namespace service
