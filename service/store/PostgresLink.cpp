// SPDX-License-Identifier: Apache-2.0
#include "service/store/PostgresLink.h"
#include "service/store/Store.h"

#include <utils/Translation.h>

#include <QSqlDriver>
#include <QStringList>
#include <QVariant>

#include <libpq-fe.h>
#include <poll.h>

#include <cstring>
#include <map>
#include <memory>
#include <utility>

namespace service
{

namespace
{

using utils::EErrorCode;

// Limits the memory for a large group.
constexpr std::size_t LargestWaiting = 1024 * 1024;

struct Deleter {
    void operator()(PGresult* result) const { PQclear(result); }
    void operator()(PQconninfoOption* options) const { PQconninfoFree(options); }
    void operator()(char* text) const { PQfreemem(text); }
    void operator()(PGnotify* notification) const { PQfreemem(notification); }
};

using Result = std::unique_ptr<PGresult, Deleter>;

std::string text(const char* message)
{
    return QString::fromUtf8(message).trimmed().toStdString();
}

std::string fieldOf(const PGresult* result, int field)
{
    const char* value = PQresultErrorField(result, field);
    return value ? value : "";
}

QString quoted(QString value)
{
    value.replace(QLatin1Char('\\'), QLatin1String("\\\\")).replace(QLatin1Char('\''), QLatin1String("\\'"));
    return QLatin1Char('\'') + value + QLatin1Char('\'');
}

/// True for what QtSql does not take among the options of a connection.
bool isPassedAlone(const QString& option)
{
    return option == QLatin1String("user") || option == QLatin1String("password") || option == QLatin1String("dbname");
}

/// The options in the location. By default a dead host is noticed within seconds.
std::map<QString, QString> optionsOf(const StoreOptions& options)
{
    std::map<QString, QString> found = {
        {"fallback_application_name", "qav"},
        {"connect_timeout", "5"},
        {"keepalives_idle", "10"},
        {"keepalives_interval", "5"},
        {"keepalives_count", "3"},
        {"tcp_user_timeout", "15000"},
        {"target_session_attrs", options.readOnly ? "any" : "read-write"},
    };
    char* message = nullptr;
    const std::unique_ptr<PQconninfoOption, Deleter> parsed(
        PQconninfoParse(options.location.toUtf8().constData(), &message));
    const std::unique_ptr<char, Deleter> owned(message);
    if (!parsed) {
        throw StoreError(EErrorCode::InvalidValue, utils::text("service", "数据库地址无效"), text(message),
                         StoreError::EKind::Final);
    }
    for (const PQconninfoOption* option = parsed.get(); option->keyword; ++option) {
        if (option->val) {
            found[option->keyword] = QString::fromUtf8(option->val);
        }
    }
    for (const auto& [name, value] : found) {
        // QtSql separates the options of a connection with semicolons.
        if (value.contains(QLatin1Char(';')) && !isPassedAlone(name)) {
            throw StoreError(
                EErrorCode::InvalidValue,
                utils::filled(utils::text("service", "数据库地址无效：%1 不能包含分号"), name.toStdString()));
        }
    }
    return found;
}

} // namespace

void PostgresLink::requireUrl(const QString& location)
{
    optionsOf(StoreOptions::forReading(location));
}

void PostgresLink::configure(QSqlDatabase& database, const StoreOptions& options)
{
    QStringList others;
    for (const auto& [name, value] : optionsOf(options)) {
        if (name == QLatin1String("user")) {
            database.setUserName(value);
        } else if (name == QLatin1String("password")) {
            database.setPassword(value);
        } else if (name == QLatin1String("dbname")) {
            database.setDatabaseName(value);
        } else {
            others << name + QLatin1Char('=') + quoted(value);
        }
    }
    database.setConnectOptions(others.join(QLatin1Char(' ')));
}

PostgresLink::PostgresLink(const QSqlDatabase& open, const StoreOptions& options)
    : m_link(*static_cast<PGconn* const*>(open.driver()->handle().constData())), m_mayWrite(!options.readOnly)
{
    PQsetNoticeReceiver(m_link, &PostgresLink::receiveNotice, this);
    // A server may be configured to acknowledge commits before they are on the disk.
    exec("SET statement_timeout = " + std::to_string(options.statementTimeoutMs) +
         "; SET lock_timeout = " + std::to_string(options.busyTimeoutMs) +
         "; SET standard_conforming_strings = on; SET default_transaction_read_only = " + (m_mayWrite ? "off" : "on") +
         "; SELECT set_config('synchronous_commit', CASE current_setting('synchronous_commit')"
         " WHEN 'remote_apply' THEN 'remote_apply' ELSE 'on' END, false)");
}

PostgresLink::~PostgresLink()
{
    PQsetNoticeReceiver(m_link, [](void*, const PGresult*) {}, nullptr);
}

void PostgresLink::receiveNotice(void* link, const PGresult* notice)
{
    const char* severity = PQresultErrorField(notice, PG_DIAG_SEVERITY_NONLOCALIZED);
    if (severity && std::strcmp(severity, "WARNING") == 0) {
        static_cast<PostgresLink*>(link)->m_warned = true;
    }
}

bool PostgresLink::isLost() const
{
    return PQstatus(m_link) != CONNECTION_OK;
}

bool PostgresLink::isAborted() const
{
    return PQtransactionStatus(m_link) == PQTRANS_INERROR;
}

void PostgresLink::exec(const std::string& sql)
{
    const std::string message = std::exchange(m_waiting, {}) + sql;
    const Result result(PQexec(m_link, message.c_str()));
    const ExecStatusType status = PQresultStatus(result.get());
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
        throw errorOf(fieldOf(result.get(), PG_DIAG_SQLSTATE), text(PQerrorMessage(m_link)));
    }
}

