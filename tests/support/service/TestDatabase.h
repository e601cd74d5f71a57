// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QTemporaryDir>

#include <boost/noncopyable.hpp>

namespace support
{

/// Where tests put their files: in memory, or where the environment says as QAV_TEST_FOLDER.
QString directoryTemplate();

/// A database of a test's own, removed with it: a SQLite file, or a database on the PostgreSQL server whose socket is
/// in the folder that the environment names as QAV_TEST_POSTGRES.
class TestDatabase : private boost::noncopyable
{
public:
    static bool isPostgres();
    /// Where a database of the server is, whose socket may be in another folder than the environment says.
    static QString locationOf(const QString& database, const QString& folder = {});

    TestDatabase();
    /// A copy. Nobody may be connected to the original.
    explicit TestDatabase(const TestDatabase* original);
    ~TestDatabase();

    const QString& location() const { return m_location; }
    /// The same database through a socket in another folder. PostgreSQL only.
    QString locationThrough(const QString& folder) const { return locationOf(m_name, folder); }
    QString path(const QString& name) const { return m_directory.filePath(name); } ///< of a file beside it

private:
    QTemporaryDir m_directory;
    QString m_name;
    QString m_location;
};

} // namespace support
