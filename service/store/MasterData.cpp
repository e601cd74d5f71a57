// SPDX-License-Identifier: Apache-2.0
#include "service/store/MasterData.h"
#include "service/store/Query.h"

namespace service
{

namespace
{

const QString SubSystemColumns = QStringLiteral("SELECT id, name, system_tag FROM sub_system");

SubSystem subSystemOfRow(const Query& row)
{
    return {row.integer(0), row.text(1), row.text(2)};
}

} // namespace

SubSystem insertSubSystem(Connection& connection, const std::string& name, const std::string& systemTag)
{
    // A server with this tag that a restore has removed has assigned ids, too.
    Query insert(connection,
                 QStringLiteral("INSERT INTO sub_system (name, system_tag, next_group_id, next_rule_id) VALUES (?, ?,"
                                " coalesce((SELECT max(next_group_id) FROM epoch WHERE system_tag = ?), 1),"
                                " coalesce((SELECT max(next_rule_id) FROM epoch WHERE system_tag = ?), 1))"
                                " RETURNING id"));
    insert.bind(name, systemTag, systemTag, systemTag).runAndNext();
    return {insert.integer(0), name, systemTag};
}

std::vector<SubSystem> loadSubSystems(Connection& connection)
{
    return Query(connection, SubSystemColumns + QStringLiteral(" ORDER BY id")).all(subSystemOfRow);
}

std::optional<SubSystem> findSubSystem(Connection& connection, const std::string& name)
{
    return Query(connection, SubSystemColumns + QStringLiteral(" WHERE name = ?")).bind(name).first(subSystemOfRow);
}

void putInstitution(const ServerData& data, std::int64_t id, const std::string& name)
{
    Query put(data.connection,
              QStringLiteral("INSERT INTO institution (server_id, institution_id, name) VALUES (?, ?, ?)"
                             " ON CONFLICT (server_id, institution_id) DO UPDATE SET name = excluded.name"));
    put.bind(data.server.id, id, name).run();
}

std::int64_t putAccount(const ServerData& data, const nvservice::CAccountInfo& account, int stateCode, bool excluded)
{
    Query put(data.connection,
              QStringLiteral("INSERT INTO account (server_id, broker_type, account_id, unit_id, account_name,"
                             " institution_id, state_code, excluded) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"
                             " ON CONFLICT (server_id, broker_type, account_id, unit_id) DO UPDATE SET"
                             " account_name = excluded.account_name, institution_id = excluded.institution_id,"
                             " state_code = excluded.state_code, excluded = excluded.excluded RETURNING id"));
    put.bind(data.server.id, account.brokerType, account.accountId, account.unitId, account.accountName);
    put.bind(institutionOf(account.institutionId), stateCode, excluded).runAndNext();
    return put.integer(0);
}

void putProduct(const ServerData& data, const StoredProduct& product)
{
    Query put(data.connection,
              QStringLiteral("INSERT INTO product (server_id, product_id, name, institution_id, excluded)"
                             " VALUES (?, ?, ?, ?, ?) ON CONFLICT (server_id, product_id) DO UPDATE SET"
                             " name = excluded.name, institution_id = excluded.institution_id,"
                             " excluded = excluded.excluded"));
    put.bind(data.server.id, product.id, product.name, product.institution, product.excluded).run();
}

void putProductAccount(const ServerData& data, std::int32_t productId, std::int64_t accountRow)
{
    Query put(data.connection, QStringLiteral("INSERT INTO product_account (server_id, product_id, account_id)"
                                              " VALUES (?, ?, ?) ON CONFLICT DO NOTHING"));
    put.bind(data.server.id, productId, accountRow).run();
}

} // namespace service
