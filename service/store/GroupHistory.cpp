// SPDX-License-Identifier: Apache-2.0
#include "service/store/GroupHistory.h"

#include "service/store/Documents.h"
#include "service/store/Query.h"

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

std::vector<GroupRevision> loadGroupRevisions(const ServerData& data, std::int64_t groupId)
{
    Query query(data.connection,
                QStringLiteral("SELECT revision, operation, changed_by, changed_at, name, institution_id, members,"
                               " extra, risk_config FROM account_group_history"
                               " WHERE server_id = ? AND group_id = ? ORDER BY revision"));
    return query.bind(data.server.id, groupId).all([](const Query& row) {
        return GroupRevision{row.integer(0),
                             static_cast<nvservice::EZvDataOperation>(row.integer(1)),
                             {row.text(2), row.integer(3)},
                             row.text(4),
                             row.optionalInteger(5),
                             rowsOf(row.text(6)),
                             documentOf(row.blob(7)),
                             row.blob(8)};
    });
}

std::vector<std::int64_t> findGroupsEverNamed(const ServerData& data, const std::string& name)
{
    Query query(data.connection, QStringLiteral("SELECT DISTINCT group_id FROM account_group_history"
                                                " WHERE server_id = ? AND name = ? ORDER BY group_id"));
    return query.bind(data.server.id, name).all([](const Query& row) { return row.integer(0); });
}

std::vector<RiskRevision> loadRiskRevisions(const ServerData& data, std::int64_t groupId)
{
    Query query(data.connection,
                QStringLiteral("SELECT revision, changed_by, changed_at, data_type FROM group_risk_config_history"
                               " WHERE server_id = ? AND group_id = ? ORDER BY revision"));
    return query.bind(data.server.id, groupId).all([](const Query& row) {
        return RiskRevision{row.integer(0), {row.text(1), row.integer(2)}, row.number(3)};
    });
}

RiskConfigPtr findRiskRevision(const ServerData& data, std::int64_t groupId, std::int64_t revision)
{
    Query query(data.connection, QStringLiteral("SELECT body FROM group_risk_config_history"
                                                " WHERE server_id = ? AND group_id = ? AND revision = ?"));
    query.bind(data.server.id, groupId, revision);
    return query.runAndNext() ? riskConfigOf(query.blob(0), data.server, groupId, revision) : RiskConfigPtr();
}

} // namespace service
