#pragma once

#include "service/store/Accounts.h"

#include <set>

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

std::optional<StoredUser> findUser(Connection& connection, const SubSystem& server, const std::string& login);
std::optional<StoredUser> findUser(Connection& connection, const SubSystem& server, std::int64_t row);
/// Stores a new user and gives its row id.
std::int64_t insertUser(Connection& connection, const SubSystem& server, const StoredUser& user);

} // namespace service
