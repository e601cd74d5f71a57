// SPDX-License-Identifier: Apache-2.0
#include "service/store/Securities.h"

#include <boost/make_shared.hpp>

namespace service
{

using nvservice::CCategoryInfo;
using nvservice::CSecurityInfo;

namespace
{

const QString CategoryColumns =
    QStringLiteral("SELECT category_id, name, category_type, sys_type, parent_id FROM category WHERE server_id = ?");

void readCategory(const Query& query, const SubSystem& server, CCategoryInfo& category)
{
    category.categoryId = static_cast<std::int32_t>(query.integer(0));
    category.categoryName = query.text(1);
    category.categoryType = static_cast<std::int32_t>(query.integer(2));
    category.sysType = static_cast<std::int32_t>(query.integer(3));
    category.parentId = query.isNull(4) ? -1 : static_cast<std::int32_t>(query.integer(4));
    category.setSystemTag(server.systemTag);
}

} // namespace

std::vector<boost::shared_ptr<CCategoryInfo>> loadCategories(Connection& connection, const SubSystem& server)
{
    std::vector<boost::shared_ptr<CCategoryInfo>> categories;
    Query query(connection, CategoryColumns + QStringLiteral(" ORDER BY category_id"));
    query.bind(server.id);
    for (query.run(); query.next();) {
        categories.push_back(boost::make_shared<CCategoryInfo>());
        readCategory(query, server, *categories.back());
    }
    return categories;
}

CategoryFinder::CategoryFinder(Connection& connection, const SubSystem& server)
    : m_server(server), m_query(connection, CategoryColumns + QStringLiteral(" AND category_id = ?"))
{
}

std::optional<CCategoryInfo> CategoryFinder::find(std::int64_t categoryId)
{
    m_query.bind(m_server.id).bind(categoryId);
    if (!m_query.runAndNext()) {
        return std::nullopt;
    }
    CCategoryInfo category;
    readCategory(m_query, m_server, category);
    return category;
}

std::vector<boost::shared_ptr<CSecurityInfo>> loadSecurities(Connection& connection, const SubSystem& server,
                                                             std::optional<std::int64_t> traderType)
{
    std::vector<boost::shared_ptr<CSecurityInfo>> securities;
    const QString ofType = traderType ? QStringLiteral(" AND trader_type IN (?, 0)") : QString();
    Query query(connection, QStringLiteral("SELECT market, security_code, name, sys_type, trader_type FROM security"
                                           " WHERE server_id = ?") +
                                ofType + QStringLiteral(" ORDER BY market, security_code"));
    query.bind(server.id).bindIfSet(traderType);
    for (query.run(); query.next();) {
        auto security = boost::make_shared<CSecurityInfo>();
        security->market = query.text(0);
        security->securityCode = query.text(1);
        security->securityName = query.text(2);
        security->sysType = static_cast<std::int32_t>(query.integer(3));
        security->traderType = static_cast<nvservice::EZvTraderType>(query.integer(4));
        security->setSystemTag(server.systemTag);
        securities.push_back(security);
    }
    return securities;
}

SecurityWriter::SecurityWriter(Connection& connection, const SubSystem& server)
    : m_server(server.id),
      m_putCategory(connection,
                    QStringLiteral("INSERT INTO category (server_id, category_id, name, category_type, sys_type,"
                                   " parent_id) VALUES (?, ?, ?, ?, ?, ?)"
                                   " ON CONFLICT (server_id, category_id) DO UPDATE SET name = excluded.name,"
                                   " category_type = excluded.category_type, sys_type = excluded.sys_type,"
                                   " parent_id = excluded.parent_id")),
      m_putSecurity(connection, QStringLiteral("INSERT INTO security (server_id, market, security_code, name, sys_type,"
                                               " trader_type) VALUES (?, ?, ?, ?, ?, ?)"
                                               " ON CONFLICT (server_id, market, security_code) DO UPDATE SET"
                                               " name = excluded.name, sys_type = excluded.sys_type,"
                                               " trader_type = excluded.trader_type"))
{
}

void SecurityWriter::put(const CCategoryInfo& category)
{
    m_putCategory.bind(m_server).bind(category.categoryId).bind(category.categoryName).bind(category.categoryType);
    m_putCategory.bind(category.sysType);
    category.parentId == -1 ? m_putCategory.bindNull() : m_putCategory.bind(category.parentId);
    m_putCategory.run();
}

void SecurityWriter::put(const CSecurityInfo& security)
{
    m_putSecurity.bind(m_server).bind(security.market).bind(security.securityCode).bind(security.securityName);
    m_putSecurity.bind(security.sysType).bind(static_cast<std::int64_t>(security.traderType)).run();
}

} // namespace service
