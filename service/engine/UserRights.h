// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Users.h"

#include <QCoreApplication>

#include <string>
#include <vector>

namespace service
{

struct NamedRight {
    int id;
    std::string key;  ///< for command lines and files: "edit-account-group"
    std::string name; ///< for people: "编辑账号组"
};

constexpr char AuditRightName[] = QT_TRANSLATE_NOOP("service", "查看审计记录和检查结果"); ///< in texts

/// All rights of the service by id, with names in the language of the thread: operations, account types, system types
/// of categories.
const std::vector<NamedRight>& namedRights();

/// The right with this number, key or name; null if there is none.
const NamedRight* findRight(const std::string& text);
/// The name of a right; its number if it has none.
std::string nameOfRight(int id);

/// True for a user who sees the accounts of every type and institution, and all risk settings.
bool seesEverything(const StoredUser& user);

/// A user with every right and without an institution, who need not be in the store.
StoredUser userWithEveryRight(const std::string& login);

} // namespace service
