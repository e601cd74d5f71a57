// SPDX-License-Identifier: Apache-2.0
#include "service/store/Accounts.h"

#include <QStringList>

namespace service
{

namespace
{

const QString AccountColumns = QStringLiteral(
    "SELECT a.id, a.broker_type, a.account_id, a.unit_id, a.account_name, a.institution_id, a.state_code, a.excluded,"
    " i.name FROM account a"
    " LEFT JOIN institution i ON i.server_id = a.server_id AND i.institution_id = a.institution_id"
    " WHERE a.server_id = ?");

StoredAccount accountOfRow(const Query& query, const SubSystem& server)
{
    StoredAccount account;
    account.row = query.integer(0);
    account.info = boost::make_shared<nvservice::CAccountInfo>();
    account.info->setSystemTag(server.systemTag);
    account.info->brokerType = static_cast<nvservice::EZVBrokerType>(query.integer(1));
    account.info->accountId = query.text(2);
    account.info->unitId = query.text(3);
    account.info->accountName = query.text(4);
    if (!query.isNull(5)) {
        account.info->institutionId = static_cast<std::int32_t>(query.integer(5));
        account.info->institutionName = query.text(8);
    }
    account.stateCode = static_cast<int>(query.integer(6));
    account.excluded = query.integer(7) != 0;
    return account;
}

} // namespace

std::vector<boost::shared_ptr<nvservice::CInstitutionInfo>>
loadInstitutions(Connection& connection, const SubSystem& server, InstitutionId scope)
{
    std::vector<boost::shared_ptr<nvservice::CInstitutionInfo>> institutions;
    const QString inScope = scope ? QStringLiteral(" AND institution_id = ?") : QString();
    Query query(connection, QStringLiteral("SELECT institution_id, name FROM institution WHERE server_id = ?") +
                                inScope + QStringLiteral(" ORDER BY institution_id"));
    query.bind(server.id).bindIfSet(scope);
    for (query.run(); query.next();) {
        auto institution = boost::make_shared<nvservice::CInstitutionInfo>();
        institution->institutionId = static_cast<std::int32_t>(query.integer(0));
        institution->name = query.text(1);
        institution->setSystemTag(server.systemTag);
        institutions.push_back(institution);
    }
    return institutions;
}

std::unordered_map<std::int64_t, std::string> loadInstitutionNames(Connection& connection, const SubSystem& server)
{
    std::unordered_map<std::int64_t, std::string> names;
    Query query(connection, QStringLiteral("SELECT institution_id, name FROM institution WHERE server_id = ?"));
    query.bind(server.id);
    for (query.run(); query.next();) {
        names.emplace(query.integer(0), query.text(1));
    }
    return names;
}

std::optional<std::string> findInstitutionName(Connection& connection, const SubSystem& server, std::int64_t id)
{
    Query query(connection, QStringLiteral("SELECT name FROM institution WHERE server_id = ? AND institution_id = ?"));
    query.bind(server.id).bind(id);
    if (!query.runAndNext()) {
        return std::nullopt;
    }
    return query.text(0);
}

std::vector<StoredAccount> loadAccounts(Connection& connection, const SubSystem& server, InstitutionId scope)
{
    std::vector<StoredAccount> accounts;
    const QString inScope = scope ? QStringLiteral(" AND a.institution_id = ?") : QString();
    Query query(connection,
                AccountColumns + inScope + QStringLiteral(" ORDER BY a.broker_type, a.account_id, a.unit_id"));
    query.bind(server.id).bindIfSet(scope);
    for (query.run(); query.next();) {
        accounts.push_back(accountOfRow(query, server));
    }
    return accounts;
}

std::optional<StoredAccount> findAccount(Connection& connection, const SubSystem& server, std::int64_t row)
{
    Query query(connection, AccountColumns + QStringLiteral(" AND a.id = ?"));
    query.bind(server.id).bind(row);
    if (!query.runAndNext()) {
        return std::nullopt;
    }
    return accountOfRow(query, server);
}

std::vector<std::optional<StoredAccount>>
findAccounts(Connection& connection, const SubSystem& server,
             const std::vector<boost::shared_ptr<nvservice::CAccountInfo>>& named)
{
    constexpr std::size_t MostAtOnce = 16;
    constexpr int Ordinal = 9; // behind the account's columns
    std::vector<std::optional<StoredAccount>> found(named.size());
    for (std::size_t first = 0, count = 0; first < named.size(); first += count) {
        count = sizeOfBatch(named.size() - first, MostAtOnce);
        QStringList parts;
        for (std::size_t i = 0; i < count; ++i) {
            parts << QStringLiteral("SELECT each.*, %1 FROM (").arg(i) + AccountColumns +
                         QStringLiteral(" AND a.broker_type = ? AND a.account_id = ? AND a.unit_id = ?) each");
        }
        Query query(connection, parts.join(QStringLiteral(" UNION ALL ")));
        for (std::size_t i = first; i < first + count; ++i) {
            query.bind(server.id).bind(static_cast<int>(named[i]->brokerType));
            query.bind(named[i]->accountId).bind(named[i]->unitId);
        }
        for (query.run(); query.next();) {
            found[first + static_cast<std::size_t>(query.integer(Ordinal))] = accountOfRow(query, server);
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

std::vector<boost::shared_ptr<nvservice::CProductInfo>> loadProducts(Connection& connection, const SubSystem& server,
                                                                     InstitutionId scope, const AccountsByRow& accounts)
{
    std::vector<boost::shared_ptr<nvservice::CProductInfo>> products;
    std::unordered_map<std::int64_t, nvservice::CProductInfo*> byId;
    const QString inScope = scope ? QStringLiteral(" AND institution_id = ?") : QString();
    Query query(connection, QStringLiteral("SELECT product_id, name, excluded FROM product WHERE server_id = ?") +
                                inScope + QStringLiteral(" ORDER BY product_id"));
    query.bind(server.id).bindIfSet(scope);
    for (query.run(); query.next();) {
        auto product = boost::make_shared<nvservice::CProductInfo>();
        product->setSystemTag(server.systemTag);
        product->productId = static_cast<std::int32_t>(query.integer(0));
        product->productName = query.text(1);
        product->excluded = query.integer(2) != 0;
        byId.emplace(query.integer(0), product.get());
        products.push_back(product);
    }

    Query members(connection, QStringLiteral("SELECT product_id, account_id FROM product_account WHERE server_id = ?"
                                             " ORDER BY product_id, account_id"));
    members.bind(server.id);
    for (members.run(); members.next();) {
        const auto product = byId.find(members.integer(0));
        const auto account = accounts.find(members.integer(1));
        if (product != byId.end() && account != accounts.end()) {
            product->second->accounts.push_back(account->second);
        }
    }
    return products;
}

} // namespace service
