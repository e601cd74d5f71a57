// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Connection.h"
#include "service/store/Store.h"

#include <nvservice/CAccountInfo.h>
#include <nvservice/CInstitutionInfo.h>
#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/CProductInfo.h>

#include <boost/shared_ptr.hpp>

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace service
{

using InstitutionId = std::optional<std::int64_t>; ///< empty: none

struct StoredAccount {
    std::int64_t row = 0;
    boost::shared_ptr<nvservice::CAccountInfo> info;
    int stateCode = 0;
    bool excluded = false;
};

using AccountsByRow = std::unordered_map<std::int64_t, boost::shared_ptr<nvservice::CAccountInfo>>;

/// The institutions of the server, or the one of the scope, in the order of their ids.
std::vector<boost::shared_ptr<nvservice::CInstitutionInfo>>
loadInstitutions(Connection& connection, const SubSystem& server, InstitutionId scope);
std::unordered_map<std::int64_t, std::string> loadInstitutionNames(Connection& connection, const SubSystem& server);
/// Empty if there is no such institution.
std::optional<std::string> findInstitutionName(Connection& connection, const SubSystem& server, std::int64_t id);

/// All accounts of the server, or those of one institution, by type, account id and unit id.
std::vector<StoredAccount> loadAccounts(Connection& connection, const SubSystem& server, InstitutionId scope);
std::optional<StoredAccount> findAccount(Connection& connection, const SubSystem& server, std::int64_t row);
AccountsByRow accountsByRow(const std::vector<StoredAccount>& accounts);

/// The stored accounts with the types and ids of the named ones, in their order; empty where there is none.
std::vector<std::optional<StoredAccount>>
findAccounts(Connection& connection, const SubSystem& server,
             const std::vector<boost::shared_ptr<nvservice::CAccountInfo>>& named);

/// Products in the order of their ids, with those of their accounts that are in `accounts`.
std::vector<boost::shared_ptr<nvservice::CProductInfo>>
loadProducts(Connection& connection, const SubSystem& server, InstitutionId scope, const AccountsByRow& accounts);

} // namespace service