void PostgresLink::send(const char* sql) noexcept
{
    while (const Result unread{PQgetResult(m_link)}) {
        // Of a statement whose rows were not all read.
    }
    // The next statement drops the result, and reports a lost connection.
    PQsendQuery(m_link, sql);
}

void PostgresLink::execLater(const QString& sql, const std::vector<QVariant>& values)
{
    std::string call = "EXECUTE " + prepared(sql);
    const char* before = " (";
    for (const QVariant& value : values) {
        call += before + literal(value);
        before = ", ";
    }
    m_waiting += call + "); ";
    if (m_waiting.size() > LargestWaiting) {
        sendWaiting();
    }
}

void PostgresLink::sendWaiting()
{
    if (!m_waiting.empty()) {
        exec({});
    }
}

const std::string& PostgresLink::prepared(const QString& sql)
{
    const auto known = m_prepared.find(sql);
    if (known != m_prepared.end()) {
        return known->second;
    }
    std::string numbered;
    int values = 0;
    for (const char character : sql.toStdString()) {
        if (character == '?') {
            numbered += '$' + std::to_string(++values);
        } else {
            numbered += character;
        }
    }
    const std::string name = "qav_" + std::to_string(m_prepared.size());
    exec("PREPARE " + name + " AS " + numbered);
    return m_prepared.emplace(sql, name).first->second;
}

std::string PostgresLink::literal(const QVariant& value) const
{
    if (value.isNull()) {
        return "NULL";
    }
    if (value.type() == QVariant::LongLong) {
        return std::to_string(value.toLongLong());
    }
    if (value.type() == QVariant::ByteArray) {
        return "'\\x" + value.toByteArray().toHex().toStdString() + "'";
    }
    const QByteArray utf8 = value.toString().toUtf8();
    const std::unique_ptr<char, Deleter> quoted(
        PQescapeLiteral(m_link, utf8.constData(), static_cast<std::size_t>(utf8.size())));
    if (!quoted) {
        throw errorOf({}, text(PQerrorMessage(m_link)));
    }
    return quoted.get();
}

void PostgresLink::commit()
{
    m_warned = false;
    // A commit that is cancelled while it waits for a standby is still committed, so no time-out may cancel it.
    const std::string message = std::string("NOTIFY ") + CommitChannel + "; SET LOCAL statement_timeout = 0; COMMIT";
    const Result result(PQexec(m_link, message.c_str()));
    if (PQresultStatus(result.get()) == PGRES_COMMAND_OK && !m_warned) {
        if (std::strcmp(PQcmdStatus(result.get()), "COMMIT") == 0) {
            return;
        }
        throw StoreError(EErrorCode::StorageFailure, utils::text("service", "数据库操作失败，数据未保存"));
    }
    if (isLost() || m_warned) {
        throw StoreError::uncertainCommit();
    }
    throw errorOf(fieldOf(result.get(), PG_DIAG_SQLSTATE), text(PQerrorMessage(m_link)));
}

bool PostgresLink::waitForNotification(std::chrono::milliseconds time)
{
    pollfd socket{PQsocket(m_link), POLLIN, 0};
    ::poll(&socket, 1, static_cast<int>(time.count()));
    if (PQconsumeInput(m_link) == 0) {
        throw errorOf({}, text(PQerrorMessage(m_link)));
    }
    bool isNotified = false;
    while (const std::unique_ptr<PGnotify, Deleter> notification{PQnotifies(m_link)}) {
        isNotified = true;
    }
    return isNotified;
}

StoreError PostgresLink::errorOf(const QSqlError& error) const
{
    return errorOf(error.nativeErrorCode().toStdString(), error.databaseText().trimmed().toStdString());
}

StoreError PostgresLink::errorOf(const std::string& sqlState, const std::string& text) const
{
    // A primary that became a standby counts as lost, so that the new primary is looked for.
    const bool isDemoted = sqlState == "25006" && m_mayWrite;
    return StoreError::fromPostgres(isLost() || isDemoted ? std::string() : sqlState, text);
}

} // namespace service
