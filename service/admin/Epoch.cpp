// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Epoch.h"
#include "service/store/Query.h"
#include "service/store/Schema.h"

#include <nvservice/DataType.h>
#include <nvservice/EZvDataOperation.h>

#include <algorithm>

namespace service
{

namespace
{

constexpr std::int64_t Jump = 1000000;
constexpr std::int64_t SecondsOf2024 = 1704067200; ///< from 1970 to its beginning
constexpr int RiskHistoryVersion = 3;              ///< of the schema, that brought the ids of limits, too
constexpr int EpochVersion = 5;

QString literal(const std::string& text)
{
    return QLatin1Char('\'') + QString::fromStdString(text).replace(QLatin1String("'"), QLatin1String("''")) +
           QLatin1Char('\'');
}

/// An SQL expression for the maximum of several values; null values are ignored.
QString highest(const QStringList& queries)
{
    return QStringLiteral("(SELECT max(value) FROM (SELECT 0 AS value UNION ALL ") +
           queries.join(QStringLiteral(" UNION ALL ")) + QStringLiteral(") AS each_value)");
}

/// SQL expressions for what the server of the row "s" has assigned.
QString groupIdGiven()
{
    return highest({QStringLiteral("SELECT s.next_group_id - 1"),
                    QStringLiteral("SELECT max(group_id) FROM account_group_history WHERE server_id = s.id"),
                    QStringLiteral("SELECT max(group_id) FROM account_group WHERE server_id = s.id")});
}

QString revisionGiven(int schemaVersion)
{
    QStringList queries;
    for (const char* table : {"account_group_history", "account_group", "group_risk_config"}) {
        queries << QStringLiteral("SELECT max(revision) FROM %1 WHERE server_id = s.id").arg(QLatin1String(table));
    }
    if (schemaVersion >= RiskHistoryVersion) {
        queries << QStringLiteral("SELECT max(revision) FROM group_risk_config_history WHERE server_id = s.id");
    }
    if (schemaVersion >= EpochVersion) {
        queries << QStringLiteral("SELECT max(revision) FROM epoch WHERE system_tag = s.system_tag");
    }
    return highest(queries);
}

/// Builds the statements of an epoch.
class Statements
{
public:
    explicit Statements(const Epoch& epoch) : m_epoch(epoch) {}

    QStringList make()
    {
        QStringList tags;
        for (const auto& [tag, before] : m_epoch.before) {
            tags << literal(tag);
            insertEpoch(before, QStringLiteral("s.system_tag = ") + literal(tag));
            keepForLater(tag, before);
        }
        insertEpoch({}, tags.isEmpty() ? QStringLiteral("1 = 1")
                                       : QStringLiteral("s.system_tag NOT IN (%1)").arg(tags.join(QLatin1Char(','))));
        giveOutAnew();
        return m_statements;
    }

private:
    std::int64_t afterJump(std::int64_t value) const
    {
        return m_epoch.isExact ? value : std::max(value + Jump, m_epoch.at / 1000 - SecondsOf2024);
    }
    QString afterJump(const QString& value) const
    {
        return m_epoch.isExact
                   ? value
                   : highest({QStringLiteral("SELECT ") + value + QStringLiteral(" + ") + QString::number(Jump),
                              QStringLiteral("SELECT ") + QString::number(m_epoch.at / 1000 - SecondsOf2024)});
    }

    void insertEpoch(const GivenOut& before, const QString& ofServers)
    {
        const auto above = [this](const QString& given, std::int64_t atLeast) {
            return afterJump(
                highest({QStringLiteral("SELECT ") + given, QStringLiteral("SELECT ") + QString::number(atLeast)}));
        };
        m_statements << QStringLiteral("INSERT INTO epoch (system_tag, revision, next_group_id, next_rule_id, began_at)"
                                       " SELECT s.system_tag, 1 + %1, 1 + %2, %3, %4 FROM sub_system s WHERE %5")
                            .arg(above(revisionGiven(EpochVersion), before.revision),
                                 above(groupIdGiven(), before.nextGroupId - 1),
                                 above(QStringLiteral("s.next_rule_id"), before.nextRuleId), now(), ofServers);
    }

