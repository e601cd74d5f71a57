// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Accounts.h"

#include <map>
#include <set>
#include <string>

namespace service
{

struct StoredUser {
    std::int64_t row = 0;
    std::string login;
    std::string displayName;
    std::string passwordHash;
    InstitutionId institution; ///< empty: sees every institution
    bool enabled = false;
    std::set<int> rights;

    bool has(int right) const { return rights.count(right) != 0; }
};

std::optional<StoredUser> findUser(const ServerData& data, const std::string& login);
std::optional<StoredUser> findUser(const ServerData& data, std::int64_t row);
/// The display names by log-in; without those that are no users.
std::map<std::string, std::string> loadUserNames(const ServerData& data, const std::set<std::string>& logins);
/// All users of the server, by log-in.
std::vector<StoredUser> loadUsers(const ServerData& data);
/// The same, each with no other right than this one, if the user has it.
std::vector<StoredUser> loadUsersWithRight(const ServerData& data, int right);
/// Stores a new user and returns its row id.
std::int64_t insertUser(const ServerData& data, const StoredUser& user);
/// Stores all values of a user except the log-in name.
void updateUser(Connection& connection, const StoredUser& user);

} // namespace service
