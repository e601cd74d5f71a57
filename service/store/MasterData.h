// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Accounts.h"

namespace service
{

/// Stores a new server.
SubSystem insertSubSystem(Connection& connection, const std::string& name, const std::string& systemTag);
/// In the order of their ids.
std::vector<SubSystem> loadSubSystems(Connection& connection);
std::optional<SubSystem> findSubSystem(Connection& connection, const std::string& name);

struct StoredProduct {
    std::int32_t id = 0;
    std::string name;
    InstitutionId institution;
    bool excluded = false;
};

// These write in the caller's transaction. An existing record takes the new values; it is found by id, or an account by
// type, account id and unit id.

void putInstitution(const ServerData& data, std::int64_t id, const std::string& name);
/// Returns the account's row id. Ignores the institution name of the record.
std::int64_t putAccount(const ServerData& data, const nvservice::CAccountInfo& account, int stateCode, bool excluded);
void putProduct(const ServerData& data, const StoredProduct& product);
/// Adds the account to the product unless it is there already.
void putProductAccount(const ServerData& data, std::int32_t productId, std::int64_t accountRow);

} // namespace service
