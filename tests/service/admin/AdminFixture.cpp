// SPDX-License-Identifier: Apache-2.0
#include "service/admin/AdminFixture.h"

#include "service/admin/SqliteCopy.h"
#include "service/store/Query.h"
#include "support/Paths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <stdexcept>

#include <pwd.h>
#include <unistd.h>

namespace testservice
{

QJsonObject Outcome::item(const char* key, const QJsonValue& value) const
{
    for (const QJsonValue& element : json().array()) {
        if (element.toObject().value(QLatin1String(key)) == value) {
            return element.toObject();
        }
    }
    return {};
}

QString adminProgram()
{
    return support::builtFile("bin/qav-admin");
}

QString toolUser()
{
    QFile file(QStringLiteral("/proc/self/loginuid"));
    const uint loggedIn = file.open(QIODevice::ReadOnly) ? file.readAll().toUInt() : ~0U;
    return QStringLiteral("qav-admin:") + getpwuid(loggedIn == ~0U ? geteuid() : loggedIn)->pw_name;
}

QString toolUserAsBoss()
{
    return toolUser() + QStringLiteral(" as boss");
}

Outcome runAdmin(const QStringList& arguments, const QByteArray& input, const QString& caller)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("SUDO_USER"));
    if (!caller.isEmpty()) {
        environment.insert(QStringLiteral("SUDO_USER"), caller);
    }
    process.setProcessEnvironment(environment);
    process.start(adminProgram(), arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit) {
        return {-1, QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

Outcome AdminFixture::run(const QString& words, const QByteArray& input)
{
    return run(words.split(QLatin1Char(' '), Qt::SkipEmptyParts), input);
}

Outcome AdminFixture::run(const QStringList& arguments, const QByteArray& input)
{
    return runAdmin(arguments + QStringList{QStringLiteral("--store"), storeName()}, input);
}

QStringList AdminFixture::audit(int count)
{
    QStringList rows;
    service::Query query(store().connection(),
                         QStringLiteral("SELECT login, operation, record_key, outcome FROM audit ORDER BY id DESC"));
    for (query.run(); rows.size() < count && query.next();) {
        rows.prepend(
            QString::fromStdString(query.text(0) + " " + query.text(1) + " " + query.text(2) + " " + query.text(3)));
    }
    return rows;
}

QString AdminFixture::closedCopy(const char* name)
{
    const QString file = path(name);
    service::copySqliteDatabase(storeName(), file, {});
    service::leaveWriteAheadMode(file);
    return file;
}

void writeFile(const QString& name, const QByteArray& content)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        throw std::runtime_error(name.toStdString());
    }
}

QByteArray readFile(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList beside(const QString& file)
{
    const QFileInfo info(file);
    return info.dir().entryList({info.fileName() + QLatin1String("?*")},
                                QDir::AllEntries | QDir::Hidden | QDir::System);
}

} // namespace testservice
