#include "service/store/Connection.h"
#include "service/store/Store.h"

namespace service
{

Connection::Connection(const StoreOptions& options, const QString& name) : m_faultHook(options.faultHook), m_name(name)
{
    m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    m_database.setDatabaseName(options.file);
    QString settings = QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(options.busyTimeoutMs);
    if (options.readOnly)
        settings += QStringLiteral(";QSQLITE_OPEN_READONLY");
    m_database.setConnectOptions(settings);
    try {
        if (!m_database.open())
            throw StoreError::fromSql(m_database.lastError());
        if (!options.readOnly)
            exec(QStringLiteral("PRAGMA journal_mode = WAL"));
        exec(QStringLiteral("PRAGMA synchronous = FULL"));
        exec(QStringLiteral("PRAGMA foreign_keys = ON"));
        if (options.maxPages > 0)
            exec(QStringLiteral("PRAGMA max_page_count = %1").arg(options.maxPages));
    } catch (const StoreError&) {
        m_database = QSqlDatabase();
        QSqlDatabase::removeDatabase(name);
        throw;
    }
}

Connection::~Connection()
{
    m_database.close();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_name);
}

void Connection::checkFault(const QString& sql) const
{
    if (m_faultHook && m_faultHook(sql))
        throw StoreError::fromSql(
            QSqlError(QString(), QStringLiteral("disk I/O error"), QSqlError::StatementError, QStringLiteral("10")));
}

void Connection::exec(const QString& sql)
{
    checkFault(sql);
    QSqlQuery query(m_database);
    if (!query.exec(sql))
        throw StoreError::fromSql(query.lastError());
}

void Connection::beginRead()
{
    exec(QStringLiteral("BEGIN"));
}

void Connection::beginWrite()
{
    exec(QStringLiteral("BEGIN IMMEDIATE"));
}

void Connection::commit()
{
    exec(QStringLiteral("COMMIT"));
}

void Connection::rollback() noexcept
{
    // SQLite has already rolled back by itself after some errors (full disk); the second one then only says so.
    QSqlQuery(m_database).exec(QStringLiteral("ROLLBACK"));
}

Query::Query(Connection& connection, const QString& sql)
    : m_connection(connection), m_sql(sql), m_query(connection.database())
{
    m_query.setForwardOnly(true);
    if (!m_query.prepare(sql))
        throw StoreError::fromSql(m_query.lastError());
}

Query& Query::bind(std::int64_t value)
{
    m_query.bindValue(m_bound++, static_cast<qlonglong>(value));
    return *this;
}

Query& Query::bind(const std::string& value)
{
    m_query.bindValue(m_bound++, QString::fromStdString(value));
    return *this;
}

Query& Query::bind(const QByteArray& value)
{
    m_query.bindValue(m_bound++, value);
    return *this;
}

Query& Query::bindNull()
{
    m_query.bindValue(m_bound++, QVariant());
    return *this;
}

Query& Query::run()
{
    m_bound = 0;
    m_connection.checkFault(m_sql);
    if (!m_query.exec())
        throw StoreError::fromSql(m_query.lastError());
    return *this;
}

bool Query::runAndNext()
{
    run();
    return next();
}

bool Query::next()
{
    if (m_query.next())
        return true;
    if (m_query.lastError().isValid())
        throw StoreError::fromSql(m_query.lastError());
    return false;
}

std::string Query::text(int column) const
{
    return m_query.value(column).toString().toStdString();
}

std::optional<std::int64_t> Query::optionalInteger(int column) const
{
    const QVariant value = m_query.value(column);
    if (value.isNull())
        return std::nullopt;
    return value.toLongLong();
}

Transaction::Transaction(Connection& connection, EKind kind) : m_connection(connection)
{
    kind == EKind::Write ? connection.beginWrite() : connection.beginRead();
}

Transaction::~Transaction()
{
    if (m_open)
        m_connection.rollback();
}

void Transaction::commit()
{
    m_connection.commit();
    m_open = false;
}

} // namespace service
