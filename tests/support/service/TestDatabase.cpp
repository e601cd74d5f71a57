// SPDX-License-Identifier: Apache-2.0
#include "support/service/TestDatabase.h"

#include "service/store/Query.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <atomic>

namespace support
{

namespace
{

QString nextName()
{
    static std::atomic<int> number{0};
    return QStringLiteral("test_%1_%2").arg(QCoreApplication::applicationPid()).arg(++number);
}

void execOnServer(const QString& sql)
{
    service::StoreOptions options;
    options.location = TestDatabase::locationOf("postgres");
    service::Connection(options, nextName()).exec(sql);
}

} // namespace

QString directoryTemplate()
{
    const QString asked = qEnvironmentVariable("QAV_TEST_FOLDER");
    if (!asked.isEmpty()) {
        return asked + QStringLiteral("/qav-service-test-XXXXXX");
    }
    // Every commit waits for the disk; a disk in memory makes hundreds of small stores cheap.
    const QString inMemory = QStringLiteral("/dev/shm");
    const QString parent = QFileInfo(inMemory).isWritable() ? inMemory : QDir::tempPath();
    return parent + QStringLiteral("/qav-service-test-XXXXXX");
}

bool TestDatabase::isPostgres()
{
    return qEnvironmentVariableIsSet("QAV_TEST_POSTGRES");
}

QString TestDatabase::locationOf(const QString& database, const QString& folder)
{
    return QStringLiteral("postgresql://qav@/%1?host=%2")
        .arg(database, folder.isEmpty() ? qEnvironmentVariable("QAV_TEST_POSTGRES") : folder);
}

TestDatabase::TestDatabase() : TestDatabase(nullptr) {}

TestDatabase::TestDatabase(const TestDatabase* original) : m_directory(directoryTemplate()), m_name(nextName())
{
    if (!isPostgres()) {
        m_location = m_directory.filePath("store.db");
        if (original && QFile::exists(original->location())) {
            QFile::copy(original->location(), m_location);
        } else {
            // As a new database of PostgreSQL: there, and empty.
            QFile(m_location).open(QIODevice::WriteOnly);
        }
        return;
    }
    m_location = locationOf(m_name);
    execOnServer("CREATE DATABASE " + m_name + " TEMPLATE " + (original ? original->m_name : "template1") +
                 " STRATEGY file_copy");
}

TestDatabase::~TestDatabase()
{
    if (!isPostgres()) {
        return;
    }
    try {
        execOnServer("DROP DATABASE " + m_name + " WITH (FORCE)");
    } catch (const service::StoreError& failure) {
        qWarning("%s", failure.what());
    }
}

} // namespace support
