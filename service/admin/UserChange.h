// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/admin/Administration.h"
#include "service/store/Users.h"

#include <functional>
#include <string>

namespace service
{

// Changes of users. Each is one transaction with one audit row, which never contains a password or its hash.

/// A command that changes the user who is its first argument.
Command userCommand(const char* name, const QString& summary, std::function<int(Invocation&)> run);
/// The first argument of such a command.
std::string loginOf(const Invocation& call);

/// The key of a user in the audit.
std::string userKey(const std::string& login);
/// The user as the audit stores it. Of the password it only says that there is a new one.
bson::BSONObj userDocument(const SubSystem& server, const StoredUser& user, bool hasNewPassword);

/// Changes a user and reports it. Returns the exit code. Throws `Refusal` (NotFound and those of `edit`) and
/// `StoreError`.
int changeUser(const Administrator& administrator, const std::string& login,
               const std::function<void(const ServerData&, StoredUser&)>& edit);

} // namespace service
