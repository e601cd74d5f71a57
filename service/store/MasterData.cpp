// SPDX-License-Identifier: Apache-2.0
#include "service/store/MasterData.h"

#include <nvservice/NoInstitutionId.h>

namespace service
{

SubSystem insertSubSystem(Connection& connection, const std::string& name, const std::string& systemTag)
{
    // A sub-system of this tag that a restore has taken away gave out ids, too.
    Query insert(connection,
                 QStringLiteral("INSERT INTO sub_system (name, system_tag, next_group_id, next_rule_id) VALUES (?, ?,"
                                " coalesce((SELECT max(next_group_id) FROM epoch WHERE system_tag = ?), 1),"
                                " coalesce((SELECT max(next_rule_id) FROM epoch WHERE system_tag = ?), 1))"
                                " RETURNING id"));
    insert.bind(name).bind(systemTag).bind(systemTag).bind(systemTag).runAndNext();
    return {insert.integer(0), name, systemTag};
}

std::optional<SubSystem> findSubSystem(Connection& connection, const std::string& name)
{
    Query query(connection, QStringLiteral("SELECT id, name, system_tag FROM sub_system WHERE name = ?"));
    query.bind(name);
    if (!query.runAndNext()) {
        return std::nullopt;
    }
    return SubSystem{query.integer(0), query.text(1), query.text(2)};
}

MasterDataWriter::MasterDataWriter(Connection& connection, const SubSystem& server)
    : m_server(server.id),
      m_putInstitution(connection,
                       QStringLiteral("INSERT INTO institution (server_id, institution_id, name) VALUES (?, ?, ?)"
                                      " ON CONFLICT (server_id, institution_id) DO UPDATE SET name = excluded.name")),
      m_putAccount(connection,
                   QStringLiteral("INSERT INTO account (server_id, broker_type, account_id, unit_id, account_name,"
                                  " institution_id, state_code, excluded) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"
                                  " ON CONFLICT (server_id, broker_type, account_id, unit_id) DO UPDATE SET"
                                  " account_name = excluded.account_name, institution_id = excluded.institution_id,"
                                  " state_code = excluded.state_code, excluded = excluded.excluded")),
      m_findAccount(connection, QStringLiteral("SELECT id FROM account WHERE server_id = ? AND broker_type = ?"
                                               " AND account_id = ? AND unit_id = ?")),
      m_putProduct(connection,
                   QStringLiteral("INSERT INTO product (server_id, product_id, name, institution_id, excluded)"
                                  " VALUES (?, ?, ?, ?, ?) ON CONFLICT (server_id, product_id) DO UPDATE SET"
                                  " name = excluded.name, institution_id = excluded.institution_id,"
                                  " excluded = excluded.excluded")),
      m_putProductAccount(connection, QStringLiteral("INSERT INTO product_account (server_id, product_id, account_id)"
                                                     " VALUES (?, ?, ?) ON CONFLICT DO NOTHING"))
{
}

void MasterDataWriter::putInstitution(std::int64_t id, const std::string& name)
{
    m_putInstitution.bind(m_server).bind(id).bind(name).run();
}

std::int64_t MasterDataWriter::putAccount(const nvservice::CAccountInfo& account, int stateCode, bool excluded)
{
    const auto type = static_cast<std::int64_t>(account.brokerType);
    m_putAccount.bind(m_server).bind(type).bind(account.accountId).bind(account.unitId).bind(account.accountName);
    account.institutionId == nvservice::NoInstitutionId ? m_putAccount.bindNull()
                                                        : m_putAccount.bind(account.institutionId);
    m_putAccount.bind(stateCode).bind(excluded).run();
    m_findAccount.bind(m_server).bind(type).bind(account.accountId).bind(account.unitId);
    m_findAccount.runAndNext();
    return m_findAccount.integer(0);
}

void MasterDataWriter::putProduct(const StoredProduct& product)
{
    m_putProduct.bind(m_server).bind(product.id).bind(product.name).bind(product.institution);
    m_putProduct.bind(product.excluded).run();
}

void MasterDataWriter::putProductAccount(std::int32_t productId, std::int64_t accountRow)
{
    m_putProductAccount.bind(m_server).bind(productId).bind(accountRow).run();
}

} // namespace service
