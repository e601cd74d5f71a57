// SPDX-License-Identifier: Apache-2.0
#include "service/admin/SqliteCopy.h"
#include "service/store/StoreError.h"

#include <QSqlError>

#include <boost/noncopyable.hpp>

#include <sqlite3.h>

namespace service
{

namespace
{

constexpr int PagesOfAStep = 256;
constexpr int BusyTimeoutMs = 10000;

class SqliteFile : private boost::noncopyable
{
public:
    SqliteFile(const QString& name, int flags)
    {
        const int code = sqlite3_open_v2(name.toUtf8().constData(), &m_handle, flags, nullptr);
        sqlite3_busy_timeout(m_handle, BusyTimeoutMs);
        if (code != SQLITE_OK) {
            const StoreError error = failure();
            sqlite3_close(m_handle);
            throw error;
        }
    }
    ~SqliteFile() { sqlite3_close(m_handle); }

    sqlite3* handle() const { return m_handle; }
    void setBusyTimeout(int milliseconds) { sqlite3_busy_timeout(m_handle, milliseconds); }
    int run(const char* sql) { return sqlite3_exec(m_handle, sql, nullptr, nullptr, nullptr); }
    void require(int code)
    {
        if (code != SQLITE_OK) {
            throw failure();
        }
    }

private:
    StoreError failure() const
    {
        return StoreError::fromSqlite(QSqlError(QString(), QString::fromUtf8(sqlite3_errmsg(m_handle)),
                                                QSqlError::StatementError,
                                                QString::number(sqlite3_extended_errcode(m_handle))));
    }

    sqlite3* m_handle = nullptr;
};

} // namespace

void copySqliteDatabase(const QString& from, const QString& to, const CopyProgress& progress)
{
    SqliteFile source(from, SQLITE_OPEN_READONLY);
    SqliteFile target(to, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    // The read transaction keeps one snapshot; otherwise every change by another program would restart the copy.
    source.require(source.run("BEGIN; SELECT count(*) FROM sqlite_master"));
    sqlite3_backup* const copy = sqlite3_backup_init(target.handle(), "main", source.handle(), "main");
    if (!copy) {
        target.require(sqlite3_errcode(target.handle()));
    }
    int code = SQLITE_OK;
    while (code == SQLITE_OK) {
        code = sqlite3_backup_step(copy, PagesOfAStep);
        const int total = sqlite3_backup_pagecount(copy);
        if (progress) {
            progress(total - sqlite3_backup_remaining(copy), total);
        }
    }
    target.require(sqlite3_backup_finish(copy));
    if (code != SQLITE_DONE) {
        target.require(code);
    }
}

bool leaveWriteAheadMode(const QString& file)
{
    SqliteFile database(file, SQLITE_OPEN_READWRITE);
    database.setBusyTimeout(0);
    const int code = database.run("PRAGMA journal_mode = DELETE");
    if (code == SQLITE_BUSY || code == SQLITE_LOCKED) {
        return false;
    }
    database.require(code);
    return true;
}

} // namespace service
