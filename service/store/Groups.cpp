// SPDX-License-Identifier: Apache-2.0
#include "service/store/Groups.h"

#include "service/store/Documents.h"
#include "service/store/Query.h"

#include <utils/Translation.h>

#include <algorithm>
#include <limits>

namespace service
{

namespace
{

using nvservice::CAccountGroup;
using nvservice::EZvDataOperation;

const QString GroupColumns = QStringLiteral(
    "SELECT g.group_id, g.name, g.institution_id, g.revision, g.extra, i.name, g.modified_by, g.modified_at"
    " FROM account_group g"
    " LEFT JOIN institution i ON i.server_id = g.server_id AND i.institution_id = g.institution_id"
    " WHERE g.server_id = ?");

/// Without its unknown fields.
GroupPtr groupOfRow(const Query& query, const SubSystem& server)
{
    auto group = boost::make_shared<CAccountGroup>();
    group->groupId = query.number(0);
    group->groupName = query.text(1);
    if (!query.isNull(2)) {
        group->institutionId = query.number(2);
        group->institutionName = query.text(5);
    }
    group->setRevision(query.integer(3));
    group->setSystemTag(server.systemTag);
    return group;
}

struct Member {
    std::int64_t position;
    const boost::shared_ptr<nvservice::CAccountInfo>* account;
};

void giveMembers(CAccountGroup& group, std::vector<Member>& members)
{
    std::sort(members.begin(), members.end(), [](const Member& a, const Member& b) { return a.position < b.position; });
    group.accounts.reserve(members.size());
    for (const Member& member : members) {
        group.accounts.push_back(*member.account);
    }
    members.clear();
}

std::string joined(const std::vector<std::int64_t>& rows)
{
    std::string text;
    for (const std::int64_t row : rows) {
        if (!text.empty()) {
            text += ',';
        }
        text += std::to_string(row);
    }
    return text;
}

void insertMembers(const ServerData& data, std::int64_t groupId, const std::vector<std::int64_t>& accountRows)
{
    constexpr std::size_t MostAtOnce = 64;
    for (std::size_t first = 0, count = 0; first < accountRows.size(); first += count) {
        count = sizeOfBatch(accountRows.size() - first, MostAtOnce);
        Query insert(data.connection,
                     QStringLiteral("INSERT INTO account_group_member (server_id, group_id, account_id, position)"
                                    " VALUES (?, ?, ?, ?)") +
                         QStringLiteral(", (?, ?, ?, ?)").repeated(static_cast<int>(count) - 1));
        for (std::size_t position = first; position < first + count; ++position) {
            insert.bind(data.server.id, groupId, accountRows[position], static_cast<int>(position));
        }
        insert.runLater();
    }
}

void insertHistory(const ServerData& data, const CAccountGroup& group, const std::vector<std::int64_t>& accountRows,
                   std::int64_t revision, EZvDataOperation operation, const Change& change,
                   const QByteArray& riskConfig = {})
{
    Query insert(data.connection,
                 QStringLiteral("INSERT INTO account_group_history (server_id, group_id, revision, operation,"
                                " changed_by, changed_at, name, institution_id, members, extra, risk_config)"
                                " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    insert.bind(data.server.id, group.groupId, revision, operation, change.login, change.at, group.groupName,
                institutionOf(group.institutionId), joined(accountRows), bytesOf(group.unknownFields), riskConfig);
    insert.runLater();
}

} // namespace

std::vector<GroupPtr> loadGroups(const ServerData& data, InstitutionId scope, const AccountsByRow& accounts,
                                 const std::function<void(const CAccountGroup&, const StoreError&)>& broken)
{
    const QString inScope = scope ? QStringLiteral(" AND g.institution_id = ?") : QString();
    Query query(data.connection, GroupColumns + inScope + QStringLiteral(" ORDER BY g.group_id"));
    std::vector<GroupPtr> groups = query.bind(data.server.id).bindIfSet(scope).all([&](const Query& row) {
        GroupPtr group = groupOfRow(row, data.server);
        try {
            group->unknownFields = documentOf(row.blob(4));
        } catch (const StoreError& failure) {
            if (!broken) {
                throw;
            }
            broken(*group, failure);
        }
        return group;
    });

    // Both lists are in the order of the group id, so one pass joins them.
    const QString ofScope = scope ? QStringLiteral(" JOIN account_group g ON g.server_id = m.server_id"
                                                   " AND g.group_id = m.group_id AND g.institution_id = ?")
                                  : QString();
    Query members(data.connection,
                  QStringLiteral("SELECT m.group_id, m.account_id, m.position FROM account_group_member m") + ofScope +
                      QStringLiteral(" WHERE m.server_id = ? ORDER BY m.group_id"));
    auto group = groups.begin();
    std::vector<Member> gathered;
    for (members.bindIfSet(scope).bind(data.server.id).run(); members.next();) {
        const std::int64_t groupId = members.integer(0);
        while (group != groups.end() && (*group)->groupId < groupId) {
            giveMembers(**group++, gathered);
        }
        const auto account = accounts.find(members.integer(1));
        if (group != groups.end() && (*group)->groupId == groupId && account != accounts.end()) {
            gathered.push_back({members.integer(2), &account->second});
        }
    }
    if (group != groups.end()) {
        giveMembers(**group, gathered);
    }
    return groups;
}

std::optional<StoredGroup> findGroup(const ServerData& data, std::int64_t groupId)
{
    Query query(data.connection, GroupColumns + QStringLiteral(" AND g.group_id = ?"));
    return query.bind(data.server.id, groupId).first([&](const Query& row) {
        StoredGroup group{groupOfRow(row, data.server), {}, {row.text(6), row.integer(7)}};
        group.record->unknownFields = documentOf(row.blob(4));
        for (const StoredAccount& account : loadMembers(data, groupId)) {
            group.accountRows.push_back(account.row);
            group.record->accounts.push_back(account.info);
        }
        return group;
    });
}

std::optional<GroupHead> findGroupHead(const ServerData& data, std::int64_t groupId)
{
    Query query(data.connection,
                QStringLiteral("SELECT name, institution_id FROM account_group WHERE server_id = ? AND group_id = ?"));
    return query.bind(data.server.id, groupId).first([](const Query& row) {
        return GroupHead{row.text(0), row.optionalInteger(1)};
    });
}

std::optional<std::int64_t> findGroupByName(const ServerData& data, const std::string& name)
{
    Query query(data.connection, QStringLiteral("SELECT group_id FROM account_group WHERE server_id = ? AND name = ?"));
    return query.bind(data.server.id, name).first([](const Query& row) { return row.integer(0); });
}

std::optional<Change> findGroupDeletion(const ServerData& data, std::int64_t groupId)
{
    Query query(data.connection, QStringLiteral("SELECT changed_by, changed_at FROM account_group_history"
                                                " WHERE server_id = ? AND group_id = ? AND operation = ?"
                                                " ORDER BY revision DESC LIMIT 1"));
    return query.bind(data.server.id, groupId, EZvDataOperation::Delete).first([](const Query& row) {
        return Change{row.text(0), row.integer(1)};
    });
}

std::int32_t takeGroupId(const ServerData& data)
{
    Query query(data.connection, QStringLiteral("UPDATE sub_system SET next_group_id = next_group_id + 1 WHERE id = ?"
                                                " RETURNING next_group_id - 1"));
    if (!query.bind(data.server.id).runAndNext()) {
        throw StoreError(utils::EErrorCode::NotFound,
                         utils::filled(utils::text("service", "分系统“%1”不存在"), data.server.name));
    }
    if (query.integer(0) >= std::numeric_limits<std::int32_t>::max()) {
        throw StoreError(utils::EErrorCode::ResourceExhausted, utils::text("service", "账号组编号已用完"));
    }
    return query.number(0);
}

void insertGroup(const ServerData& data, const CAccountGroup& group, const std::vector<std::int64_t>& accountRows,
                 const Change& change)
{
    Query insert(data.connection, QStringLiteral("INSERT INTO account_group (server_id, group_id, name, institution_id,"
                                                 " revision, modified_by, modified_at, extra)"
                                                 " VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
    insert.bind(data.server.id, group.groupId, group.groupName, institutionOf(group.institutionId), group.revision(),
                change.login, change.at, bytesOf(group.unknownFields));
    insert.runLater();
    insertMembers(data, group.groupId, accountRows);
    Query config(data.connection, QStringLiteral("INSERT INTO group_risk_config (server_id, group_id, revision,"
                                                 " modified_by, modified_at) VALUES (?, ?, 1, ?, ?)"));
    config.bind(data.server.id, group.groupId, change.login, change.at).runLater();
    insertHistory(data, group, accountRows, group.revision(), EZvDataOperation::Add, change);
}

bool updateGroup(const ServerData& data, const CAccountGroup& group, const std::vector<std::int64_t>& accountRows,
                 std::int64_t oldRevision, const Change& change)
{
    Query update(data.connection, QStringLiteral("UPDATE account_group SET name = ?, institution_id = ?, revision = ?,"
                                                 " modified_by = ?, modified_at = ?, extra = ?"
                                                 " WHERE server_id = ? AND group_id = ? AND revision = ?"));
    update.bind(group.groupName, institutionOf(group.institutionId), group.revision(), change.login, change.at);
    update.bind(bytesOf(group.unknownFields), data.server.id, group.groupId, oldRevision).run();
    if (update.affected() != 1) {
        return false;
    }
    Query remove(data.connection,
                 QStringLiteral("DELETE FROM account_group_member WHERE server_id = ? AND group_id = ?"));
    remove.bind(data.server.id, group.groupId).runLater();
    insertMembers(data, group.groupId, accountRows);
    insertHistory(data, group, accountRows, group.revision(), EZvDataOperation::Modify, change);
    return true;
}

bool deleteGroup(const ServerData& data, const CAccountGroup& group, const std::vector<std::int64_t>& accountRows,
                 const Change& change)
{
    Query config(data.connection,
                 QStringLiteral("SELECT body FROM group_risk_config WHERE server_id = ? AND group_id = ?"));
    config.bind(data.server.id, group.groupId);
    const QByteArray riskConfig = config.runAndNext() ? config.blob(0) : QByteArray();

    Query remove(data.connection,
                 QStringLiteral("DELETE FROM account_group WHERE server_id = ? AND group_id = ? AND revision = ?"));
    remove.bind(data.server.id, group.groupId, group.revision()).run();
    if (remove.affected() != 1) {
        return false;
    }
    insertHistory(data, group, accountRows, group.revision() + 1, EZvDataOperation::Delete, change, riskConfig);
    return true;
}

} // namespace service
