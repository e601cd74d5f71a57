// SPDX-License-Identifier: Apache-2.0
#include "service/store/Securities.h"
#include "service/store/Query.h"

#include <boost/make_shared.hpp>

namespace service
{

using nvservice::CCategoryInfo;
using nvservice::CSecurityInfo;

namespace
{

constexpr std::int32_t NoParent = -1;
const QString CategoryColumns =
    QStringLiteral("SELECT category_id, name, category_type, sys_type, parent_id FROM category WHERE server_id = ?");

CCategoryInfo categoryOfRow(const Query& row, const SubSystem& server)
{
    CCategoryInfo category;
    category.categoryId = row.number(0);
    category.categoryName = row.text(1);
    category.categoryType = row.number(2);
    category.sysType = row.number(3);
    category.parentId = row.isNull(4) ? NoParent : row.number(4);
    category.setSystemTag(server.systemTag);
    return category;
}

} // namespace

std::vector<boost::shared_ptr<CCategoryInfo>> loadCategories(const ServerData& data)
{
    Query query(data.connection, CategoryColumns + QStringLiteral(" ORDER BY category_id"));
    return query.bind(data.server.id).all([&data](const Query& row) {
        return boost::make_shared<CCategoryInfo>(categoryOfRow(row, data.server));
    });
}

std::optional<CCategoryInfo> findCategory(const ServerData& data, std::int64_t categoryId)
{
    Query query(data.connection, CategoryColumns + QStringLiteral(" AND category_id = ?"));
    return query.bind(data.server.id, categoryId).first([&data](const Query& row) {
        return categoryOfRow(row, data.server);
    });
}

std::vector<boost::shared_ptr<CSecurityInfo>> loadSecurities(const ServerData& data,
                                                             std::optional<std::int64_t> traderType)
{
    const QString ofType = traderType ? QStringLiteral(" AND trader_type IN (?, 0)") : QString();
    Query query(data.connection,
                QStringLiteral("SELECT market, security_code, name, sys_type, trader_type FROM security"
                               " WHERE server_id = ?") +
                    ofType + QStringLiteral(" ORDER BY market, security_code"));
    return query.bind(data.server.id).bindIfSet(traderType).all([&data](const Query& row) {
        auto security = boost::make_shared<CSecurityInfo>();
        security->market = row.text(0);
        security->securityCode = row.text(1);
        security->securityName = row.text(2);
        security->sysType = row.number(3);
        security->traderType = static_cast<nvservice::EZvTraderType>(row.integer(4));
        security->setSystemTag(data.server.systemTag);
        return security;
    });
}

void putCategory(const ServerData& data, const CCategoryInfo& category)
{
    Query put(data.connection,
              QStringLiteral("INSERT INTO category (server_id, category_id, name, category_type, sys_type, parent_id)"
                             " VALUES (?, ?, ?, ?, ?, ?) ON CONFLICT (server_id, category_id) DO UPDATE SET"
                             " name = excluded.name, category_type = excluded.category_type,"
                             " sys_type = excluded.sys_type, parent_id = excluded.parent_id"));
    const auto parent = category.parentId == NoParent ? std::nullopt : std::optional<std::int64_t>(category.parentId);
    put.bind(data.server.id, category.categoryId, category.categoryName, category.categoryType, category.sysType);
    put.bind(parent).run();
}

void putSecurity(const ServerData& data, const CSecurityInfo& security)
{
    Query put(data.connection,
              QStringLiteral("INSERT INTO security (server_id, market, security_code, name, sys_type, trader_type)"
                             " VALUES (?, ?, ?, ?, ?, ?) ON CONFLICT (server_id, market, security_code) DO UPDATE SET"
                             " name = excluded.name, sys_type = excluded.sys_type,"
                             " trader_type = excluded.trader_type"));
    put.bind(data.server.id, security.market, security.securityCode, security.securityName, security.sysType);
    put.bind(security.traderType).run();
}

} // namespace service
