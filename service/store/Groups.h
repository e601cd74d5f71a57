// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Accounts.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/EZvDataOperation.h>

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
loadGroups(Connection& connection, const SubSystem& server, InstitutionId scope, const AccountsByRow& accounts,
           const std::function<void(const nvservice::CAccountGroup&, const StoreError&)>& broken = {});
std::optional<StoredGroup> findGroup(Connection& connection, const SubSystem& server, std::int64_t groupId);
/// The name and the institution of a group.
struct GroupHead {
    std::string name;
    InstitutionId institution;
};
std::optional<GroupHead> findGroupHead(Connection& connection, const SubSystem& server, std::int64_t groupId);
/// The id of the group with exactly this name.
std::optional<std::int64_t> findGroupByName(Connection& connection, const SubSystem& server, const std::string& name);
/// The change that deleted the group; empty if it was not deleted.
std::optional<Change> findGroupDeletion(Connection& connection, const SubSystem& server, std::int64_t groupId);

/// Assigns an id that no group of the server has or had.
std::int32_t takeGroupId(Connection& connection, const SubSystem& server);

/// Writes groups with their members, their history and, for a new group, its risk configuration. Statements are
/// prepared once, so use one writer for many groups. Everything runs in the caller's transaction.
class GroupWriter
{
public:
    GroupWriter(Connection& connection, const SubSystem& server);

    /// Stores a new group with the id and revision of the record.
    void insert(const nvservice::CAccountGroup& group, const std::vector<std::int64_t>& accountRows,
                const Change& change);
    /// Stores the record with its revision if the stored revision is `oldRevision`; false otherwise.
    bool update(const nvservice::CAccountGroup& group, const std::vector<std::int64_t>& accountRows,
                std::int64_t oldRevision, const Change& change);
    /// Deletes the group if its revision is that of the record; false otherwise. The history gets the next revision.
    bool remove(const nvservice::CAccountGroup& group, const std::vector<std::int64_t>& accountRows,
                const Change& change);

private:
    void insertMembers(std::int64_t groupId, const std::vector<std::int64_t>& accountRows);
    void insertHistory(const nvservice::CAccountGroup& group, const std::vector<std::int64_t>& accountRows,
                       std::int64_t revision, nvservice::EZvDataOperation operation, const Change& change,
                       const QByteArray& riskConfig);

    Connection& m_connection;
    std::int64_t m_server;
    Query m_insertGroup;
    Query m_insertRiskConfig;
    Query m_insertHistory;
};

} // namespace service
