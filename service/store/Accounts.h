// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/ServerData.h"

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

/// The id in a record; empty for the one that means none.
InstitutionId institutionOf(std::int32_t idInRecord);

struct StoredAccount {
    std::int64_t row = 0;
    boost::shared_ptr<nvservice::CAccountInfo> info;
    int stateCode = 0;
    bool excluded = false;
};

using AccountsByRow = std::unordered_map<std::int64_t, boost::shared_ptr<nvservice::CAccountInfo>>;

/// The institutions of the server, or the one of the scope, in the order of their ids.
std::vector<boost::shared_ptr<nvservice::CInstitutionInfo>> loadInstitutions(const ServerData& data,
                                                                             InstitutionId scope);
std::unordered_map<std::int64_t, std::string> loadInstitutionNames(const ServerData& data);
/// Empty if there is no such institution.
std::optional<std::string> findInstitutionName(const ServerData& data, std::int64_t id);

/// All accounts of the server, or those of one institution, by type, account id and unit id.
std::vector<StoredAccount> loadAccounts(const ServerData& data, InstitutionId scope);
std::optional<StoredAccount> findAccount(const ServerData& data, std::int64_t row);
AccountsByRow accountsByRow(const std::vector<StoredAccount>& accounts);

/// The stored accounts with the types and ids of the named ones, in their order; empty where there is none.
std::vector<std::optional<StoredAccount>>
findAccounts(const ServerData& data, const std::vector<boost::shared_ptr<nvservice::CAccountInfo>>& named);

/// The accounts of a group in its order.
std::vector<StoredAccount> loadMembers(const ServerData& data, std::int64_t groupId);

/// Products in the order of their ids, with those of their accounts that are in `accounts`.
std::vector<boost::shared_ptr<nvservice::CProductInfo>> loadProducts(const ServerData& data, InstitutionId scope,
                                                                     const AccountsByRow& accounts);
/// The institutions of all products that have one, by product id.
std::unordered_map<std::int64_t, std::int64_t> loadProductInstitutions(const ServerData& data);

} // namespace service
