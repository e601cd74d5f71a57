#pragma once

#include "service/store/Accounts.h"

namespace service
{

/// Stores a new server.
SubSystem insertSubSystem(Connection& connection, const std::string& name, const std::string& systemTag);
std::optional<SubSystem> findSubSystem(Connection& connection, const std::string& name);

struct StoredProduct {
    std::int32_t id = 0;
    std::string name;
    InstitutionId institution;
    bool excluded = false;
};

/// Writes institutions, accounts and products with statements that are prepared once, inside the caller's transaction.
/// What exists already (by id, or for an account by type, account id and unit id) takes the new values.
class MasterDataWriter
{
public:
    MasterDataWriter(Connection& connection, const SubSystem& server);

    void putInstitution(std::int64_t id, const std::string& name);
    /// Gives the account's row id. The record's institution name is not looked at.
    std::int64_t putAccount(const nvservice::CAccountInfo& account, int stateCode, bool excluded);
    void putProduct(const StoredProduct& product);
    /// Adds the account to the product; twice is once.
    void putProductAccount(std::int32_t productId, std::int64_t accountRow);

private:
    std::int64_t m_server;
    Query m_putInstitution;
    Query m_putAccount;
    Query m_findAccount;
    Query m_putProduct;
    Query m_putProductAccount;
};

} // namespace service
