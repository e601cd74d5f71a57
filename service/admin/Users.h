// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/admin/Administration.h"
#include "service/store/Users.h"

#include <set>
#include <string>

namespace service
{

/// Changes users. Each change is one transaction with one audit row, which never contains a password or its hash. All
/// throw `Refusal` (InvalidValue, Duplicate, NotFound, ResourceExhausted) and `StoreError`, and return false if there
/// is nothing to change.
class UserAdministration
{
public:
    UserAdministration(Store& store, SubSystem server, std::string administrator);

    struct NewUser {
        std::string login;
        std::string displayName;
        std::string password;
        std::string institution; ///< id or name; empty: not bound to an institution
        std::set<int> rights;
    };
    void add(const NewUser& user);
    bool setEnabled(const std::string& login, bool isEnabled);
    void setPassword(const std::string& login, const std::string& password);
    /// For `institution` see `NewUser`.
    bool bind(const std::string& login, const std::string& institution);
    bool grant(const std::string& login, const std::set<int>& rights);
    bool revoke(const std::string& login, const std::set<int>& rights);

private:
    bool change(const std::string& login, const std::function<void(Administration&, StoredUser&)>& edit);

    Store& m_store;
    SubSystem m_server;
    std::string m_administrator;
};

/// The institution with this id or name. Throws `Refusal` (NotFound).
std::int64_t requireInstitution(const ServerData& data, const std::string& text);

} // namespace service
