// SPDX-License-Identifier: Apache-2.0
#include "service/store/Integrity.h"
#include "service/store/Query.h"

#include <utils/Translation.h>

namespace service
{

namespace
{

std::string findDamageInFile(Connection& connection)
{
    Query pages(connection, QStringLiteral("PRAGMA integrity_check(1)"));
    if (!pages.runAndNext() || pages.text(0) != "ok") {
        return utils::filled(utils::text("service", "数据库文件已损坏: %1"), pages.text(0));
    }
    Query references(connection, QStringLiteral("PRAGMA foreign_key_check"));
    return references.runAndNext() ? utils::filled(utils::text("service", "数据引用不完整: %1"), references.text(0))
                                   : std::string();
}

std::vector<std::string> texts(Connection& connection, const QString& sql)
{
    return Query(connection, sql).all([](const Query& row) { return row.text(0); });
}

/// Returns one statement per table, which reads all of its values.
const char* const ReadingStatements =
    "SELECT format('SELECT sum(length(t::text)) FROM %I t', tablename) FROM pg_tables WHERE schemaname = "
    "current_schema()";

/// Returns one statement per foreign key, which returns its name if a row refers to nothing.
const char* const ReferenceStatements =
    "SELECT format('SELECT %L FROM %s c WHERE %s AND NOT EXISTS (SELECT 1 FROM %s p WHERE %s) LIMIT 1', k.conname,"
    " k.conrelid::regclass, string_agg(format('c.%I IS NOT NULL', a.attname), ' AND '), k.confrelid::regclass,"
    " string_agg(format('p.%I = c.%I', b.attname, a.attname), ' AND '))"
    " FROM pg_constraint k CROSS JOIN LATERAL unnest(k.conkey, k.confkey) AS pair (child, parent)"
    " JOIN pg_attribute a ON a.attrelid = k.conrelid AND a.attnum = pair.child"
    " JOIN pg_attribute b ON b.attrelid = k.confrelid AND b.attnum = pair.parent"
    " WHERE k.contype = 'f' AND k.connamespace = current_schema()::regnamespace"
    " GROUP BY k.oid, k.conname, k.conrelid, k.confrelid";

/// Returns one statement per index; none without the extension or the right to use it.
const char* const IndexStatements =
    "SELECT format('SELECT bt_index_check(%L::regclass, true)', i.indexrelid::regclass)"
    " FROM pg_index i JOIN pg_class c ON c.oid = i.indexrelid"
    " WHERE c.relnamespace = current_schema()::regnamespace"
    " AND has_function_privilege(to_regprocedure('bt_index_check(regclass,boolean)'), 'EXECUTE')";

std::string findDamageOnServer(Connection& connection)
{
    connection.exec(QStringLiteral("SET LOCAL statement_timeout = 0"));
    for (const char* statements : {ReadingStatements, IndexStatements}) {
        for (const std::string& statement : texts(connection, QString::fromLatin1(statements))) {
            connection.exec(QString::fromStdString(statement));
        }
    }
    for (const std::string& statement : texts(connection, QString::fromLatin1(ReferenceStatements))) {
        for (const std::string& reference : texts(connection, QString::fromStdString(statement))) {
            return utils::filled(utils::text("service", "数据引用不完整: %1"), reference);
        }
    }
    return {};
}

} // namespace

std::string findDamage(Connection& connection)
{
    return connection.isPostgres() ? findDamageOnServer(connection) : findDamageInFile(connection);
}

} // namespace service
