// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Groups.h"

#include <nvservice/CAccountGroupRCConfig.h>

namespace service
{

using RiskConfigPtr = boost::shared_ptr<nvservice::CAccountGroupRCConfig>;

struct StoredRiskConfig {
    RiskConfigPtr record; ///< with id, tag and revision
    Change lastChange;
};

/// Decodes the column of a configuration; the default configuration if it is empty. Throws `StoreError` for broken
/// bytes.
RiskConfigPtr riskConfigOf(const QByteArray& body, const SubSystem& server, std::int64_t groupId,
                           std::int64_t revision);

/// The configuration of a group. Every group has one.
std::optional<StoredRiskConfig> findRiskConfig(const ServerData& data, std::int64_t groupId);

/// The last change after `revision` by another session. Empty if there is none.
std::optional<Change> findForeignRiskChange(const ServerData& data, std::int64_t groupId, std::int64_t revision,
                                            const std::string& session);

/// The configuration after the session's last save or, if it has not saved any, the user's. Null if there is none.
RiskConfigPtr findLastSave(const ServerData& data, std::int64_t groupId, const std::string& session,
                           const std::string& login);

/// Assigns `count` consecutive ids that no asset-portfolio limit of the server has or had. Returns the first.
std::int64_t takeRuleIds(const ServerData& data, std::int64_t count);

/// What the history stores about a change of a configuration.
struct RiskChange {
    Change change;
    std::string session;
    std::int32_t dataType = 0; ///< of the request
};

/// Stores the record, encoded as `document`, with its revision and its history in the caller's transaction, if the
/// stored revision is the previous one; false otherwise.
bool updateRiskConfig(const ServerData& data, const nvservice::CAccountGroupRCConfig& config,
                      const bson::BSONObj& document, const RiskChange& change);

} // namespace service
