// SPDX-License-Identifier: Apache-2.0
#include "service/store/Connection.h"
#include "service/store/PostgresLink.h"
#include "service/store/Query.h"

#include <utils/Translation.h>

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace service
{

namespace
{

constexpr std::size_t MaxKeptStatements = 256;
// Tells the locks of this system from those of other programs on the same database.
constexpr int LockSpace = 7430518;
constexpr int WholeStore = 0;

const QString Savepoint = QStringLiteral("SAVEPOINT operation");
const QString Undo = QStringLiteral("ROLLBACK TO operation");
const QString Release = QStringLiteral("RELEASE operation");

/// New database files get mode 0600 whatever the umask is, because they hold password hashes. SQLite gives the files
/// beside it the same mode, and reports a path that cannot be used.
void createForOwner(const QString& file)
{
    if (!isMissing(file)) {
        return;
    }
    const int created = ::open(QFile::encodeName(file).constData(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0600);
    if (created >= 0) {
        ::close(created);
    }
}

QString lockOf(std::optional<std::int64_t> server)
{
    if (!server) {
        return QStringLiteral("SELECT pg_advisory_xact_lock(%1, %2)")
            .arg(QString::number(LockSpace), QString::number(WholeStore));
    }
    return QStringLiteral("SELECT pg_advisory_xact_lock_shared(%1, %2), pg_advisory_xact_lock(%1, %3)")
        .arg(QString::number(LockSpace), QString::number(WholeStore), QString::number(*server));
}

} // namespace

Connection::Connection(const StoreOptions& options, const QString& name)
    : m_options(options), m_name(name), m_isPostgres(options.isPostgres())
{
    open();
}

Connection::~Connection()
{
    close();
}

void Connection::open()
{
    m_database = QSqlDatabase::addDatabase(m_isPostgres ? QStringLiteral("QPSQL") : QStringLiteral("QSQLITE"), m_name);
    try {
        if (m_isPostgres) {
            PostgresLink::configure(m_database, m_options);
            if (!m_database.open()) {
                throw StoreError(utils::EErrorCode::StorageFailure, utils::text("service", "无法连接数据库"),
                                 m_database.lastError().databaseText().trimmed().toStdString(),
                                 StoreError::EKind::ConnectionLost);
            }
            m_postgres = std::make_unique<PostgresLink>(m_database, m_options);
            return;
        }
        if (m_options.mayCreate) {
            createForOwner(m_options.location);
        } else {
            requireLocation(m_options.location);
        }
        m_database.setDatabaseName(m_options.location);
        m_database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(m_options.busyTimeoutMs) +
                                     (m_options.readOnly ? QStringLiteral(";QSQLITE_OPEN_READONLY") : QString()));
        if (!m_database.open()) {
            throw StoreError::fromSqlite(m_database.lastError());
        }
        if (!m_options.readOnly) {
            exec(QStringLiteral("PRAGMA journal_mode = WAL"));
        }
        // Fewer checkpoints than by default: a page that changes often is written to the database once.
        exec(QStringLiteral("PRAGMA wal_autocheckpoint = 8192"));
        exec(QStringLiteral("PRAGMA synchronous = FULL"));
        exec(QStringLiteral("PRAGMA foreign_keys = ON"));
        // Otherwise savepoints use a temporary file.
        exec(QStringLiteral("PRAGMA temp_store = MEMORY"));
        if (m_options.maxPages > 0) {
            exec(QStringLiteral("PRAGMA max_page_count = %1").arg(m_options.maxPages));
        }
        m_file = fileAt(m_options.location);
    } catch (const StoreError&) {
        close();
        throw;
    }
}

void Connection::close() noexcept
{
    // The connection goes first, because QtSql would try to free the statements on a connection that is lost.
    m_postgres.reset();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_name);
    m_statements.clear();
}

bool Connection::isLost() const
{
    return m_isPostgres && (!m_postgres || m_postgres->isLost());
}

void Connection::reopen()
{
    close();
    open();
}

StoreError Connection::errorOf(const QSqlError& error) const
{
    return m_postgres ? m_postgres->errorOf(error) : StoreError::fromSqlite(error);
}

void Connection::checkFault(const QString& sql) const
{
    if (!m_options.faultHook || !m_options.faultHook(sql)) {
        return;
    }
    const QString text = QStringLiteral("disk I/O error");
    if (m_isPostgres) {
        throw StoreError::fromPostgres("58030", text.toStdString());
    }
    throw StoreError::fromSqlite(QSqlError(QString(), text, QSqlError::StatementError, QStringLiteral("10")));
}

std::unique_ptr<QSqlQuery> Connection::takeStatement(const QString& sql)
{
    const auto kept = m_statements.find(sql);
    if (kept != m_statements.end()) {
        std::unique_ptr<QSqlQuery> statement = std::move(kept->second);
        m_statements.erase(kept);
        return statement;
    }
    auto statement = std::make_unique<QSqlQuery>(m_database);
    statement->setForwardOnly(true);
    if (!statement->prepare(sql)) {
        throw errorOf(statement->lastError());
    }
    return statement;
}

