// SPDX-License-Identifier: Apache-2.0
#include "service/store/Query.h"
#include "service/store/PostgresLink.h"

#include <utils/Translation.h>

#include <QSqlError>

#include <algorithm>

namespace service
{

Query::Query(Connection& connection, const QString& sql)
    : m_connection(connection), m_sql(sql), m_query(connection.takeStatement(sql))
{
}

Query::~Query()
{
    m_connection.giveBackStatement(m_sql, std::move(m_query));
}

Query& Query::bind(std::int64_t value)
{
    m_query->bindValue(m_bound++, static_cast<qlonglong>(value));
    return *this;
}

Query& Query::bind(const std::string& value)
{
    if (value.find('\0') != std::string::npos) {
        throw StoreError(utils::EErrorCode::InvalidValue, utils::text("service", "文本中不能包含空字符"));
    }
    m_query->bindValue(m_bound++, QString::fromStdString(value));
    return *this;
}

Query& Query::bind(const QByteArray& value)
{
    m_query->bindValue(m_bound++, value);
    return *this;
}

Query& Query::bind(const std::optional<std::int64_t>& value)
{
    m_query->bindValue(m_bound++, value ? QVariant(static_cast<qlonglong>(*value)) : QVariant());
    return *this;
}

Query& Query::run()
{
    m_bound = 0;
    m_connection.checkFault(m_sql);
    if (m_connection.mayWait()) {
        m_connection.postgres().sendWaiting();
    }
    if (!m_query->exec()) {
        throw m_connection.errorOf(m_query->lastError());
    }
    return *this;
}

void Query::runLater()
{
    if (!m_connection.mayWait()) {
        run();
        return;
    }
    std::vector<QVariant> values;
    for (int i = 0; i < m_bound; ++i) {
        values.push_back(m_query->boundValue(i));
    }
    m_bound = 0;
    m_connection.checkFault(m_sql);
    m_connection.postgres().execLater(m_sql, values);
}

bool Query::runAndNext()
{
    run();
    return next();
}

bool Query::next()
{
    if (m_query->next()) {
        return true;
    }
    if (m_query->lastError().isValid()) {
        throw m_connection.errorOf(m_query->lastError());
    }
    return false;
}

std::string Query::text(int column) const
{
    return isNull(column) ? std::string() : m_query->value(column).toString().toStdString();
}

std::optional<std::int64_t> Query::optionalInteger(int column) const
{
    return isNull(column) ? std::nullopt : std::make_optional(integer(column));
}

std::size_t sizeOfBatch(std::size_t left, std::size_t most)
{
    std::size_t size = 1;
    while (2 * size <= std::min(left, most)) {
        size *= 2;
    }
    return size;
}

} // namespace service
