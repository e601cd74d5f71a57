// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/StoreError.h"

#include <QSqlDatabase>
#include <QString>
#include <QVariant>

#include <boost/noncopyable.hpp>

#include <chrono>
#include <map>
#include <string>
#include <vector>

struct pg_conn;
struct pg_result;

namespace service
{

struct StoreOptions;

/// Functions of an open PostgreSQL connection that QtSql lacks: several statements in one message, the warnings of a
/// commit, and whether the connection is lost. Exists as long as the connection is open.
class PostgresLink : private boost::noncopyable
{
public:
    /// Throws `StoreError` if the location is no URL that libpq takes.
    static void requireUrl(const QString& location);
    /// Configures a QPSQL database so that it can open `options.location`. Throws `StoreError`.
    static void configure(QSqlDatabase& database, const StoreOptions& options);

    /// Applies the settings of every session: timeouts, and commits that wait for the disk. Throws `StoreError`.
    PostgresLink(const QSqlDatabase& open, const StoreOptions& options);
    ~PostgresLink();

    /// Every commit notifies this channel.
    static constexpr char CommitChannel[] = "qav_commit";

    bool isLost() const;
    /// True in a transaction that can only be rolled back.
    bool isAborted() const;

    /// Runs the delayed statements and these in one message. Throws `StoreError`.
    void exec(const std::string& sql);
    /// Sends a statement whose outcome does not matter, and does not wait for it.
    void send(const char* sql) noexcept;
    /// Delays a statement without a result until the next message. It has a question mark for each value.
    void execLater(const QString& sql, const std::vector<QVariant>& values);
    /// Runs the delayed statements.
    void sendWaiting();
    void dropWaiting() { m_waiting.clear(); }
    /// Throws `StoreError`: `Uncertain` if the server has not confirmed the commit, or if a synchronous standby may not
    /// have it.
    void commit();
    /// True if a channel that this session listens to was notified; false after `time` without that. Throws
    /// `StoreError` if the connection is lost.
    bool waitForNotification(std::chrono::milliseconds time);
    StoreError errorOf(const QSqlError& error) const;

private:
    /// The name of the statement; prepares it at the first call.
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
