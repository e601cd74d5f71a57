#pragma once

#include "service/store/Groups.h"

#include <nvservice/CAccountGroupRCConfig.h>

namespace service
{

using RiskConfigPtr = boost::shared_ptr<nvservice::CAccountGroupRCConfig>;

struct StoredRiskConfig {
    RiskConfigPtr record; ///< stamped with id, tag and revision
    Change lastChange;
};

/// The record of a configuration's column; the default one when that is empty. Throws `StoreError` for broken bytes.
RiskConfigPtr riskConfigOf(const QByteArray& body, const SubSystem& server, std::int64_t groupId,
                           std::int64_t revision);

/// The configuration of a group; every group has one.
std::optional<StoredRiskConfig> findRiskConfig(Connection& connection, const SubSystem& server, std::int64_t groupId);

/// The last change after `revision` that another session made. Empty when there is none.
std::optional<Change> findForeignRiskChange(Connection& connection, const SubSystem& server, std::int64_t groupId,
                                            std::int64_t revision, const std::string& session);

/// The configuration as a user's last save left it, of the session if it has saved any. Null when there is none.
RiskConfigPtr findLastSave(Connection& connection, const SubSystem& server, std::int64_t groupId,
                           const std::string& session, const std::string& login);

/// Takes `count` ids, one after the other, that no asset-portfolio limit of the server has or had. Gives the first.
std::int64_t takeRuleIds(Connection& connection, const SubSystem& server, std::int64_t count);

/// What a change of a configuration is remembered by.
struct RiskChange {
    Change change;
    std::string session;
    std::int32_t dataType = 0; ///< of the request
};

/// Writes configurations with their history, inside the caller's transaction.
class RiskConfigWriter
{
public:
    RiskConfigWriter(Connection& connection, const SubSystem& server);

    /// Stores the record, whose document is given, with its revision if the stored one is the revision before; false
    /// otherwise.
    bool update(const nvservice::CAccountGroupRCConfig& config, const bson::BSONObj& document,
                const RiskChange& change);

private:
    std::int64_t m_server;
    Query m_update;
    Query m_insertHistory;
};

} // namespace service
