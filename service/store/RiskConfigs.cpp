// SPDX-License-Identifier: Apache-2.0
#include "service/store/RiskConfigs.h"

#include "service/store/Documents.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <nvservice/SystemTag.h>

namespace service
{

using nvservice::CAccountGroupRCConfig;

RiskConfigPtr riskConfigOf(const QByteArray& body, const SubSystem& server, std::int64_t groupId, std::int64_t revision)
{
    RiskConfigPtr config;
    if (body.isEmpty()) {
        config = boost::make_shared<CAccountGroupRCConfig>();
    } else {
        nvservice::IDataPtr record;
        bson::BSONObj document;
        utils::NVError error =
            nvservice::repairDocument(body.constData(), static_cast<std::size_t>(body.size()), document);
        if (error.isSuccess()) {
            error = nvservice::decodeRecord(document, record);
        }
        config = boost::dynamic_pointer_cast<CAccountGroupRCConfig>(record);
        if (!config) {
            throw StoreError(utils::EErrorCode::StorageFailure, "数据库中的风控配置已损坏：" + error.errorMsg());
        }
    }
    config->groupId = static_cast<std::int32_t>(groupId);
    config->setRevision(revision);
    nvservice::setSystemTagOfAll(*config, server.systemTag);
    return config;
}

std::optional<StoredRiskConfig> findRiskConfig(Connection& connection, const SubSystem& server, std::int64_t groupId)
{
    Query query(connection, QStringLiteral("SELECT body, revision, modified_by, modified_at FROM group_risk_config"
                                           " WHERE server_id = ? AND group_id = ?"));
    query.bind(server.id).bind(groupId);
    if (!query.runAndNext()) {
        return std::nullopt;
    }
    StoredRiskConfig config;
    config.record = riskConfigOf(query.blob(0), server, groupId, query.integer(1));
    config.lastChange = {query.text(2), query.integer(3)};
    return config;
}

std::optional<Change> findForeignRiskChange(Connection& connection, const SubSystem& server, std::int64_t groupId,
                                            std::int64_t revision, const std::string& session)
{
    Query query(connection, QStringLiteral("SELECT changed_by, changed_at FROM group_risk_config_history"
                                           " WHERE server_id = ? AND group_id = ? AND revision > ? AND session <> ?"
                                           " ORDER BY revision DESC LIMIT 1"));
    query.bind(server.id).bind(groupId).bind(revision).bind(session);
    if (!query.runAndNext()) {
        return std::nullopt;
    }
    return Change{query.text(0), query.integer(1)};
}

RiskConfigPtr findLastSave(Connection& connection, const SubSystem& server, std::int64_t groupId,
                           const std::string& session, const std::string& login)
{
    Query query(connection, QStringLiteral("SELECT body, revision FROM group_risk_config_history"
                                           " WHERE server_id = ? AND group_id = ? AND data_type = ?"
                                           " AND (session = ? OR changed_by = ?)"
                                           " ORDER BY CASE WHEN session = ? THEN 0 ELSE 1 END, revision DESC LIMIT 1"));
    query.bind(server.id).bind(groupId).bind(nvservice::DataType::GroupRiskConfig);
    query.bind(session).bind(login).bind(session);
    return query.runAndNext() ? riskConfigOf(query.blob(0), server, groupId, query.integer(1)) : RiskConfigPtr();
}

std::int64_t takeRuleIds(Connection& connection, const SubSystem& server, std::int64_t count)
{
    Query query(connection, QStringLiteral("UPDATE sub_system SET next_rule_id = next_rule_id + ? WHERE id = ?"
                                           " RETURNING next_rule_id"));
    query.bind(count).bind(server.id);
    if (!query.runAndNext()) {
        throw StoreError(utils::EErrorCode::NotFound, "分系统“" + server.name + "”不存在");
    }
    return query.integer(0) - count;
}

RiskConfigWriter::RiskConfigWriter(Connection& connection, const SubSystem& server)
    : m_server(server.id),
      m_update(connection, QStringLiteral("UPDATE group_risk_config SET revision = ?, body = ?, modified_by = ?,"
                                          " modified_at = ? WHERE server_id = ? AND group_id = ? AND revision = ?")),
      m_insertHistory(connection, QStringLiteral("INSERT INTO group_risk_config_history (server_id, group_id, revision,"
                                                 " changed_by, changed_at, session, data_type, body)"
                                                 " VALUES (?, ?, ?, ?, ?, ?, ?, ?)"))
{
}

bool RiskConfigWriter::update(const CAccountGroupRCConfig& config, const bson::BSONObj& document,
                              const RiskChange& change)
{
    const QByteArray body = bytesOf(document);
    m_update.bind(config.revision()).bind(body).bind(change.change.login).bind(change.change.at);
    m_update.bind(m_server).bind(config.groupId).bind(config.revision() - 1).run();
    if (m_update.affected() != 1) {
        return false;
    }
    m_insertHistory.bind(m_server).bind(config.groupId).bind(config.revision()).bind(change.change.login);
    m_insertHistory.bind(change.change.at).bind(change.session).bind(change.dataType).bind(body).runLater();
    return true;
}

} // namespace service
