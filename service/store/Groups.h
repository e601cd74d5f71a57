// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Accounts.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/EZvDataOperation.h>

#include <functional>

namespace service
{

using GroupPtr = boost::shared_ptr<nvservice::CAccountGroup>;

/// Who changed something, and when (milliseconds since 1970 UTC).
struct Change {
    std::string login;
    std::int64_t at = 0;
};

struct StoredGroup {
    GroupPtr record;
    std::vector<std::int64_t> accountRows; ///< in the order of the record's accounts
    Change lastChange;
};

/// The groups of the server, or those of one institution, in the order of their ids. `accounts` must have all accounts
/// of the server; the records share its objects. If the unknown fields of a group are unreadable, `broken` is called
/// and the group is returned without them; if `broken` is empty, `StoreError` is thrown.
std::vector<GroupPtr>
loadGroups(const ServerData& data, InstitutionId scope, const AccountsByRow& accounts,
           const std::function<void(const nvservice::CAccountGroup&, const StoreError&)>& broken = {});
std::optional<StoredGroup> findGroup(const ServerData& data, std::int64_t groupId);
/// The name and the institution of a group.
struct GroupHead {
    std::string name;
    InstitutionId institution;
};
std::optional<GroupHead> findGroupHead(const ServerData& data, std::int64_t groupId);
/// The id of the group with exactly this name.
std::optional<std::int64_t> findGroupByName(const ServerData& data, const std::string& name);
/// The change that deleted the group; empty if it was not deleted.
std::optional<Change> findGroupDeletion(const ServerData& data, std::int64_t groupId);

/// Assigns an id that no group of the server has or had.
std::int32_t takeGroupId(const ServerData& data);

// These write a group with its members and its history in the caller's transaction.

/// Stores a new group with the id and revision of the record, and its risk configuration.
void insertGroup(const ServerData& data, const nvservice::CAccountGroup& group,
                 const std::vector<std::int64_t>& accountRows, const Change& change);
/// Stores the record with its revision if the stored revision is `oldRevision`; false otherwise.
bool updateGroup(const ServerData& data, const nvservice::CAccountGroup& group,
                 const std::vector<std::int64_t>& accountRows, std::int64_t oldRevision, const Change& change);
/// Deletes the group if its revision is that of the record; false otherwise. The history gets the next revision.
bool deleteGroup(const ServerData& data, const nvservice::CAccountGroup& group,
                 const std::vector<std::int64_t>& accountRows, const Change& change);

} // namespace service
