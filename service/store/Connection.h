#pragma once

#include "service/store/Store.h"
#include "service/store/StoreError.h"

#include <QByteArray>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <boost/noncopyable.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace service
{

class PostgresLink;

/// One thread's connection to the database. Every operation throws `StoreError`.
class Connection : private boost::noncopyable
{
public:
    /// Opens the database and sets what every connection needs; does not look at the schema.
    Connection(const StoreOptions& options, const QString& name);
    ~Connection();

    bool isPostgres() const { return m_isPostgres; }
    bool isLost() const;
    /// Opens a lost connection again. Nothing that was prepared on it may be used any more.
    void reopen();

    void exec(const QString& sql);
    /// The same for a statement that comes again and again.
    void execOften(const QString& sql);
    /// Begins a transaction that sees the database as it is now. A connection that turns out to be lost is opened
    /// again.
    void beginRead();
    /// Takes the right to write at once, so that nothing that is read afterwards is outdated when it is written: to the
    /// data of one server, or of all. SQLite knows the latter only. Reopens like `beginRead`.
    void beginWrite(std::optional<std::int64_t> server = std::nullopt);
    void commit();
    void rollback() noexcept;
    /// Begins a part of the transaction that can be undone alone. Within it what `Query::runLater` runs may wait.
    void beginOperation();
    void undoOperation();
    /// Everything that has waited is done then.
    void endOperation();
    /// Brings to the disk what a process that was killed has left in SQLite's log. Not inside a transaction.
    void settle();
    /// Makes the commit of this writing transaction wait until what it has read is stored for good, although it may
    /// change nothing itself.
    void confirmWhatIsRead();

    QSqlDatabase& database() { return m_database; }
    StoreError errorOf(const QSqlError& error) const;
    /// Throws when the store's fault hook wants this statement to fail.
    void checkFault(const QString& sql) const;

    /// Whether statements without a result may wait for the next message.
    bool mayWait() const { return m_postgres && m_isInOperation; }
    PostgresLink& postgres() { return *m_postgres; }

    /// A prepared statement, from those that were given back if there is one.
    std::unique_ptr<QSqlQuery> takeStatement(const QString& sql);
    void giveBackStatement(const QString& sql, std::unique_ptr<QSqlQuery> statement) noexcept;

private:
    /// Statements are long and differ early or in length, so a part of them tells them apart in less time.
    struct HashOfSome {
        std::size_t operator()(const QString& sql) const;
    };

    void open();
    void close() noexcept;
    void begin(const QString& sql);

    StoreOptions m_options;
    QString m_name;
    bool m_isPostgres;
    QSqlDatabase m_database;
    std::unique_ptr<PostgresLink> m_postgres; ///< null for SQLite
    bool m_isInOperation = false;
    bool m_hasSavepoint = false; ///< of the operation, on PostgreSQL
    std::unordered_multimap<QString, std::unique_ptr<QSqlQuery>, HashOfSome> m_statements;
};

/// A prepared statement. Values are bound in the order of the question marks. Statements are prepared once for each
/// connection and text.
class Query : private boost::noncopyable
{
public:
    Query(Connection& connection, const QString& sql);
    ~Query();

    Query& bind(std::int64_t value);
    Query& bind(int value) { return bind(static_cast<std::int64_t>(value)); }
    Query& bind(bool value) { return bind(static_cast<std::int64_t>(value ? 1 : 0)); }
    /// Throws `StoreError` (`InvalidValue`) for a text with NUL bytes, which not every database can store.
    Query& bind(const std::string& value);
    Query& bind(const char* value) { return bind(std::string(value)); }
    Query& bind(const QByteArray& value);
    Query& bindNull();
    Query& bind(const std::optional<std::int64_t>& value) { return value ? bind(*value) : bindNull(); }

    /// Runs the statement; it may be bound and run again.
    Query& run();
    /// The same for a statement without a result and whose effect is certain: one that fails may throw later, at the
    /// end of the operation at the latest.
    void runLater();
    /// Runs it and goes to the only row; false when there is none.
    bool runAndNext();
    bool next();

    std::int64_t integer(int column) const { return m_query->value(column).toLongLong(); }
    std::string text(int column) const;
    QByteArray blob(int column) const { return m_query->value(column).toByteArray(); }
    bool isNull(int column) const { return m_query->value(column).isNull(); }
    std::optional<std::int64_t> optionalInteger(int column) const;
    int affected() const { return m_query->numRowsAffected(); }

private:
    Connection& m_connection;
    QString m_sql;
    std::unique_ptr<QSqlQuery> m_query;
    int m_bound = 0;
};

/// How many of the rows that are left the next statement takes: a power of two, so that few statements are prepared.
std::size_t sizeOfBatch(std::size_t left, std::size_t most);

/// Rolls back unless it was committed.
class Transaction : private boost::noncopyable
{
public:
    enum class EKind { Read, Write };
    Transaction(Connection& connection, EKind kind);
    /// Writes to the data of one server.
    Transaction(Connection& connection, std::int64_t server);
    ~Transaction();
    void commit();

private:
    Connection& m_connection;
    bool m_open = true;
};

} // namespace service
