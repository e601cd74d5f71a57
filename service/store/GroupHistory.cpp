// SPDX-License-Identifier: Apache-2.0
#include "service/store/GroupHistory.h"

#include "service/store/Documents.h"

#include <QStringList>

namespace service
{

namespace
{

std::vector<std::int64_t> rowsOf(const std::string& members)
{
    std::vector<std::int64_t> rows;
    for (const QString& row : QString::fromStdString(members).split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        rows.push_back(row.toLongLong());
    }
    return rows;
}

} // namespace

std::vector<GroupRevision> loadGroupRevisions(Connection& connection, const SubSystem& server, std::int64_t groupId)
{
    std::vector<GroupRevision> revisions;
    Query query(connection, QStringLiteral("SELECT revision, operation, changed_by, changed_at, name, institution_id,"
                                           " members, extra, risk_config FROM account_group_history"
                                           " WHERE server_id = ? AND group_id = ? ORDER BY revision"));
    query.bind(server.id).bind(groupId);
    for (query.run(); query.next();) {
        GroupRevision revision;
        revision.revision = query.integer(0);
        revision.operation = static_cast<nvservice::EZvDataOperation>(query.integer(1));
        revision.change = {query.text(2), query.integer(3)};
        revision.name = query.text(4);
        revision.institution = query.optionalInteger(5);
        revision.accountRows = rowsOf(query.text(6));
        revision.unknownFields = documentOf(query.blob(7));
        revision.riskConfig = query.blob(8);
        revisions.push_back(std::move(revision));
    }
    return revisions;
}

std::vector<std::int64_t> findGroupsEverNamed(Connection& connection, const SubSystem& server, const std::string& name)
{
    std::vector<std::int64_t> ids;
    Query query(connection, QStringLiteral("SELECT DISTINCT group_id FROM account_group_history"
                                           " WHERE server_id = ? AND name = ? ORDER BY group_id"));
    query.bind(server.id).bind(name);
    for (query.run(); query.next();) {
        ids.push_back(query.integer(0));
    }
    return ids;
}

std::vector<RiskRevision> loadRiskRevisions(Connection& connection, const SubSystem& server, std::int64_t groupId)
{
    std::vector<RiskRevision> revisions;
    Query query(connection, QStringLiteral("SELECT revision, changed_by, changed_at, data_type"
                                           " FROM group_risk_config_history"
                                           " WHERE server_id = ? AND group_id = ? ORDER BY revision"));
    query.bind(server.id).bind(groupId);
    for (query.run(); query.next();) {
        revisions.push_back(
            {query.integer(0), {query.text(1), query.integer(2)}, static_cast<std::int32_t>(query.integer(3))});
    }
    return revisions;
}

RiskConfigPtr findRiskRevision(Connection& connection, const SubSystem& server, std::int64_t groupId,
                               std::int64_t revision)
{
    Query query(connection, QStringLiteral("SELECT body FROM group_risk_config_history"
                                           " WHERE server_id = ? AND group_id = ? AND revision = ?"));
    query.bind(server.id).bind(groupId).bind(revision);
    if (!query.runAndNext()) {
        return {};
    }
    return riskConfigOf(query.blob(0), server, groupId, revision);
}

} // namespace service
