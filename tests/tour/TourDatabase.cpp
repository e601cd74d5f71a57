#include "TourDatabase.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace tour
{

namespace
{

const QString Connection = QStringLiteral("tour");

} // namespace

TourDatabase::TourDatabase(const QString& file)
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), Connection);
    database.setDatabaseName(file);
    database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    if (!database.open())
        qFatal("%s", qPrintable(database.lastError().text()));
}

TourDatabase::~TourDatabase()
{
    QSqlDatabase::database(Connection).close();
    QSqlDatabase::removeDatabase(Connection);
}

QStringList TourDatabase::servers() const
{
    return column(QStringLiteral("SELECT name FROM sub_system ORDER BY name"), {});
}

QStringList TourDatabase::groups(const QString& server, int institution) const
{
    QStringList groups = column(
        QStringLiteral("SELECT g.name || '|' || (SELECT count(*) FROM account_group_member m"
                       " WHERE m.server_id = g.server_id AND m.group_id = g.group_id) || '|' ||"
                       " coalesce(i.name, '主经纪商') || '|' || s.name"
                       " FROM account_group g JOIN sub_system s ON s.id = g.server_id"
                       " LEFT JOIN institution i ON i.server_id = g.server_id AND i.institution_id = g.institution_id"
                       " WHERE s.name = ? AND (? = '0' OR g.institution_id = ?)"),
        {server, QString::number(institution), QString::number(institution)});
    groups.sort();
    return groups;
}

QStringList TourDatabase::column(const QString& sql, const QStringList& arguments) const
{
    QSqlQuery query(QSqlDatabase::database(Connection));
    query.prepare(sql);
    for (const QString& argument : arguments)
        query.addBindValue(argument);
    if (!query.exec())
        qFatal("%s", qPrintable(query.lastError().text()));
    QStringList values;
    while (query.next())
        values << query.value(0).toString();
    return values;
}

} // namespace tour
