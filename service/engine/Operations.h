#pragma once

#include "service/engine/RiskOperations.h"

#include <nvservice/COperateDataReq.h>

#include <string>

namespace service
{

/// The key under which an attempt is audited that comes to nothing, whatever tag the record carries: that of the group
/// that it is about on this server; of a group that is to be added the one of a record without an id. Empty for a
/// record that is about no group.
std::string attemptKey(const SubSystem& server, const nvservice::COperateDataReq& request);

/// The document of a record that is worth a closer look. Throws `Refusal`: Unsupported data type or operation,
/// Malformed (a record of another class, none; names or texts that nvservice::checkDocument refuses), ResourceExhausted
/// (more of anything than there can be), InvalidValue (texts with NUL characters). What passes can be audited.
bson::BSONObj checkRequest(const nvservice::COperateDataReq& request);

/// Carries out a checked request inside the caller's transaction. Throws `Refusal` before anything is written, or
/// `StoreError`.
AppliedChange applyOperation(const OperationContext& context, const nvservice::COperateDataReq& request);

} // namespace service
