// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/DataHandler.h"

#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>

#include <string>

namespace service
{

/// Whether queries or operations may name the data type.
bool isKnownDataType(std::int32_t dataType);

/// The records that a query asks for. Throws `Refusal` (Unsupported data type; what its handler refuses) or
/// `StoreError`.
Records answerQuery(const RequestContext& context, const nvservice::CKolmQueryDataReq& request);

/// The key under which an attempt is audited that comes to nothing, whatever tag the record carries: that of the group
/// that it is about on this server; of a group that is to be added the one of a record without an id. Empty for a
/// record that is about no group.
std::string attemptKey(const SubSystem& server, const nvservice::COperateDataReq& request);

/// The document of a record that is worth a closer look. Throws `Refusal`: Unsupported data type or operation,
/// Malformed (a record of another class, none; names or texts that nvservice::checkDocument refuses), ResourceExhausted
/// (more of anything than there can be), InvalidValue (texts with NUL characters). What passes can be audited.
bson::BSONObj checkRequest(const nvservice::COperateDataReq& request);

/// Carries out an operation on a record of the data type's class. Throws `Refusal` (Unsupported, OutOfScope for a
/// record of another sub-system, PermissionDenied; what its handler refuses) before anything is written, or
/// `StoreError`.
AppliedChange applyOperation(const RequestContext& context, std::int32_t dataType,
                             nvservice::EZvDataOperation operation, const nvservice::IData& sent);

} // namespace service
