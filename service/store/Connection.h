#pragma once

#include "service/store/StoreError.h"

#include <QByteArray>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <boost/noncopyable.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace service
{

struct StoreOptions;

/// One thread's connection to the database. Every operation throws `StoreError`.
class Connection : private boost::noncopyable
{
public:
    /// Opens the file and sets what every connection needs; does not look at the schema.
    Connection(const StoreOptions& options, const QString& name);
    ~Connection();

    void exec(const QString& sql);
    void beginRead();
    /// Takes the right to write at once, so that nothing that is read afterwards is outdated when it is written.
    void beginWrite();
    void commit();
    void rollback() noexcept;

    QSqlDatabase& database() { return m_database; }
    /// Throws when the store's fault hook wants this statement to fail.
    void checkFault(const QString& sql) const;

private:
    std::function<bool(const QString&)> m_faultHook;
    QString m_name;
    QSqlDatabase m_database;
};

/// A prepared statement. Values are bound in the order of the question marks.
class Query
{
public:
    Query(Connection& connection, const QString& sql);

    Query& bind(std::int64_t value);
    Query& bind(int value) { return bind(static_cast<std::int64_t>(value)); }
    Query& bind(bool value) { return bind(static_cast<std::int64_t>(value ? 1 : 0)); }
    Query& bind(const std::string& value);
    Query& bind(const char* value) { return bind(std::string(value)); }
    Query& bind(const QByteArray& value);
    Query& bindNull();
    Query& bind(const std::optional<std::int64_t>& value) { return value ? bind(*value) : bindNull(); }

    /// Runs the statement; it may be bound and run again.
    Query& run();
    /// Runs it and goes to the only row; false when there is none.
    bool runAndNext();
    bool next();

    std::int64_t integer(int column) const { return m_query.value(column).toLongLong(); }
    std::string text(int column) const;
    QByteArray blob(int column) const { return m_query.value(column).toByteArray(); }
    bool isNull(int column) const { return m_query.value(column).isNull(); }
    std::optional<std::int64_t> optionalInteger(int column) const;
    int affected() const { return m_query.numRowsAffected(); }
    std::int64_t insertedId() const { return m_query.lastInsertId().toLongLong(); }

private:
    Connection& m_connection;
    QString m_sql;
    QSqlQuery m_query;
    int m_bound = 0;
};

/// Rolls back unless it was committed.
class Transaction : private boost::noncopyable
{
public:
    enum class EKind { Read, Write };
    Transaction(Connection& connection, EKind kind);
    ~Transaction();
    void commit();

private:
    Connection& m_connection;
    bool m_open = true;
};

} // namespace service
