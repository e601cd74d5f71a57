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

/// The groups of the server, or those of one institution, in the order of their ids. `accounts` holds every account of
/// the server; the records share its objects. A group whose unknown fields can't be read is given to `broken` and goes
/// on without them; without `broken` it is a `StoreError`.
std::vector<GroupPtr>
loadGroups(Connection& connection, const SubSystem& server, InstitutionId scope, const AccountsByRow& accounts,
           const std::function<void(const nvservice::CAccountGroup&, const StoreError&)>& broken = {});
std::optional<StoredGroup> findGroup(Connection& connection, const SubSystem& server, std::int64_t groupId);
/// What a group is called and whose it is.
struct GroupHead {
    std::string name;
    InstitutionId institution;
};
std::optional<GroupHead> findGroupHead(Connection& connection, const SubSystem& server, std::int64_t groupId);
/// The id of the group that has the name, byte for byte.
std::optional<std::int64_t> findGroupByName(Connection& connection, const SubSystem& server, const std::string& name);
/// The change that deleted a group that once was there.
std::optional<Change> findGroupDeletion(Connection& connection, const SubSystem& server, std::int64_t groupId);

/// An id that no group of the server has or had.
std::int32_t takeGroupId(Connection& connection, const SubSystem& server);

/// Write groups with their members, their history and, for a new one, its risk configuration. The statements are
/// prepared once, so that one writer serves many groups. All run inside the caller's transaction.
class GroupWriter
{
public:
    GroupWriter(Connection& connection, const SubSystem& server);

    /// Stores a new group; id and revision are taken from the record.
    void insert(const nvservice::CAccountGroup& group, const std::vector<std::int64_t>& accountRows,
                const Change& change);
    /// Stores the record's state with its revision if the stored one is `oldRevision`; false otherwise.
    bool update(const nvservice::CAccountGroup& group, const std::vector<std::int64_t>& accountRows,
                std::int64_t oldRevision, const Change& change);
    /// Deletes the group if its revision is the record's; false otherwise. History gets the next revision.
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
