// SPDX-License-Identifier: Apache-2.0
#include "service/store/Accounts.h"
#include "service/store/Query.h"

#include <nvservice/NoInstitutionId.h>

#include <QStringList>

namespace service
{

namespace
{

const QString Columns =
    QStringLiteral("SELECT a.id, a.broker_type, a.account_id, a.unit_id, a.account_name, a.institution_id,"
                   " a.state_code, a.excluded, i.name FROM ");
const QString WithInstitution =
    QStringLiteral(" LEFT JOIN institution i ON i.server_id = a.server_id AND i.institution_id = a.institution_id");
const QString AccountsOfServer =
    Columns + QStringLiteral("account a") + WithInstitution + QStringLiteral(" WHERE a.server_id = ?");

StoredAccount accountOfRow(const Query& row, const SubSystem& server)
{
    StoredAccount account;
    account.row = row.integer(0);
    account.info = boost::make_shared<nvservice::CAccountInfo>();
    account.info->setSystemTag(server.systemTag);
    account.info->brokerType = static_cast<nvservice::EZVBrokerType>(row.integer(1));
    account.info->accountId = row.text(2);
    account.info->unitId = row.text(3);
    account.info->accountName = row.text(4);
    if (!row.isNull(5)) {
        account.info->institutionId = row.number(5);
        account.info->institutionName = row.text(8);
    }
    account.stateCode = row.number(6);
    account.excluded = row.integer(7) != 0;
    return account;
}

auto readAccount(const ServerData& data)
{
    return [&server = data.server](const Query& row) { return accountOfRow(row, server); };
}

} // namespace

InstitutionId institutionOf(std::int32_t idInRecord)
{
    return idInRecord == nvservice::NoInstitutionId ? std::nullopt : InstitutionId(idInRecord);
}

std::vector<boost::shared_ptr<nvservice::CInstitutionInfo>> loadInstitutions(const ServerData& data,
                                                                             InstitutionId scope)
{
    const QString inScope = scope ? QStringLiteral(" AND institution_id = ?") : QString();
    Query query(data.connection, QStringLiteral("SELECT institution_id, name FROM institution WHERE server_id = ?") +
                                     inScope + QStringLiteral(" ORDER BY institution_id"));
    return query.bind(data.server.id).bindIfSet(scope).all([&data](const Query& row) {
        auto institution = boost::make_shared<nvservice::CInstitutionInfo>();
        institution->institutionId = row.number(0);
        institution->name = row.text(1);
        institution->setSystemTag(data.server.systemTag);
        return institution;
    });
}

std::unordered_map<std::int64_t, std::string> loadInstitutionNames(const ServerData& data)
{
    std::unordered_map<std::int64_t, std::string> names;
    Query query(data.connection, QStringLiteral("SELECT institution_id, name FROM institution WHERE server_id = ?"));
    for (query.bind(data.server.id).run(); query.next();) {
        names.emplace(query.integer(0), query.text(1));
    }
    return names;
}

std::optional<std::string> findInstitutionName(const ServerData& data, std::int64_t id)
{
    Query query(data.connection,
                QStringLiteral("SELECT name FROM institution WHERE server_id = ? AND institution_id = ?"));
    return query.bind(data.server.id, id).first([](const Query& row) { return row.text(0); });
}

std::vector<StoredAccount> loadAccounts(const ServerData& data, InstitutionId scope)
{
    const QString inScope = scope ? QStringLiteral(" AND a.institution_id = ?") : QString();
    Query query(data.connection,
                AccountsOfServer + inScope + QStringLiteral(" ORDER BY a.broker_type, a.account_id, a.unit_id"));
    return query.bind(data.server.id).bindIfSet(scope).all(readAccount(data));
}

std::optional<StoredAccount> findAccount(const ServerData& data, std::int64_t row)
{
    Query query(data.connection, AccountsOfServer + QStringLiteral(" AND a.id = ?"));
    return query.bind(data.server.id, row).first(readAccount(data));
}

std::vector<std::optional<StoredAccount>>
findAccounts(const ServerData& data, const std::vector<boost::shared_ptr<nvservice::CAccountInfo>>& named)
{
    constexpr std::size_t MostAtOnce = 16;
    constexpr int Ordinal = 9; // behind the account's columns
    std::vector<std::optional<StoredAccount>> found(named.size());
    for (std::size_t first = 0, count = 0; first < named.size(); first += count) {
        count = sizeOfBatch(named.size() - first, MostAtOnce);
        QStringList parts;
        for (std::size_t i = 0; i < count; ++i) {
            parts << QStringLiteral("SELECT each.*, %1 FROM (").arg(i) + AccountsOfServer +
                         QStringLiteral(" AND a.broker_type = ? AND a.account_id = ? AND a.unit_id = ?) each");
        }
        Query query(data.connection, parts.join(QStringLiteral(" UNION ALL ")));
        for (std::size_t i = first; i < first + count; ++i) {
            query.bind(data.server.id, named[i]->brokerType, named[i]->accountId, named[i]->unitId);
        }
        for (query.run(); query.next();) {
            found[first + static_cast<std::size_t>(query.integer(Ordinal))] = accountOfRow(query, data.server);
        }
    }
    return found;
}

AccountsByRow accountsByRow(const std::vector<StoredAccount>& accounts)
{
    AccountsByRow byRow;
    byRow.reserve(accounts.size());
    for (const StoredAccount& account : accounts) {
        byRow.emplace(account.row, account.info);
    }
    return byRow;
}

std::vector<StoredAccount> loadMembers(const ServerData& data, std::int64_t groupId)
{
    Query query(data.connection,
                Columns + QStringLiteral("account_group_member m JOIN account a ON a.id = m.account_id") +
                    WithInstitution + QStringLiteral(" WHERE m.server_id = ? AND m.group_id = ? ORDER BY m.position"));
    return query.bind(data.server.id, groupId).all(readAccount(data));
}

std::vector<boost::shared_ptr<nvservice::CProductInfo>> loadProducts(const ServerData& data, InstitutionId scope,
                                                                     const AccountsByRow& accounts)
{
    const QString inScope = scope ? QStringLiteral(" AND institution_id = ?") : QString();
    Query query(data.connection, QStringLiteral("SELECT product_id, name, excluded FROM product WHERE server_id = ?") +
                                     inScope + QStringLiteral(" ORDER BY product_id"));
    std::unordered_map<std::int64_t, nvservice::CProductInfo*> byId;
    auto products = query.bind(data.server.id).bindIfSet(scope).all([&](const Query& row) {
        auto product = boost::make_shared<nvservice::CProductInfo>();
        product->setSystemTag(data.server.systemTag);
        product->productId = row.number(0);
        product->productName = row.text(1);
        product->excluded = row.integer(2) != 0;
        byId.emplace(row.integer(0), product.get());
        return product;
    });

    Query members(data.connection,
                  QStringLiteral("SELECT product_id, account_id FROM product_account WHERE server_id = ?"
                                 " ORDER BY product_id, account_id"));
    for (members.bind(data.server.id).run(); members.next();) {
        const auto product = byId.find(members.integer(0));
        const auto account = accounts.find(members.integer(1));
        if (product != byId.end() && account != accounts.end()) {
            product->second->accounts.push_back(account->second);
        }
    }
    return products;
}

std::unordered_map<std::int64_t, std::int64_t> loadProductInstitutions(const ServerData& data)
{
    std::unordered_map<std::int64_t, std::int64_t> institutions;
    Query query(data.connection, QStringLiteral("SELECT product_id, institution_id FROM product"
                                                " WHERE server_id = ? AND institution_id IS NOT NULL"));
    for (query.bind(data.server.id).run(); query.next();) {
        institutions.emplace(query.integer(0), query.integer(1));
    }
    return institutions;
}

} // namespace service
