// SPDX-License-Identifier: Apache-2.0
#include "service/store/Groups.h"

#include "service/store/Documents.h"

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
    group->groupId = static_cast<std::int32_t>(query.integer(0));
    group->groupName = query.text(1);
    if (!query.isNull(2)) {
        group->institutionId = static_cast<std::int32_t>(query.integer(2));
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

InstitutionId institutionOf(const CAccountGroup& group)
{
    if (group.institutionId == nvservice::NoInstitutionId) {
        return std::nullopt;
    }
    return group.institutionId;
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

} // namespace

std::vector<GroupPtr> loadGroups(Connection& connection, const SubSystem& server, InstitutionId scope,
                                 const AccountsByRow& accounts,
                                 const std::function<void(const CAccountGroup&, const StoreError&)>& broken)
{
    std::vector<GroupPtr> groups;
    const QString inScope = scope ? QStringLiteral(" AND g.institution_id = ?") : QString();
    Query query(connection, GroupColumns + inScope + QStringLiteral(" ORDER BY g.group_id"));
    query.bind(server.id).bindIfSet(scope);
    for (query.run(); query.next();) {
        groups.push_back(groupOfRow(query, server));
        try {
            groups.back()->unknownFields = documentOf(query.blob(4));
        } catch (const StoreError& failure) {
            if (!broken) {
                throw;
            }
            broken(*groups.back(), failure);
        }
    }

    // Both lists come in the order of the group id, so one pass joins them.
    const QString ofScope = scope ? QStringLiteral(" JOIN account_group g ON g.server_id = m.server_id"
                                                   " AND g.group_id = m.group_id AND g.institution_id = ?")
                                  : QString();
    Query members(connection,
                  QStringLiteral("SELECT m.group_id, m.account_id, m.position FROM account_group_member m") + ofScope +
                      QStringLiteral(" WHERE m.server_id = ? ORDER BY m.group_id"));
    members.bindIfSet(scope).bind(server.id);
    auto group = groups.begin();
    std::vector<Member> gathered;
    for (members.run(); members.next();) {
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

std::optional<StoredGroup> findGroup(Connection& connection, const SubSystem& server, std::int64_t groupId)
{
    Query query(connection, GroupColumns + QStringLiteral(" AND g.group_id = ?"));
    query.bind(server.id).bind(groupId);
    if (!query.runAndNext()) {
        return std::nullopt;
    }
    StoredGroup group;
    group.record = groupOfRow(query, server);
    group.record->unknownFields = documentOf(query.blob(4));
    group.lastChange = {query.text(6), query.integer(7)};

    Query members(
        connection,
        QStringLiteral("SELECT a.id, a.broker_type, a.account_id, a.unit_id, a.account_name, a.institution_id,"
                       " i.name FROM account_group_member m JOIN account a ON a.id = m.account_id"
                       " LEFT JOIN institution i ON i.server_id = a.server_id"
                       " AND i.institution_id = a.institution_id"
                       " WHERE m.server_id = ? AND m.group_id = ? ORDER BY m.position"));
    members.bind(server.id).bind(groupId);
    for (members.run(); members.next();) {
        auto account = boost::make_shared<nvservice::CAccountInfo>();
        account->brokerType = static_cast<nvservice::EZVBrokerType>(members.integer(1));
        account->accountId = members.text(2);
        account->unitId = members.text(3);
        account->accountName = members.text(4);
        if (!members.isNull(5)) {
            account->institutionId = static_cast<std::int32_t>(members.integer(5));
            account->institutionName = members.text(6);
        }
        account->setSystemTag(server.systemTag);
        group.accountRows.push_back(members.integer(0));
        group.record->accounts.push_back(account);
    }
    return group;
}

std::optional<GroupHead> findGroupHead(Connection& connection, const SubSystem& server, std::int64_t groupId)
{
    Query query(connection, QStringLiteral("SELECT name, institution_id FROM account_group"
                                           " WHERE server_id = ? AND group_id = ?"));
    query.bind(server.id).bind(groupId);
    if (!query.runAndNext()) {
        return std::nullopt;
    }
    return GroupHead{query.text(0), query.optionalInteger(1)};
}

std::optional<std::int64_t> findGroupByName(Connection& connection, const SubSystem& server, const std::string& name)
{
    Query query(connection, QStringLiteral("SELECT group_id FROM account_group WHERE server_id = ? AND name = ?"));
    query.bind(server.id).bind(name);
    if (!query.runAndNext()) {
        return std::nullopt;
    }
    return query.integer(0);
}

std::optional<Change> findGroupDeletion(Connection& connection, const SubSystem& server, std::int64_t groupId)
{
    Query query(connection, QStringLiteral("SELECT changed_by, changed_at FROM account_group_history"
                                           " WHERE server_id = ? AND group_id = ? AND operation = ?"
                                           " ORDER BY revision DESC LIMIT 1"));
    query.bind(server.id).bind(groupId).bind(static_cast<int>(EZvDataOperation::Delete));
    if (!query.runAndNext()) {
        return std::nullopt;
    }
    return Change{query.text(0), query.integer(1)};
}

std::int32_t takeGroupId(Connection& connection, const SubSystem& server)
{
    Query query(connection, QStringLiteral("UPDATE sub_system SET next_group_id = next_group_id + 1 WHERE id = ?"
                                           " RETURNING next_group_id - 1"));
    query.bind(server.id);
    if (!query.runAndNext()) {
        throw StoreError(utils::EErrorCode::NotFound, "分系统“" + server.name + "”不存在");
    }
    if (query.integer(0) >= std::numeric_limits<std::int32_t>::max()) {
        throw StoreError(utils::EErrorCode::ResourceExhausted, "账号组编号已用完");
    }
    return static_cast<std::int32_t>(query.integer(0));
}

GroupWriter::GroupWriter(Connection& connection, const SubSystem& server)
    : m_connection(connection), m_server(server.id),
      m_insertGroup(connection, QStringLiteral("INSERT INTO account_group (server_id, group_id, name, institution_id,"
                                               " revision, modified_by, modified_at, extra)"
                                               " VALUES (?, ?, ?, ?, ?, ?, ?, ?)")),
      m_insertRiskConfig(connection, QStringLiteral("INSERT INTO group_risk_config"
                                                    " (server_id, group_id, revision, modified_by, modified_at)"
                                                    " VALUES (?, ?, 1, ?, ?)")),
      m_insertHistory(connection,
                      QStringLiteral("INSERT INTO account_group_history (server_id, group_id, revision, operation,"
                                     " changed_by, changed_at, name, institution_id, members, extra, risk_config)"
                                     " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"))
{
}

void GroupWriter::insert(const CAccountGroup& group, const std::vector<std::int64_t>& accountRows, const Change& change)
{
    m_insertGroup.bind(m_server).bind(group.groupId).bind(group.groupName).bind(institutionOf(group));
    m_insertGroup.bind(group.revision()).bind(change.login).bind(change.at).bind(bytesOf(group.unknownFields));
    m_insertGroup.runLater();
    insertMembers(group.groupId, accountRows);
    m_insertRiskConfig.bind(m_server).bind(group.groupId).bind(change.login).bind(change.at).runLater();
    insertHistory(group, accountRows, group.revision(), EZvDataOperation::Add, change, {});
}

bool GroupWriter::update(const CAccountGroup& group, const std::vector<std::int64_t>& accountRows,
                         std::int64_t oldRevision, const Change& change)
{
    Query update(m_connection, QStringLiteral("UPDATE account_group SET name = ?, institution_id = ?, revision = ?,"
                                              " modified_by = ?, modified_at = ?, extra = ?"
                                              " WHERE server_id = ? AND group_id = ? AND revision = ?"));
    update.bind(group.groupName).bind(institutionOf(group)).bind(group.revision()).bind(change.login).bind(change.at);
    update.bind(bytesOf(group.unknownFields)).bind(m_server).bind(group.groupId).bind(oldRevision).run();
    if (update.affected() != 1) {
        return false;
    }
    Query(m_connection, QStringLiteral("DELETE FROM account_group_member WHERE server_id = ? AND group_id = ?"))
        .bind(m_server)
        .bind(group.groupId)
        .runLater();
    insertMembers(group.groupId, accountRows);
    insertHistory(group, accountRows, group.revision(), EZvDataOperation::Modify, change, {});
    return true;
}

bool GroupWriter::remove(const CAccountGroup& group, const std::vector<std::int64_t>& accountRows, const Change& change)
{
    Query config(m_connection,
                 QStringLiteral("SELECT body FROM group_risk_config WHERE server_id = ? AND group_id = ?"));
    config.bind(m_server).bind(group.groupId);
    const QByteArray riskConfig = config.runAndNext() ? config.blob(0) : QByteArray();

    Query remove(m_connection,
                 QStringLiteral("DELETE FROM account_group WHERE server_id = ? AND group_id = ? AND revision = ?"));
    remove.bind(m_server).bind(group.groupId).bind(group.revision()).run();
    if (remove.affected() != 1) {
        return false;
    }
    insertHistory(group, accountRows, group.revision() + 1, EZvDataOperation::Delete, change, riskConfig);
    return true;
}

void GroupWriter::insertMembers(std::int64_t groupId, const std::vector<std::int64_t>& accountRows)
{
    constexpr std::size_t MostAtOnce = 64;
    for (std::size_t first = 0, count = 0; first < accountRows.size(); first += count) {
        count = sizeOfBatch(accountRows.size() - first, MostAtOnce);
        QString sql = QStringLiteral("INSERT INTO account_group_member (server_id, group_id, account_id, position)"
                                     " VALUES (?, ?, ?, ?)");
        for (std::size_t i = 1; i < count; ++i) {
            sql += QStringLiteral(", (?, ?, ?, ?)");
        }
        Query insert(m_connection, sql);
        for (std::size_t position = first; position < first + count; ++position) {
            insert.bind(m_server).bind(groupId).bind(accountRows[position]).bind(static_cast<int>(position));
        }
        insert.runLater();
    }
}

void GroupWriter::insertHistory(const CAccountGroup& group, const std::vector<std::int64_t>& accountRows,
                                std::int64_t revision, EZvDataOperation operation, const Change& change,
                                const QByteArray& riskConfig)
{
    m_insertHistory.bind(m_server).bind(group.groupId).bind(revision).bind(static_cast<int>(operation));
    m_insertHistory.bind(change.login).bind(change.at).bind(group.groupName).bind(institutionOf(group));
    m_insertHistory.bind(joined(accountRows)).bind(bytesOf(group.unknownFields)).bind(riskConfig).runLater();
}

} // namespace service
