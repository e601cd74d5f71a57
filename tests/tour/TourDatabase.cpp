// SPDX-License-Identifier: Apache-2.0
#include "TourDatabase.h"

#include <nvservice/Codec.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace tour
{

namespace
{

const QString Connection = QStringLiteral("tour");

QSqlQuery run(const QString& sql, const QVariantList& arguments = {})
{
    QSqlQuery query(QSqlDatabase::database(Connection));
    query.prepare(sql);
    for (const QVariant& argument : arguments) {
        query.addBindValue(argument);
    }
    if (!query.exec()) {
        qFatal("%s: %s", qPrintable(sql), qPrintable(query.lastError().text()));
    }
    return query;
}

} // namespace

TourDatabase::TourDatabase(const QString& file)
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), Connection);
    database.setDatabaseName(file);
    database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=60000"));
    if (!database.open()) {
        qFatal("%s", qPrintable(database.lastError().text()));
    }
    newAudit();
}

TourDatabase::~TourDatabase()
{
    QSqlDatabase::database(Connection).close();
    QSqlDatabase::removeDatabase(Connection);
}

QStringList TourDatabase::servers() const
{
    return column(QStringLiteral("SELECT name FROM sub_system ORDER BY name"));
}

QStringList TourDatabase::groups(const QString& server, int institution) const
{
    QStringList groups = column(
        QStringLiteral("SELECT g.name || '|' || (SELECT count(*) FROM account_group_member m"
                       " WHERE m.server_id = g.server_id AND m.group_id = g.group_id) || '|' ||"
                       " coalesce(i.name, '主经纪商') || '|' || s.name"
                       " FROM account_group g JOIN sub_system s ON s.id = g.server_id"
                       " LEFT JOIN institution i ON i.server_id = g.server_id AND i.institution_id = g.institution_id"
                       " WHERE s.name = ? AND (? = 0 OR g.institution_id = ?)"),
        {server, institution, institution});
    groups.sort();
    return groups;
}

QString TourDatabase::group(const QString& server, const QString& name) const
{
    return value(QStringLiteral("SELECT coalesce(i.name, '主经纪商') || '|' || g.revision || '|' || g.modified_by"
                                " FROM account_group g JOIN sub_system s ON s.id = g.server_id"
                                " LEFT JOIN institution i ON i.server_id = g.server_id"
                                " AND i.institution_id = g.institution_id WHERE s.name = ? AND g.name = ?"),
                 {server, name})
        .toString();
}

int TourDatabase::groupId(const QString& server, const QString& name) const
{
    return value(QStringLiteral("SELECT g.group_id FROM account_group g JOIN sub_system s ON s.id = g.server_id"
                                " WHERE s.name = ? AND g.name = ?"),
                 {server, name})
        .toInt();
}

QStringList TourDatabase::members(const QString& server, const QString& name) const
{
    return column(QStringLiteral(
                      "SELECT a.broker_type || ':' || a.account_id ||"
                      " CASE a.unit_id WHEN '' THEN '' ELSE '.' || a.unit_id END"
                      " FROM account_group_member m JOIN account a ON a.server_id = m.server_id AND a.id = m.account_id"
                      " JOIN account_group g ON g.server_id = m.server_id AND g.group_id = m.group_id"
                      " JOIN sub_system s ON s.id = g.server_id WHERE s.name = ? AND g.name = ? ORDER BY m.position"),
                  {server, name});
}

QStringList TourDatabase::usableAccounts(const QString& server, int institution, int type, bool units) const
{
    return column(QStringLiteral("SELECT a.account_id || CASE a.unit_id WHEN '' THEN '' ELSE '-' || a.unit_id END"
                                 " FROM account a JOIN sub_system s ON s.id = a.server_id WHERE s.name = ?"
                                 " AND a.institution_id = ? AND a.broker_type = ? AND a.state_code <> 5"
                                 " AND a.excluded = 0 AND (a.unit_id <> '') = ? ORDER BY a.account_id, a.unit_id"),
                  {server, institution, type, units ? 1 : 0});
}

nvservice::CAccountGroupRCConfig TourDatabase::riskConfig(const QString& server, int groupId) const
{
    const QByteArray body = value(QStringLiteral("SELECT c.body FROM group_risk_config c JOIN sub_system s"
                                                 " ON s.id = c.server_id WHERE s.name = ? AND c.group_id = ?"),
                                  {server, groupId})
                                .toByteArray();
    if (body.isEmpty()) {
        return {};
    }
    nvservice::IDataPtr record;
    nvservice::decodeRecord(body.constData(), std::size_t(body.size()), record);
    const auto config = boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(record);
    if (!config) {
        qFatal("the configuration of group %d cannot be read", groupId);
    }
    return *config;
}

QString TourDatabase::riskConfigState(const QString& server, int groupId) const
{
    return value(QStringLiteral("SELECT c.revision || '|' || c.modified_by FROM group_risk_config c JOIN sub_system s"
                                " ON s.id = c.server_id WHERE s.name = ? AND c.group_id = ?"),
                 {server, groupId})
        .toString();
}

QStringList TourDatabase::newAudit()
{
    const QStringList rows =
        column(QStringLiteral("SELECT s.system_tag || '|' || a.login || '|' || a.operation || '|' || a.data_type || '|'"
                              " || a.record_key || '|' || a.outcome || '|' || a.message"
                              " FROM audit a JOIN sub_system s ON s.id = a.server_id WHERE a.id > ? ORDER BY a.id"),
               {m_lastAudit});
    m_lastAudit = value(QStringLiteral("SELECT coalesce(max(id), 0) FROM audit")).toLongLong();
    return rows;
}

int TourDatabase::newAuditRows() const
{
    return value(QStringLiteral("SELECT count(*) FROM audit WHERE id > ?"), {m_lastAudit}).toInt();
}

QVariant TourDatabase::value(const QString& sql, const QVariantList& arguments) const
{
    QSqlQuery query = run(sql, arguments);
    return query.next() ? query.value(0) : QVariant();
}

QStringList TourDatabase::column(const QString& sql, const QVariantList& arguments) const
{
    QStringList values;
    QSqlQuery query = run(sql, arguments);
    while (query.next()) {
        values << query.value(0).toString();
    }
    return values;
}

void TourDatabase::change(const QString& sql, const QVariantList& arguments)
{
    if (run(sql, arguments).numRowsAffected() < 1) {
        qFatal("nothing changed: %s", qPrintable(sql));
    }
}

void TourDatabase::lock()
{
    run(QStringLiteral("BEGIN IMMEDIATE"));
}

void TourDatabase::unlock()
{
    run(QStringLiteral("COMMIT"));
}

} // namespace tour
