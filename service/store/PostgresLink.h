#pragma once

#include "service/store/StoreError.h"

#include <QSqlDatabase>
#include <QString>
#include <QVariant>

#include <boost/noncopyable.hpp>

#include <map>
#include <string>
#include <vector>

struct pg_conn;
struct pg_result;

namespace service
{

struct StoreOptions;

/// What QtSql leaves out of an open PostgreSQL connection: several statements in one message, the warnings of a commit,
/// whether the connection is still there. Lives as long as the connection is open.
class PostgresLink : private boost::noncopyable
{
public:
    /// Gives a QPSQL database everything that it needs to open `options.location`. Throws `StoreError`.
    static void configure(QSqlDatabase& database, const StoreOptions& options);

    /// Sets what every session needs: time-outs, commits that wait for the disk. Throws `StoreError`.
    PostgresLink(const QSqlDatabase& open, const StoreOptions& options);
    ~PostgresLink();

    bool isLost() const;
    /// In a transaction that can only be rolled back.
    bool isAborted() const;

    /// Runs what waits and these statements in one message. Throws `StoreError`.
    void exec(const std::string& sql);
    /// Has a statement without a result, which has a question mark for each value, wait for the next message.
    void execLater(const QString& sql, const std::vector<QVariant>& values);
    /// Runs what waits.
    void sendWaiting();
    void dropWaiting() { m_waiting.clear(); }
    /// Throws `StoreError`; `Uncertain` whenever the server's word for the commit is missing, or when a standby that
    /// must have it may be without it.
    void commit();
    StoreError errorOf(const QSqlError& error) const;

private:
    /// The name of the statement, which is prepared once.
    const std::string& prepared(const QString& sql);
    std::string literal(const QVariant& value) const;
    static void receiveNotice(void* link, const pg_result* notice);
    StoreError errorOf(const std::string& sqlState, const std::string& text) const;

    pg_conn* m_link;
    std::string m_waiting;
    std::map<QString, std::string> m_prepared;
    bool m_mayWrite;
    bool m_warned = false;
};

} // namespace service
