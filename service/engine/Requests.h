// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/DataHandler.h"

#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>

#include <string>

namespace service
{

/// True if there are queries or operations for the data type.
bool isKnownDataType(std::int32_t dataType);

/// What a query asks for. Throws `Refusal` (Unsupported data type, and those of its handler) or
/// `StoreError`.
QueryAnswer answerQuery(const RequestContext& context, const nvservice::CKolmQueryDataReq& request);

/// The key under which a refused operation is audited: that of the record's group on this server, whatever tag the
/// record carries. For a new group it is the key of a record without an id. Empty for a record without a group.
std::string attemptKey(const SubSystem& server, const nvservice::COperateDataReq& request);

/// Checks type, shape and size of a request, and returns the document of its record, which can be audited. Throws
/// `Refusal`: Unsupported data type or operation, Malformed (no record, or one of another class; names or texts that
/// nvservice::checkDocument refuses), ResourceExhausted (too large), InvalidValue (texts with NUL characters).
bson::BSONObj checkRequest(const nvservice::COperateDataReq& request);

/// Carries out an operation on a record of the data type's class. Throws `Refusal` (Unsupported, OutOfScope for a
/// record of another server, PermissionDenied, and those of its handler) before anything is written, or `StoreError`.
AppliedChange applyOperation(const RequestContext& context, std::int32_t dataType,
                             nvservice::EZvDataOperation operation, const nvservice::IData& sent);

} // namespace service
