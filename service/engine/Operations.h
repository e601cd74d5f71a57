#pragma once

#include "service/engine/RiskOperations.h"

#include <nvservice/COperateDataReq.h>

#include <string>

namespace service
{

/// A request that is worth a closer look.
struct CheckedRequest {
    std::string recordKey;
    bson::BSONObj document; ///< of the record
};

/// Throws `Refusal`: Unsupported data type or operation, Malformed (a record of another class, none; names or texts
/// that nvservice::checkDocument refuses), ResourceExhausted (more of anything than there can be), InvalidValue (texts
/// with NUL characters). What passes can be encoded and audited.
CheckedRequest checkRequest(const SubSystem& server, const nvservice::COperateDataReq& request);

/// Carries out a checked request inside the caller's transaction. Throws `Refusal` before anything is written, or
/// `StoreError`.
AppliedChange applyOperation(const OperationContext& context, const nvservice::COperateDataReq& request);

} // namespace service
