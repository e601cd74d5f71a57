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

GroupChange changeOfRow(const Query& row)
{
    return {row.integer(0),
            static_cast<nvservice::EZvDataOperation>(row.integer(1)),
            {row.text(2), row.integer(3)},
            row.text(4),
            row.optionalInteger(5)};
}

GroupRevision revisionOfRow(const Query& row)
{
    return {changeOfRow(row), rowsOf(row.text(6)), documentOf(row.blob(7)), row.blob(8)};
}

RiskRevision riskRevisionOfRow(const Query& row)
{
    return {row.integer(0), {row.text(1), row.integer(2)}, row.number(3)};
}

const QString GroupRevisions =
    QStringLiteral("SELECT revision, operation, changed_by, changed_at, name, institution_id, members, extra,"
                   " risk_config FROM account_group_history WHERE server_id = ? AND group_id = ?");
const QString RiskRevisions =
    QStringLiteral("SELECT revision, changed_by, changed_at, data_type FROM group_risk_config_history"
                   " WHERE server_id = ? AND group_id = ?");
const QString LastBefore = QStringLiteral(" AND revision < ? ORDER BY revision DESC LIMIT ?");

/// The row before the first one that is later than a time. Clocks may have been set back since.
QString lastUpTo(const char* table)
{
    return QStringLiteral(" AND revision < coalesce((SELECT min(revision) FROM %1 WHERE server_id = ? AND group_id = ?"
                          " AND changed_at > ?), 9223372036854775807) ORDER BY revision DESC LIMIT 1")
        .arg(QLatin1String(table));
}

} // namespace

std::vector<GroupRevision> loadGroupRevisions(const ServerData& data, std::int64_t groupId)
{
    Query query(data.connection, GroupRevisions + QStringLiteral(" ORDER BY revision"));
    return query.bind(data.server.id, groupId).all(revisionOfRow);
}

std::optional<GroupRevision> findGroupRevision(const ServerData& data, std::int64_t groupId, std::int64_t revision)
{
    Query query(data.connection, GroupRevisions + QStringLiteral(" AND revision = ?"));
    return query.bind(data.server.id, groupId, revision).first(revisionOfRow);
}

std::optional<GroupRevision> findGroupRevisionAt(const ServerData& data, std::int64_t groupId, std::int64_t at)
{
    Query query(data.connection, GroupRevisions + lastUpTo("account_group_history"));
    return query.bind(data.server.id, groupId, data.server.id, groupId, at).first(revisionOfRow);
}

std::vector<GroupChange> loadGroupChangesBefore(const ServerData& data, std::int64_t groupId, std::int64_t revision,
                                                int limit)
{
    Query query(data.connection,
                QStringLiteral("SELECT revision, operation, changed_by, changed_at, name, institution_id"
                               " FROM account_group_history WHERE server_id = ? AND group_id = ?") +
                    LastBefore);
    return query.bind(data.server.id, groupId, revision, limit).all(changeOfRow);
}

std::map<std::int64_t, std::string> loadLastGroupNames(const ServerData& data, const std::set<std::int64_t>& groupIds,
                                                       InstitutionId scope)
{
    std::map<std::int64_t, std::string> names;
    const auto add = [&](const Query& row) {
        if (!scope || row.optionalInteger(2) == scope) {
            names.emplace(row.integer(0), row.text(1));
        }
    };
    forEachRowOf(data.connection,
                 QStringLiteral("SELECT group_id, name, institution_id FROM account_group WHERE server_id = ?"
                                " AND group_id IN (%1)"),
                 data.server.id, groupIds, add);
    // Deleted groups, and those that have left the institution.
    const QString inScope = scope ? QStringLiteral(" AND institution_id = ?") : QString();
    for (const std::int64_t id : groupIds) {
        if (names.count(id) != 0) {
            continue;
        }
        Query query(data.connection,
                    QStringLiteral("SELECT name FROM account_group_history WHERE server_id = ? AND group_id = ?") +
                        inScope + QStringLiteral(" ORDER BY revision DESC LIMIT 1"));
        if (query.bind(data.server.id, id).bindIfSet(scope).runAndNext()) {
            names.emplace(id, query.text(0));
        }
    }
    return names;
}

std::vector<std::int64_t> findGroupsEverNamed(const ServerData& data, const std::string& name)
{
    Query query(data.connection, QStringLiteral("SELECT DISTINCT group_id FROM account_group_history"
                                                " WHERE server_id = ? AND name = ? ORDER BY group_id"));
    return query.bind(data.server.id, name).all([](const Query& row) { return row.integer(0); });
}

std::vector<RiskRevision> loadRiskRevisions(const ServerData& data, std::int64_t groupId)
{
    Query query(data.connection, RiskRevisions + QStringLiteral(" ORDER BY revision"));
    return query.bind(data.server.id, groupId).all(riskRevisionOfRow);
}

std::optional<RiskRevision> findRiskChange(const ServerData& data, std::int64_t groupId, std::int64_t revision)
{
    Query query(data.connection, RiskRevisions + QStringLiteral(" AND revision = ?"));
    return query.bind(data.server.id, groupId, revision).first(riskRevisionOfRow);
}

std::optional<RiskRevision> findRiskChangeAt(const ServerData& data, std::int64_t groupId, std::int64_t at)
{
    Query query(data.connection, RiskRevisions + lastUpTo("group_risk_config_history"));
    return query.bind(data.server.id, groupId, data.server.id, groupId, at).first(riskRevisionOfRow);
}

std::vector<RiskRevision> loadRiskChangesBefore(const ServerData& data, std::int64_t groupId, std::int64_t revision,
                                                int limit)
{
    Query query(data.connection, RiskRevisions + LastBefore);
    return query.bind(data.server.id, groupId, revision, limit).all(riskRevisionOfRow);
}

RiskConfigPtr findRiskRevision(const ServerData& data, std::int64_t groupId, std::int64_t revision)
{
    Query query(data.connection, QStringLiteral("SELECT body FROM group_risk_config_history"
                                                " WHERE server_id = ? AND group_id = ? AND revision = ?"));
    query.bind(data.server.id, groupId, revision);
    return query.runAndNext() ? riskConfigOf(query.blob(0), data.server, groupId, revision) : RiskConfigPtr();
}

} // namespace service