void Connection::giveBackStatement(const QString& sql, std::unique_ptr<QSqlQuery> statement) noexcept
{
    statement->finish();
    // In a failed transaction PostgreSQL refuses to free statements.
    if (m_statements.size() < MaxKeptStatements || (m_postgres && m_postgres->isAborted())) {
        m_statements.emplace(sql, std::move(statement));
    }
}

void Connection::exec(const QString& sql)
{
    checkFault(sql);
    if (m_postgres) {
        m_postgres->exec(sql.toStdString());
        return;
    }
    QSqlQuery query(m_database);
    if (!query.exec(sql)) {
        throw errorOf(query.lastError());
    }
}

void Connection::execOften(const QString& sql)
{
    // On PostgreSQL a prepared statement would take as many messages.
    if (m_isPostgres) {
        exec(sql);
    } else {
        Query(*this, sql).run();
    }
}

std::optional<Connection::FileId> Connection::fileAt(const QString& location)
{
    struct stat found{};
    if (::stat(QFile::encodeName(location).constData(), &found) != 0) {
        return std::nullopt;
    }
    return FileId(found.st_dev, found.st_ino);
}

void Connection::requireFile() const
{
    if (fileAt(m_options.location) != m_file) {
        throw StoreError(utils::EErrorCode::StorageFailure,
                         utils::text("service", "数据库文件已被删除或替换，请恢复文件并重新启动"),
                         m_options.location.toStdString(), StoreError::EKind::Final);
    }
}

void Connection::begin(const QString& sql)
{
    if (!m_isPostgres) {
        requireFile();
        execOften(sql);
        return;
    }
    try {
        if (!m_postgres) {
            open();
        }
        exec(sql);
    } catch (const StoreError& failure) {
        if (failure.kind() == StoreError::EKind::Final || failure.kind() == StoreError::EKind::Passing) {
            rollback();
            throw;
        }
        reopen();
        exec(sql);
    }
}

void Connection::beginRead()
{
    begin(m_isPostgres ? QStringLiteral("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY") : QStringLiteral("BEGIN"));
}

void Connection::beginWrite(std::optional<std::int64_t> server)
{
    m_isInOperation = false;
    m_hasSavepoint = false;
    if (!m_isPostgres) {
        begin(QStringLiteral("BEGIN IMMEDIATE"));
        return;
    }
    // Setting the first operation's savepoint here saves a message.
    const QString first = server ? QStringLiteral("; ") + Savepoint : QString();
    begin(QStringLiteral("BEGIN ISOLATION LEVEL READ COMMITTED; ") + lockOf(server) + first);
    m_hasSavepoint = server.has_value();
}

void Connection::commit()
{
    if (!m_postgres) {
        execOften(QStringLiteral("COMMIT"));
        return;
    }
    checkFault(QStringLiteral("COMMIT"));
    m_postgres->commit();
}

void Connection::rollback() noexcept
{
    m_isInOperation = false;
    try {
        // This fails harmlessly if the database has already rolled back: SQLite after some errors (full disk),
        // PostgreSQL when the connection was lost.
        if (m_postgres) {
            m_postgres->dropWaiting();
            m_postgres->exec("ROLLBACK");
        } else {
            QSqlQuery(m_database).exec(QStringLiteral("ROLLBACK"));
        }
    } catch (const StoreError&) {
        return;
    }
}

void Connection::endRead() noexcept
{
    if (m_postgres) {
        m_postgres->send("ROLLBACK");
    } else {
        rollback();
    }
}

void Connection::beginOperation()
{
    if (m_hasSavepoint) {
        checkFault(Savepoint);
    } else {
        execOften(Savepoint);
    }
    m_hasSavepoint = m_isPostgres;
    m_isInOperation = true;
}

void Connection::undoOperation()
{
    if (m_postgres) {
        m_postgres->dropWaiting();
    }
    execOften(Undo);
}

void Connection::endOperation()
{
    m_isInOperation = false;
    // Setting the next operation's savepoint here saves a message. The commit releases the last one.
    execOften(m_isPostgres ? Release + QStringLiteral("; ") + Savepoint : Release);
}

void Connection::checkpoint()
{
    if (!m_isPostgres && !m_options.readOnly) {
        exec(QStringLiteral("PRAGMA wal_checkpoint(PASSIVE)"));
    }
}

void Connection::allowLongStatements()
{
    if (m_isPostgres) {
        exec(QStringLiteral("SET LOCAL statement_timeout = 0"));
    }
}

void Connection::requireDurableReads()
{
    // After a crash a primary may show a change that its standby does not have yet.
    if (m_isPostgres) {
        exec(QStringLiteral("SELECT pg_logical_emit_message(true, 'qav', '')"));
    }
}

Transaction::Transaction(Connection& connection, EKind kind) : m_connection(connection), m_kind(kind)
{
    kind == EKind::Write ? connection.beginWrite() : connection.beginRead();
}

Transaction::Transaction(Connection& connection, std::int64_t server) : m_connection(connection)
{
    connection.beginWrite(server);
}

Transaction::~Transaction()
{
    if (m_open) {
        m_kind == EKind::Read ? m_connection.endRead() : m_connection.rollback();
    }
}

void Transaction::commit()
{
    m_connection.commit();
    m_open = false;
}

} // namespace service
