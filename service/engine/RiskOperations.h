#pragma once

#include "service/engine/GroupOperations.h"

#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CustomEmailRC.h>

#include <optional>
#include <string>

namespace service
{

/// Who asks for an operation, where and when.
struct OperationContext {
    Connection& connection;
    const SubSystem& server;
    const StoredUser& user;
    const std::string& session; ///< id of the log-in
    std::int64_t now = 0;       ///< milliseconds since 1970 UTC
};

/// Who may set risk rules may read them, and nobody else. Throws `Refusal` (PermissionDenied).
void requireRiskRight(const StoredUser& user);

/// The key of a group's configuration, under which all its changes are audited, those of the e-mail rules too.
std::string riskConfigKey(const SubSystem& server, std::int32_t groupId);

/// The group whose rules the record is about; empty unless all its rules name the same one.
std::optional<std::int32_t> groupOfEmailRules(const nvservice::CustomEmailRC& rules);

/// Replaces a group's configuration, e-mail rules included, inside the caller's transaction. A record that is based on
/// an older revision is accepted only if this session made all changes since, so that who leaves a dialog open may save
/// again. Limits that are new get an id. Throws `Refusal` before anything is written, or `StoreError`.
AppliedChange modifyRiskConfig(const OperationContext& context, const nvservice::CAccountGroupRCConfig& sent);

/// Modify puts the rules in place of all rules of the group. Delete takes away the rules that are named by `ruleKey`,
/// or all of them when a rule without one is among them. The record's revision, unless 0, is the configuration's that
/// it is based on. Without one the request belongs to the user's last save of the configuration: when that was refused,
/// the rules stay as they are and so is this; otherwise it is refused when another session has changed the
/// configuration since this one did, unless the save has left the rules as the request wants them: then it succeeds,
/// and what others have stored since stays. Nothing changes when nothing is to change. Throws as above.
AppliedChange applyEmailOperation(const OperationContext& context, nvservice::EZvDataOperation operation,
                                  const nvservice::CustomEmailRC& sent);

} // namespace service
