// SPDX-License-Identifier: Apache-2.0
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

/// Writes institutions, accounts and products in the caller's transaction, with statements that are prepared once. An
/// existing record takes the new values; it is found by id, or an account by type, account id and unit id.
class MasterDataWriter
{
public:
    MasterDataWriter(Connection& connection, const SubSystem& server);

    void putInstitution(std::int64_t id, const std::string& name);
    /// Returns the account's row id. Ignores the institution name of the record.
    std::int64_t putAccount(const nvservice::CAccountInfo& account, int stateCode, bool excluded);
    void putProduct(const StoredProduct& product);
    /// Adds the account to the product unless it is there already.
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
