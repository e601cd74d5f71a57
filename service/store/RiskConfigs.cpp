// SPDX-License-Identifier: Apache-2.0
#include "service/store/RiskConfigs.h"

#include "service/store/Documents.h"
#include "service/store/Query.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <nvservice/SystemTag.h>
#include <utils/Translation.h>

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
            throw StoreError(utils::EErrorCode::StorageFailure,
                             utils::filled(utils::text("service", "数据库中的风控配置已损坏：%1"), error.errorMsg()));
        }
    }
    config->groupId = static_cast<std::int32_t>(groupId);
    config->setRevision(revision);
    nvservice::setSystemTagOfAll(*config, server.systemTag);
    return config;
}

std::optional<StoredRiskConfig> findRiskConfig(const ServerData& data, std::int64_t groupId)
{
    Query query(data.connection, QStringLiteral("SELECT body, revision, modified_by, modified_at FROM group_risk_config"
                                                " WHERE server_id = ? AND group_id = ?"));
    return query.bind(data.server.id, groupId).first([&](const Query& row) {
        return StoredRiskConfig{riskConfigOf(row.blob(0), data.server, groupId, row.integer(1)),
                                {row.text(2), row.integer(3)}};
    });
}

std::optional<Change> findForeignRiskChange(const ServerData& data, std::int64_t groupId, std::int64_t revision,
                                            const std::string& session)
{
    Query query(data.connection, QStringLiteral("SELECT changed_by, changed_at FROM group_risk_config_history"
                                                " WHERE server_id = ? AND group_id = ? AND revision > ?"
                                                " AND session <> ? ORDER BY revision DESC LIMIT 1"));
    return query.bind(data.server.id, groupId, revision, session).first([](const Query& row) {
        return Change{row.text(0), row.integer(1)};
    });
}

RiskConfigPtr findLastSave(const ServerData& data, std::int64_t groupId, const std::string& session,
                           const std::string& login)
{
    Query query(data.connection,
                QStringLiteral("SELECT body, revision FROM group_risk_config_history"
                               " WHERE server_id = ? AND group_id = ? AND data_type = ?"
                               " AND (session = ? OR changed_by = ?)"
                               " ORDER BY CASE WHEN session = ? THEN 0 ELSE 1 END, revision DESC LIMIT 1"));
    query.bind(data.server.id, groupId, nvservice::DataType::GroupRiskConfig, session, login, session);
    return query.runAndNext() ? riskConfigOf(query.blob(0), data.server, groupId, query.integer(1)) : RiskConfigPtr();
}

std::int64_t takeRuleIds(const ServerData& data, std::int64_t count)
{
    Query query(data.connection, QStringLiteral("UPDATE sub_system SET next_rule_id = next_rule_id + ? WHERE id = ?"
                                                " RETURNING next_rule_id"));
    if (!query.bind(count, data.server.id).runAndNext()) {
        throw StoreError(utils::EErrorCode::NotFound,
                         utils::filled(utils::text("service", "分系统“%1”不存在"), data.server.name));
    }
    return query.integer(0) - count;
}

bool updateRiskConfig(const ServerData& data, const CAccountGroupRCConfig& config, const bson::BSONObj& document,
                      const RiskChange& change)
{
    const QByteArray body = bytesOf(document);
    Query update(data.connection,
                 QStringLiteral("UPDATE group_risk_config SET revision = ?, body = ?, modified_by = ?, modified_at = ?"
                                " WHERE server_id = ? AND group_id = ? AND revision = ?"));
    update.bind(config.revision(), body, change.change.login, change.change.at);
    update.bind(data.server.id, config.groupId, config.revision() - 1).run();
    if (update.affected() != 1) {
        return false;
    }
    Query insert(data.connection, QStringLiteral("INSERT INTO group_risk_config_history (server_id, group_id, revision,"
                                                 " changed_by, changed_at, session, data_type, body)"
                                                 " VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
    insert.bind(data.server.id, config.groupId, config.revision(), change.change.login, change.change.at,
                change.session, change.dataType, body);
    insert.runLater();
    return true;
}

} // namespace service
