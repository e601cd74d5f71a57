// SPDX-License-Identifier: Apache-2.0
#include "service/admin/PostgresTools.h"
#include "service/engine/Refusal.h"
#include "service/store/Query.h"
#include "service/store/SchemaObjects.h"

#include <utils/Translation.h>

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>

#include <csignal>
#include <sys/prctl.h>

namespace service
{

using utils::EErrorCode;

namespace
{

/// A child process that ends with this one.
class ToolProcess : public QProcess
{
protected:
    void setupChildProcess() override { prctl(PR_SET_PDEATHSIG, SIGTERM); }
};

/// The location without its password, which moves to the environment so that the process list does not show it.
QString takePassword(const QString& location, QProcessEnvironment& environment)
{
    static const QRegularExpression form(QStringLiteral("^([a-z]+://[^:@/?]*):([^@/]*)@(.*)$"));
    const QRegularExpressionMatch match = form.match(location);
    if (!match.hasMatch()) {
        return location;
    }
    environment.insert(QStringLiteral("PGPASSWORD"), QUrl::fromPercentEncoding(match.captured(2).toUtf8()));
    return match.captured(1) + '@' + match.captured(3);
}

void start(QProcess& process, const QString& program, QStringList arguments, const QString& location = {})
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!location.isEmpty()) {
        arguments << QStringLiteral("--dbname") << takePassword(location, environment);
    }
    if (QStandardPaths::findExecutable(program).isEmpty()) {
        throw Refusal(
            EErrorCode::Unsupported,
            utils::filled(
                utils::text("service", "没有找到 %1，请安装 PostgreSQL 客户端程序，或在有该程序的机器上运行：%1 %2"),
                program.toStdString(), arguments.join(QLatin1Char(' ')).toStdString()));
    }
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
}

/// Waits for the end of the process. Throws `Refusal` if it failed.
void requireSuccess(QProcess& process)
{
    process.closeWriteChannel();
    process.waitForFinished(-1);
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        throw Refusal(EErrorCode::Failed,
                      utils::filled(utils::text("service", "%1 失败：%2"), process.program().toStdString(),
                                    process.readAllStandardError().trimmed().toStdString()));
    }
}

/// Returns the standard output of the program.
QByteArray runTool(const QString& program, const QStringList& arguments, const QString& location)
{
    ToolProcess process;
    start(process, program, arguments, location);
    requireSuccess(process);
    return process.readAllStandardOutput();
}

/// The first entry in a dump's table of contents that is not in the schema; empty if there is none.
std::string foreignObject(const QString& list)
{
    static const QRegularExpression ours(
        QStringLiteral("^[0-9]+; [0-9]+ [0-9]+ (?:(?:TABLE|TABLE DATA|INDEX|SEQUENCE|SEQUENCE SET) \\S+ (\\S+) \\S+"
                       "|(?:CONSTRAINT|FK CONSTRAINT) \\S+ (\\S+) \\S+ \\S+"
                       "|ACL \\S+ (?:TABLE|SEQUENCE) (\\S+) \\S+)$"));
    const std::vector<std::string> names = namesInSchema();
    for (const QString& line : list.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (line.startsWith(QLatin1Char(';'))) {
            continue;
        }
        const QRegularExpressionMatch match = ours.match(line);
        QString name = match.captured(match.lastCapturedIndex());
        if (name.endsWith(QLatin1String("_id_seq"))) {
            name.chop(7);
        }
        if (!match.hasMatch() || std::find(names.begin(), names.end(), name.toStdString()) == names.end()) {
            return line.section(QLatin1Char(' '), 3).toStdString();
        }
    }
    return {};
}

/// False if the program has ended.
bool writeTo(QProcess& process, const QByteArray& bytes)
{
    process.write(bytes);
    while (process.bytesToWrite() > 0) {
        if (!process.waitForBytesWritten(-1)) {
            return false;
        }
    }
    return true;
}

/// The schema that has the tables. Other objects of the database, such as extensions, are not copied.
QString schemaOf(const QString& location)
{
    Connection connection(StoreOptions::forReading(location), QStringLiteral("qav-admin-schema"));
    Query query(connection, QStringLiteral("SELECT current_schema()"));
    return query.runAndNext() ? QString::fromStdString(query.text(0)) : QString();
}

} // namespace

void dumpPostgres(const QString& location, const QString& file)
{
    runTool(QStringLiteral("pg_dump"),
            {QStringLiteral("--format=custom"), QStringLiteral("--no-owner"), QStringLiteral("--no-password"),
             QStringLiteral("--table=\"%1\".*").arg(schemaOf(location)), QStringLiteral("--file"), file},
            location);
}

void verifyPostgresDump(const QString& file)
{
    const QString program = QStringLiteral("pg_restore");
    const QByteArray list = runTool(program, {QStringLiteral("--list"), file}, {});
    if (!list.contains(" schema_version ")) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "该文件不是数据服务的备份：%1"), file.toStdString()));
    }
    const std::string foreign = foreignObject(QString::fromUtf8(list));
    if (!foreign.empty()) {
        throw StoreError(EErrorCode::StorageFailure,
                         utils::filled(utils::text("service", "数据库的结构与本程序的不同：%1"), foreign));
    }
    runTool(program, {QStringLiteral("--file=/dev/null"), file}, {});
}

int schemaVersionOfDump(const QString& file)
{
    const QByteArray rows = runTool(
        QStringLiteral("pg_restore"),
        {QStringLiteral("--data-only"), QStringLiteral("--table=schema_version"), QStringLiteral("--file=-"), file},
        {});
    int version = 0;
    for (const QByteArray& row : rows.split('\n')) {
        // A row of the dump: "version TAB time".
        if (row.contains('\t')) {
            version = std::max(version, row.left(row.indexOf('\t')).toInt());
        }
    }
    return version;
}

void restorePostgresDump(const QString& file, const QString& location, const QStringList& statements)
{
    ToolProcess target;
    start(target, QStringLiteral("psql"),
          {QStringLiteral("--no-psqlrc"), QStringLiteral("--quiet"), QStringLiteral("--no-password"),
           QStringLiteral("--set=ON_ERROR_STOP=1"), QStringLiteral("--output=/dev/null"), QStringLiteral("--file=-")},
          location);
    ToolProcess source;
    start(source, QStringLiteral("pg_restore"),
          {QStringLiteral("--clean"), QStringLiteral("--if-exists"), QStringLiteral("--no-owner"),
           QStringLiteral("--file=-"), file});
    bool isTaken = writeTo(target, "BEGIN;\n");
    while (isTaken && source.waitForReadyRead(-1)) {
        isTaken = writeTo(target, source.readAllStandardOutput());
    }
    if (!isTaken) {
        source.kill();
        requireSuccess(target);
    }
    // Without a commit everything is rolled back.
    requireSuccess(source);
    const QString rest =
        QStringLiteral(";\n") + statements.join(QStringLiteral(";\n")) + QStringLiteral(";\nCOMMIT;\n");
    writeTo(target, source.readAllStandardOutput() + "RESET search_path" + rest.toUtf8());
    requireSuccess(target);
}

int otherPostgresClients(const QString& location)
{
    Connection connection(StoreOptions::forReading(location), QStringLiteral("qav-admin-clients"));
    Query query(connection, QStringLiteral("SELECT count(*) FROM pg_stat_activity WHERE datname = current_database()"
                                           " AND pid <> pg_backend_pid() AND backend_type = 'client backend'"));
    return query.runAndNext() ? static_cast<int>(query.integer(0)) : 0;
}

} // namespace service