    /// For a server that the backup does not have.
    void keepForLater(const std::string& tag, const GivenOut& before)
    {
        m_statements << QStringLiteral("INSERT INTO epoch (system_tag, revision, next_group_id, next_rule_id, began_at)"
                                       " SELECT %1, %2, %3, %4, %5 WHERE NOT EXISTS"
                                       " (SELECT 1 FROM epoch WHERE system_tag = %1 AND revision >= %2)")
                            .arg(literal(tag), QString::number(afterJump(before.revision) + 1),
                                 QString::number(afterJump(before.nextGroupId)),
                                 QString::number(afterJump(before.nextRuleId)), now());
    }

    void giveOutAnew()
    {
        const QString latest = QStringLiteral("(SELECT max(%1) FROM epoch WHERE system_tag = sub_system.system_tag)");
        m_statements << QStringLiteral("UPDATE sub_system SET next_group_id = ") + latest.arg("next_group_id") +
                            QStringLiteral(", next_rule_id = ") + latest.arg("next_rule_id");
        for (const char* table : {"account_group", "group_risk_config"}) {
            m_statements << QStringLiteral("UPDATE %1 SET revision = (SELECT max(e.revision) FROM epoch e"
                                           " JOIN sub_system s ON s.system_tag = e.system_tag"
                                           " WHERE s.id = %1.server_id), modified_by = %2, modified_at = %3")
                                .arg(QLatin1String(table), administrator(), now());
        }
        m_statements << QStringLiteral("INSERT INTO account_group_history (server_id, group_id, revision, operation,"
                                       " changed_by, changed_at, name, institution_id, members, extra)"
                                       " SELECT g.server_id, g.group_id, g.revision, %1, %2, %3, g.name,"
                                       " g.institution_id, h.members, g.extra FROM account_group g"
                                       " JOIN account_group_history h ON h.server_id = g.server_id"
                                       " AND h.group_id = g.group_id AND h.revision ="
                                       " (SELECT max(last.revision) FROM account_group_history last"
                                       " WHERE last.server_id = g.server_id AND last.group_id = g.group_id)")
                            .arg(QString::number(static_cast<int>(nvservice::EZvDataOperation::Modify)),
                                 administrator(), now());
        // Without a session, so that no open dialog takes the change for its own.
        m_statements << QStringLiteral("INSERT INTO group_risk_config_history (server_id, group_id, revision,"
                                       " changed_by, changed_at, session, data_type, body)"
                                       " SELECT server_id, group_id, revision, %1, %2, '', %3, body"
                                       " FROM group_risk_config")
                            .arg(administrator(), now(), QString::number(nvservice::DataType::GroupRiskConfig));
    }

    QString administrator() const { return literal(m_epoch.administrator); }
    QString now() const { return QString::number(m_epoch.at); }

    const Epoch& m_epoch;
    QStringList m_statements;
};

} // namespace

GivenOutByTag findGivenOut(Connection& connection)
{
    GivenOutByTag given;
    const int version = schemaVersion(connection);
    if (version == 0) {
        return given;
    }
    if (version >= EpochVersion) {
        Query epochs(connection, QStringLiteral("SELECT system_tag, max(next_group_id), max(next_rule_id),"
                                                " max(revision) FROM epoch GROUP BY system_tag"));
        for (epochs.run(); epochs.next();) {
            given[epochs.text(0)] = {epochs.integer(1), epochs.integer(2), epochs.integer(3)};
        }
    }
    const QString ruleId = version >= RiskHistoryVersion ? QStringLiteral("s.next_rule_id") : QStringLiteral("1");
    Query servers(connection, QStringLiteral("SELECT s.system_tag, 1 + %1, %2, %3 FROM sub_system s")
                                  .arg(groupIdGiven(), ruleId, revisionGiven(version)));
    for (servers.run(); servers.next();) {
        given[servers.text(0)] = {servers.integer(1), servers.integer(2), servers.integer(3)};
    }
    return given;
}

QStringList epochStatements(const Epoch& epoch)
{
    return Statements(epoch).make();
}

} // namespace service
