// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Users.h"

#include <string>
#include <vector>

namespace service
{

struct NamedRight {
    int id;
    std::string key;  ///< for command lines and files: "edit-account-group"
    std::string name; ///< for people: "编辑账号组"
};

/// Every right that means something to the service, by id: operations, account types, system types of categories.
const std::vector<NamedRight>& namedRights();

/// The right that a number, key or name stands for; null for none.
const NamedRight* findRight(const std::string& text);
/// The name of a right; its number for one without.
std::string nameOfRight(int id);

/// Somebody with every right, bound to no institution, whom no row of the store needs to know.
StoredUser userWithEveryRight(const std::string& login);

} // namespace service
